// The filters of RAR 2.9: programs that lie in the packed data, and records that say for which range one is to run.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "archive/modules/rar/unpack/filter_machine.h"
#include "archive/modules/rar/unpack/filter_queue.h"
#include "archive/modules/rar/unpack/record_bits.h"

namespace quendle::modules {

class FilterPrograms {
 public:
  // An entry begins. Unless it is solid there are no programs any more.
  void Begin(bool is_solid);

  // A record: the byte it begins with, and those after its length. What it announces is for bytes of the entry from
  // number `made` on, which is how many there are already, and is put to `filters`. False: nobody writes such a record.
  bool Add(std::uint8_t flags, std::span<const std::uint8_t> record, std::uint64_t made,
           FilterQueue* filters);

 private:
  // What the programs are that packers really use. They need no machine.
  enum class Kind { kX86Calls, kX86CallsAndJumps, kItanium, kDelta, kRgb, kAudio, kOther };

  struct Program {
    Kind kind = Kind::kOther;
    std::uint32_t length = 0;  // of its last range
    std::uint32_t records = 0;
    // Of those of no known kind. `globals`: which the last run kept.
    std::shared_ptr<const MachineProgram> code;
    std::shared_ptr<std::vector<std::uint8_t>> globals;
  };

  class MachineFilter;

  static Kind KindOf(std::span<const std::uint8_t> code);
  bool Choose(std::uint32_t number);
  bool TakeProgram(RecordBits* bits);
  std::unique_ptr<Filter> MakeFilter(const FilterMachine::Registers& registers, RecordBits* bits,
                                     bool has_globals) const;

  std::vector<Program> programs_;
  std::size_t current_ = 0;        // the one that was used last
  std::size_t machine_bytes_ = 0;  // of the programs of no known kind, those that are gone, too
  std::shared_ptr<FilterMachine> machine_;
};

}  // namespace quendle::modules
