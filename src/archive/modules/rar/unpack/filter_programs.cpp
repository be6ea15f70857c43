#include "archive/modules/rar/unpack/filter_programs.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/rar/unpack/common_filters.h"
#include "archive/modules/rar/unpack/filters29.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMostPrograms = 1024;
constexpr std::size_t kLongestProgram = 0xFFFF;
// For all together: each takes many times as much memory once it is read.
constexpr std::size_t kMostMachineBytes = 1U << 20;

// In the first byte of a record.
enum Flag : std::uint8_t {
  kHasGlobals = 0x08,
  kHasRegisters = 0x10,
  kHasLength = 0x20,
  kIsFar = 0x40,
  kHasProgram = 0x80,
};
constexpr std::uint64_t kFar = 258;

std::optional<std::vector<std::uint8_t>> TakeBytes(std::size_t count, RecordBits* bits) {
  std::vector<std::uint8_t> bytes;
  for (; count > 0 && !bits->IsPastEnd(); --count) bytes.push_back(static_cast<std::uint8_t>(bits->Take(8)));
  if (bits->IsPastEnd()) return std::nullopt;
  return bytes;
}

}  // namespace

// The programs of a chain share one machine, which lives as long as one of them waits for its range.
class FilterPrograms::MachineFilter final : public Filter {
 public:
  MachineFilter(std::shared_ptr<FilterMachine> machine, const Program& program,
                const FilterMachine::Registers& registers, std::vector<std::uint8_t> globals)
      : machine_(std::move(machine)),
        code_(program.code),
        kept_(program.globals),
        registers_(registers),
        globals_(std::move(globals)) {}

  bool Run(std::uint64_t position, std::vector<std::uint8_t>* bytes) override {
    if (bytes->size() > FilterMachine::kLongestRange) return false;
    if (kept_->empty()) kept_->swap(globals_);
    return machine_->Run(*code_, position, registers_, bytes, kept_.get());
  }

 private:
  std::shared_ptr<FilterMachine> machine_;
  std::shared_ptr<const MachineProgram> code_;
  std::shared_ptr<std::vector<std::uint8_t>> kept_;
  FilterMachine::Registers registers_;
  std::vector<std::uint8_t> globals_;
};

void FilterPrograms::Begin(bool is_solid) {
  if (!is_solid) {
    programs_.clear();
    current_ = 0;
    machine_bytes_ = 0;
  }
  if (machine_ != nullptr) machine_->BeginEntry();
}

bool FilterPrograms::Add(std::uint8_t flags, std::span<const std::uint8_t> record, std::uint64_t made,
                         FilterQueue* filters) {
  RecordBits bits(record);
  if ((flags & kHasProgram) != 0 && !Choose(bits.TakeNumber())) return false;
  const bool is_new = current_ == programs_.size();
  if (is_new) programs_.emplace_back();
  Program& program = programs_[current_];
  const std::uint64_t start = made + bits.TakeNumber() + ((flags & kIsFar) != 0 ? kFar : 0);
  if ((flags & kHasLength) != 0) program.length = bits.TakeNumber();
  FilterMachine::Registers registers{};
  registers[3] = FilterMachine::kLongestRange;
  registers[4] = program.length;
  registers[5] = program.records++;
  if ((flags & kHasRegisters) != 0) {
    std::uint32_t mask = bits.Take(7);
    for (std::size_t i = 0; mask != 0; ++i, mask >>= 1)
      if ((mask & 1) != 0) registers[i] = bits.TakeNumber();
  }
  if (is_new && !TakeProgram(&bits)) return false;
  auto filter = MakeFilter(registers, &bits, (flags & kHasGlobals) != 0);
  // What is longer than the machine's memory goes out as it is.
  return filter != nullptr && !bits.IsPastEnd() &&
         (program.length > FilterMachine::kLongestRange ||
          filters->Add(start, program.length, std::move(filter)));
}

// 0: begins anew with the first program. Else the one before the number; the last but one is a new one.
bool FilterPrograms::Choose(std::uint32_t number) {
  if (number == 0) programs_.clear();
  current_ = number == 0 ? 0 : number - 1;
  return current_ <= programs_.size() && current_ < kMostPrograms;
}

bool FilterPrograms::TakeProgram(RecordBits* bits) {
  const std::uint32_t length = bits->TakeNumber();
  if (length > kLongestProgram) return false;
  const auto code = TakeBytes(length, bits);
  if (!code) return false;
  Program& program = programs_[current_];
  program.kind = KindOf(*code);
  if (program.kind != Kind::kOther) return true;
  machine_bytes_ += length;
  auto parsed = ParseMachineProgram(*code);
  if (!parsed || machine_bytes_ > kMostMachineBytes) return false;
  program.code = std::make_shared<const MachineProgram>(*std::move(parsed));
  program.globals = std::make_shared<std::vector<std::uint8_t>>();
  if (machine_ == nullptr) machine_ = std::make_shared<FilterMachine>();
  return true;
}

FilterPrograms::Kind FilterPrograms::KindOf(std::span<const std::uint8_t> code) {
  struct Known {
    std::size_t length;
    std::uint32_t crc;
    Kind kind;
  };
  static constexpr std::array<Known, 6> kKnown{{
      {53, 0xAD576887, Kind::kX86Calls},
      {57, 0x3CD7E57E, Kind::kX86CallsAndJumps},
      {120, 0x3769893F, Kind::kItanium},
      {29, 0x0E06077D, Kind::kDelta},
      {149, 0x1C2C5DC8, Kind::kRgb},
      {216, 0xBC85E701, Kind::kAudio},
  }};
  const std::uint32_t crc = Crc32({reinterpret_cast<const char*>(code.data()), code.size()});
  const auto known = std::find_if(kKnown.begin(), kKnown.end(), [&](const Known& one) {
    return one.length == code.size() && one.crc == crc;
  });
  return known == kKnown.end() ? Kind::kOther : known->kind;
}

// The rest of a record: what the program has for globals. Null: there are too many.
std::unique_ptr<Filter> FilterPrograms::MakeFilter(const FilterMachine::Registers& registers,
                                                   RecordBits* bits, bool has_globals) const {
  const std::uint32_t count = has_globals ? bits->TakeNumber() : 0;
  if (count > FilterMachine::kMostGlobals) return nullptr;
  auto globals = TakeBytes(count, bits);
  if (!globals) return nullptr;
  const Program& program = programs_[current_];
  switch (program.kind) {
    case Kind::kX86Calls:
    case Kind::kX86CallsAndJumps:
      return std::make_unique<X86Filter>(program.kind == Kind::kX86CallsAndJumps,
                                         X86Filter::Positions::k32Bits);
    case Kind::kItanium:
      return std::make_unique<ItaniumFilter>();
    case Kind::kDelta:
      return std::make_unique<DeltaFilter>(registers[0]);
    case Kind::kRgb:
      return std::make_unique<RgbFilter>(registers[0], registers[1]);
    case Kind::kAudio:
      return std::make_unique<AudioFilter>(registers[0]);
    case Kind::kOther:
      break;
  }
  return std::make_unique<MachineFilter>(machine_, program, registers, *std::move(globals));
}

}  // namespace quendle::modules
