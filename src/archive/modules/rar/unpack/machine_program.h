// Programs for the machine that runs the filters of RAR 2.9: how they are written, and what their commands are.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quendle::modules {

// In the order of their numbers in a program.
enum class MachineOpcode : std::uint8_t {
  kMov,
  kCmp,
  kAdd,
  kSub,
  kJz,
  kJnz,
  kInc,
  kDec,
  kJmp,
  kXor,
  kAnd,
  kOr,
  kTest,
  kJs,
  kJns,
  kJb,
  kJbe,
  kJa,
  kJae,
  kPush,
  kPop,
  kCall,
  kRet,
  kNot,
  kShl,
  kShr,
  kSar,
  kNeg,
  kPushA,
  kPopA,
  kPushF,
  kPopF,
  kMovZx,
  kMovSx,
  kXchg,
  kMul,
  kDiv,
  kAdc,
  kSbb,
  kPrint,
};

// Does it go on elsewhere, or may it?
bool IsJump(MachineOpcode opcode);

// What a command works with.
struct MachineOperand {
  enum class Kind : std::uint8_t { kNumber, kRegister, kMemory };
  static constexpr std::uint8_t kNoRegister = 8;

  Kind kind = Kind::kNumber;
  std::uint8_t register_number = kNoRegister;
  std::uint32_t value = 0;  // the number; of memory: its address is this and the register, if there is one
};

struct MachineCommand {
  MachineOpcode opcode = MachineOpcode::kRet;
  bool is_byte = false;  // it works with the lowest bytes of its operands, and changes only these
  MachineOperand first{};
  MachineOperand second{};
};

struct MachineProgram {
  std::vector<MachineCommand> commands;  // the last one is a Ret
  std::vector<std::uint8_t> data;        // put behind the globals before each run
};

// A program as a record has it: a byte to check the others, whether there are data and these, the commands. Nullopt:
// the check fails, or the data are longer than all of it.
std::optional<MachineProgram> ParseMachineProgram(std::span<const std::uint8_t> code);

}  // namespace quendle::modules
