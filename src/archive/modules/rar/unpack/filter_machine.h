// The machine that runs what filters of RAR 2.9 are written in: eight registers, 256 KiB of memory, and about forty
// commands of which most are those of x86.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "archive/modules/rar/unpack/machine_program.h"

namespace quendle::modules {

class FilterMachine {
 public:
  static constexpr unsigned kRegisters = 8;
  using Registers = std::array<std::uint32_t, kRegisters>;

  // The longest range that a program can change: behind it there are the globals.
  static constexpr std::size_t kLongestRange = 0x3C000;
  // The longest globals of a program's own.
  static constexpr std::size_t kMostGlobals = 0x1FC0;

  // All programs together may run as long for an entry as if a slow one went over all of its bytes.
  void BeginEntry() { carried_out_ = 0; }

  // Runs `program` on `range`, which begins at `position` of its entry and is not longer than kLongestRange. R0 to R5
  // begin as `start` says, R6 is the position. `globals` has the program's own ones, and afterwards those
  // that it keeps for its next run. False: it did not come to its end, or has none.
  bool Run(const MachineProgram& program, std::uint64_t position, const Registers& start,
           std::vector<std::uint8_t>* range, std::vector<std::uint8_t>* globals);

 private:
  static constexpr std::uint32_t kMemory = 0x40000;
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION  // a fuzzer learns nothing from programs that run long
  static constexpr std::uint64_t kMostCommands = 10'000;
  static constexpr std::uint64_t kCommandsPerByte = 10;
#else
  static constexpr std::uint64_t kMostCommands = 25'000'000;
  // What a program may need for a byte; the one for sound, the slowest known, takes 92.
  static constexpr std::uint64_t kCommandsPerByte = 200;
#endif

  void Load(const MachineProgram& program, std::uint64_t position, std::span<const std::uint8_t> range,
            std::span<const std::uint8_t> globals);
  void TakeResult(std::vector<std::uint8_t>* range, std::vector<std::uint8_t>* globals) const;
  bool Execute(const std::vector<MachineCommand>& commands, std::uint64_t most);
  bool Jumps(MachineOpcode opcode) const;
  void CarryOut(const MachineCommand& command);
  void MoveRegisters(bool to_stack);
  std::uint32_t Compute(MachineOpcode opcode, bool is_byte, std::uint32_t a, std::uint32_t b);
  std::uint32_t Shift(MachineOpcode opcode, std::uint32_t a, std::uint32_t count);
  std::uint32_t Flagged(std::uint32_t result, bool has_carry);
  void Push(std::uint32_t value);
  std::uint32_t Pop();
  std::uint8_t* Address(const MachineOperand& operand);
  std::uint32_t Get(const MachineOperand& operand, bool is_byte);
  void Set(const MachineOperand& operand, bool is_byte, std::uint32_t value);

  std::vector<std::uint8_t> memory_;                       // empty until the first run
  std::array<std::uint32_t, kRegisters + 1> registers_{};  // the last one is always 0
  std::uint32_t flags_ = 0;
  std::uint64_t carried_out_ = 0;  // commands, for this entry
};

}  // namespace quendle::modules
