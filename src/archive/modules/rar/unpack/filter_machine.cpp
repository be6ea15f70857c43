#include "archive/modules/rar/unpack/filter_machine.h"

#include <algorithm>
#include <utility>

#include "archive/modules/rar/unpack/filter_bytes.h"

namespace quendle::modules {
namespace {

using enum MachineOpcode;
using Kind = MachineOperand::Kind;

constexpr std::uint32_t kCarryFlag = 1;
constexpr std::uint32_t kZeroFlag = 2;
constexpr std::uint32_t kSignFlag = 0x80000000;

// Where the globals are and what they begin with; behind it come the program's own ones, up to kGlobalsEnd.
constexpr std::uint32_t kGlobals = FilterMachine::kLongestRange;
constexpr std::uint32_t kGlobalsEnd = kGlobals + 0x2000;
constexpr std::uint32_t kResultLength = kGlobals + 0x1C;
constexpr std::uint32_t kResultStart = kGlobals + 0x20;
constexpr std::uint32_t kPosition = kGlobals + 0x24;
constexpr std::uint32_t kRuns = kGlobals + 0x2C;
constexpr std::uint32_t kKept = kGlobals + 0x30;
constexpr std::uint32_t kOwnGlobals = kGlobals + 0x40;

constexpr unsigned kRunsRegister = 5;
constexpr unsigned kPositionRegister = 6;
constexpr unsigned kStack = 7;

}  // namespace

bool FilterMachine::Run(const MachineProgram& program, std::uint64_t position, const Registers& start,
                        std::vector<std::uint8_t>* range, std::vector<std::uint8_t>* globals) {
  std::copy(start.begin(), start.end(), registers_.begin());
  registers_[kPositionRegister] = static_cast<std::uint32_t>(position);
  registers_[kStack] = kMemory;
  flags_ = 0;
  Load(program, position, *range, *globals);
  const std::uint64_t most = kMostCommands + kCommandsPerByte * (position + range->size());
  if (!Execute(program.commands, std::min(most, carried_out_ + kMostCommands))) return false;
  TakeResult(range, globals);
  return true;
}

// What other runs left in the memory stays: only programs that nobody makes would see it.
void FilterMachine::Load(const MachineProgram& program, std::uint64_t position,
                         std::span<const std::uint8_t> range, std::span<const std::uint8_t> globals) {
  constexpr std::size_t kBehindLast = 3;  // of a number that begins at the last address
  memory_.resize(kMemory + kBehindLast);
  std::copy(range.begin(), range.end(), memory_.begin());
  std::fill(memory_.begin() + kGlobals, memory_.begin() + kGlobalsEnd, 0);
  for (unsigned i = 0; i < kStack; ++i) StoreNumber(registers_[i], 4, &memory_[kGlobals + 4 * i]);
  StoreNumber(static_cast<std::uint32_t>(range.size()), 4, &memory_[kResultLength]);
  StoreNumber(static_cast<std::uint32_t>(position), 4, &memory_[kPosition]);
  StoreNumber(static_cast<std::uint32_t>(position >> 32), 4, &memory_[kPosition + 4]);
  StoreNumber(registers_[kRunsRegister], 4, &memory_[kRuns]);
  const auto own = std::copy(globals.begin(), globals.end(), memory_.begin() + kOwnGlobals);
  const auto room = static_cast<std::size_t>(memory_.begin() + kGlobalsEnd - own);
  std::copy_n(program.data.begin(), std::min(program.data.size(), room), own);
}

void FilterMachine::TakeResult(std::vector<std::uint8_t>* range, std::vector<std::uint8_t>* globals) const {
  const std::uint32_t start = LoadNumber(&memory_[kResultStart], 4) % kMemory;
  const std::uint32_t length = LoadNumber(&memory_[kResultLength], 4) % kMemory;
  const auto result = std::span(memory_).first(kMemory).subspan(start);
  range->clear();
  if (length <= result.size()) range->assign(result.begin(), result.begin() + length);
  const std::size_t kept = std::min<std::size_t>(LoadNumber(&memory_[kKept], 4), kMostGlobals);
  const auto own = memory_.begin() + kOwnGlobals;
  globals->assign(own, own + static_cast<std::ptrdiff_t>(kept));
}

bool FilterMachine::Execute(const std::vector<MachineCommand>& commands, std::uint64_t most) {
  std::size_t next = 0;
  while (carried_out_ < most && next < commands.size()) {
    ++carried_out_;
    const MachineCommand& command = commands[next++];
    if (command.opcode == kRet) {
      if (registers_[kStack] >= kMemory) return true;
      next = Pop();
    } else if (Jumps(command.opcode)) {
      const std::uint32_t target = Get(command.first, false);
      if (command.opcode == kCall) Push(static_cast<std::uint32_t>(next));
      next = target;
    } else {
      CarryOut(command);
    }
  }
  return false;
}

// Does it go on elsewhere?
bool FilterMachine::Jumps(MachineOpcode opcode) const {
  switch (opcode) {
    case kJmp:
    case kCall:
      return true;
    case kJz:
      return (flags_ & kZeroFlag) != 0;
    case kJnz:
      return (flags_ & kZeroFlag) == 0;
    case kJs:
      return (flags_ & kSignFlag) != 0;
    case kJns:
      return (flags_ & kSignFlag) == 0;
    case kJb:
      return (flags_ & kCarryFlag) != 0;
    case kJbe:
      return (flags_ & (kCarryFlag | kZeroFlag)) != 0;
    case kJa:
      return (flags_ & (kCarryFlag | kZeroFlag)) == 0;
    case kJae:
      return (flags_ & kCarryFlag) == 0;
    default:
      return false;
  }
}

// All commands that do not go on elsewhere. Those that would, and do not now, do nothing.
void FilterMachine::CarryOut(const MachineCommand& command) {
  const auto& [opcode, is_byte, first, second] = command;
  switch (opcode) {
    case kMov:
      return Set(first, is_byte, Get(second, is_byte));
    case kMovZx:
      return Set(first, false, Get(second, true));
    case kMovSx:
      return Set(first, false, static_cast<std::uint32_t>(static_cast<std::int8_t>(Get(second, true))));
    case kXchg: {
      const std::uint32_t value = Get(first, is_byte);
      Set(first, is_byte, Get(second, is_byte));
      return Set(second, is_byte, value);
    }
    case kPush:
      return Push(Get(first, false));
    case kPop:
      return Set(first, false, Pop());
    case kPushA:
    case kPopA:
      return MoveRegisters(opcode == kPushA);
    case kPushF:
      return Push(flags_);
    case kPopF:
      flags_ = Pop();
      return;
    case kCmp:
    case kTest:
      Compute(opcode, is_byte, Get(first, is_byte), Get(second, is_byte));
      return;
    default:
      if (!IsJump(opcode) && opcode != kPrint)
        Set(first, is_byte, Compute(opcode, is_byte, Get(first, is_byte), Get(second, is_byte)));
  }
}

// All of them to the stack or from there; R7 is kept as it was before.
void FilterMachine::MoveRegisters(bool to_stack) {
  Registers all;
  std::copy_n(registers_.begin(), kRegisters, all.begin());
  if (to_stack) {
    for (const std::uint32_t value : all) Push(value);
  } else {
    for (auto value = all.rbegin(); value != all.rend(); ++value) *value = Pop();
    std::copy(all.begin(), all.end(), registers_.begin());
  }
}

// What a command makes of the values of its operands. The flags are those of 32 bits also where there are only 8, but for
// the sign of sums.
std::uint32_t FilterMachine::Compute(MachineOpcode opcode, bool is_byte, std::uint32_t a, std::uint32_t b) {
  const std::uint32_t mask = is_byte ? 0xFF : 0xFFFFFFFF;
  const std::uint32_t carry = flags_ & kCarryFlag;
  switch (opcode) {
    case kAdd: {
      const std::uint32_t sum = Flagged((a + b) & mask, ((a + b) & mask) < a);
      if (is_byte && sum >= 0x80) flags_ |= kSignFlag;
      return sum;
    }
    case kAdc: {
      const std::uint32_t sum = (a + b + carry) & mask;
      return Flagged(sum, sum < a || (sum == a && carry != 0));
    }
    case kSub:
    case kCmp:
      return Flagged(a - b, b > a);
    case kSbb:
      return Flagged(a - b - carry, b > a || (b == a && carry != 0));
    case kInc:
      return Flagged((a + 1) & mask, false);
    case kDec:
      return Flagged(a - 1, false);
    case kXor:
      return Flagged(a ^ b, false);
    case kAnd:
    case kTest:
      return Flagged(a & b, false);
    case kOr:
      return Flagged(a | b, false);
    case kNot:
      return ~a;
    case kNeg:
      return Flagged(0 - a, a != 0);
    case kMul:
      return a * b;
    case kDiv:
      return b == 0 ? a : a / b;
    default:
      return Shift(opcode, a, b % 32);
  }
}

std::uint32_t FilterMachine::Shift(MachineOpcode opcode, std::uint32_t a, std::uint32_t count) {
  if (count == 0) return Flagged(a, false);
  if (opcode == kShl) return Flagged(a << count, (a >> (32 - count) & 1) != 0);
  const bool last_out = (a >> (count - 1) & 1) != 0;
  if (opcode == kShr) return Flagged(a >> count, last_out);
  return Flagged(static_cast<std::uint32_t>(static_cast<std::int32_t>(a) >> count), last_out);
}

// The result, with the flags set that belong to it.
std::uint32_t FilterMachine::Flagged(std::uint32_t result, bool has_carry) {
  flags_ = (result == 0 ? kZeroFlag : result & kSignFlag) | (has_carry ? kCarryFlag : 0);
  return result;
}

void FilterMachine::Push(std::uint32_t value) {
  registers_[kStack] -= 4;
  StoreNumber(value, 4, &memory_[registers_[kStack] % kMemory]);
}

std::uint32_t FilterMachine::Pop() {
  const std::uint32_t value = LoadNumber(&memory_[registers_[kStack] % kMemory], 4);
  registers_[kStack] += 4;
  return value;
}

std::uint8_t* FilterMachine::Address(const MachineOperand& operand) {
  return &memory_[(registers_[operand.register_number] + operand.value) % kMemory];
}

std::uint32_t FilterMachine::Get(const MachineOperand& operand, bool is_byte) {
  if (operand.kind == Kind::kMemory) return LoadNumber(Address(operand), is_byte ? 1 : 4);
  const std::uint32_t value = operand.value + registers_[operand.register_number];
  return is_byte ? value & 0xFF : value;
}

void FilterMachine::Set(const MachineOperand& operand, bool is_byte, std::uint32_t value) {
  if (operand.kind == Kind::kMemory) return StoreNumber(value, is_byte ? 1 : 4, Address(operand));
  if (operand.kind != Kind::kRegister) return;
  std::uint32_t& changed = registers_[operand.register_number];
  changed = is_byte ? (changed & ~0xFFU) | (value & 0xFF) : value;
}

}  // namespace quendle::modules
