#include "archive/modules/rar/unpack/machine_program.h"

#include <functional>
#include <numeric>

#include "archive/modules/rar/unpack/record_bits.h"

namespace quendle::modules {
namespace {

using Kind = MachineOperand::Kind;
using enum MachineOpcode;

static_assert(static_cast<unsigned>(kPrint) == 39, "the highest number that six bits can have is a command");

bool HasByteMode(MachineOpcode opcode) {
  return opcode <= kSub || opcode == kInc || opcode == kDec || (opcode >= kXor && opcode <= kTest) ||
         (opcode >= kNot && opcode <= kNeg) || (opcode >= kXchg && opcode <= kSbb);
}

unsigned OperandCount(MachineOpcode opcode) {
  if (opcode == kRet || opcode == kPrint || (opcode >= kPushA && opcode <= kPopF)) return 0;
  const bool has_one = IsJump(opcode) || opcode == kPush || opcode == kPop || opcode == kInc ||
                       opcode == kDec || opcode == kNot || opcode == kNeg;
  return has_one ? 1 : 2;
}

MachineOperand TakeOperand(bool is_byte, RecordBits* bits) {
  const auto take_register = [bits] { return static_cast<std::uint8_t>(bits->Take(3)); };
  if (bits->Take(1) == 1) return {.kind = Kind::kRegister, .register_number = take_register()};
  if (bits->Take(1) == 0)
    return {.kind = Kind::kNumber, .value = is_byte ? bits->Take(8) : bits->TakeNumber()};
  MachineOperand memory{.kind = Kind::kMemory};
  const bool has_address = bits->Take(1) == 1;
  if (!has_address || bits->Take(1) == 0) memory.register_number = take_register();
  if (has_address) memory.value = bits->TakeNumber();
  return memory;
}

// Where the jump of command `index` leads to. Short numbers are for near ones.
std::uint32_t JumpTarget(std::uint32_t number, std::size_t index) {
  if (number >= 256) return number - 256;
  const std::uint32_t bias = number >= 136 ? 264 : number >= 16 ? 8 : number >= 8 ? 16 : 0;
  return static_cast<std::uint32_t>(index) + number - bias;
}

MachineCommand TakeCommand(std::size_t index, RecordBits* bits) {
  std::uint32_t number = bits->Take(4);
  if (number >= 8) number = (number << 2 | bits->Take(2)) - 24;
  MachineCommand command{.opcode = static_cast<MachineOpcode>(number)};
  command.is_byte = HasByteMode(command.opcode) && bits->Take(1) == 1;
  const unsigned operands = OperandCount(command.opcode);
  if (operands > 0) command.first = TakeOperand(command.is_byte, bits);
  if (operands > 1) command.second = TakeOperand(command.is_byte, bits);
  if (IsJump(command.opcode) && command.first.kind == Kind::kNumber)
    command.first.value = JumpTarget(command.first.value, index);
  return command;
}

}  // namespace

bool IsJump(MachineOpcode opcode) {
  return opcode == kJz || opcode == kJnz || opcode == kJmp || (opcode >= kJs && opcode <= kJae) ||
         opcode == kCall;
}

std::optional<MachineProgram> ParseMachineProgram(std::span<const std::uint8_t> code) {
  if (code.empty() || std::accumulate(code.begin(), code.end(), 0, std::bit_xor<>()) != 0)
    return std::nullopt;
  RecordBits bits(code.subspan(1));
  MachineProgram program;
  if (bits.Take(1) == 1) {
    const std::uint32_t last = bits.TakeNumber();
    if (last >= code.size()) return std::nullopt;
    for (std::uint32_t i = 0; i <= last; ++i) program.data.push_back(static_cast<std::uint8_t>(bits.Take(8)));
  }
  while (!bits.IsAtEnd()) {
    const MachineCommand command = TakeCommand(program.commands.size(), &bits);
    // The last byte is filled up with bits that are no command.
    if (!bits.IsPastEnd()) program.commands.push_back(command);
  }
  program.commands.push_back({.opcode = kRet});
  return program;
}

}  // namespace quendle::modules
