#include <gtest/gtest.h>

#include <numeric>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/modules/common/little_endian.h"
#include "archive/modules/rar/unpack/common_filters.h"
#include "archive/modules/rar/unpack/filter_machine.h"
#include "archive/modules/rar/unpack/filter_programs.h"
#include "archive/modules/rar/unpack/filters29.h"
#include "support/rar_filters.h"

namespace quendle::modules {
namespace {

using test::FromHex;
using test::kCallsProgram;
using test::PackedBits;
using test::PutBytes;
using test::PutNumber;
using test::Record;
using enum MachineOpcode;

std::vector<std::uint8_t> BytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

GTEST_TEST(Filters29, TurnBackWhatAnEncoderMade) {
  // At 12340h: three calls, two and another slot, and one that is too near the end.
  const std::string itanium = FromHex(
      "160044440414001011112800f0ffff501200cc0c00140020220020002000005016000400001400080000280010000050");
  struct Case {
    const char* name;
    std::unique_ptr<Filter> filter;
    std::string packed;
    std::string content;  // empty: it fails
  };
  const Case cases[] = {
      {"rgb", std::make_unique<RgbFilter>(12, 0),
       FromHex("10b150015319dd09c60fe0fefdfbfce4aa4080def0ff01ffff0b05f115"),
       FromHex("102030612233142535182a3b1a2e40204a5099a0a1506070f0e0d10102")},
      {"rgb too narrow", std::make_unique<RgbFilter>(2, 0), "abc", ""},
      {"itanium", std::make_unique<ItaniumFilter>(),
       FromHex("1600148d041400b0a2112800302301501200cc0c001400202200200070230150") + itanium.substr(32),
       itanium},
      {"audio of no channels", std::make_unique<AudioFilter>(0), "abc", ""},
      {"audio of too many", std::make_unique<AudioFilter>(0xFFFFFFFF), "\xFF\xFE", "\x01\x02"},
  };
  for (const auto& [name, filter, packed, content] : cases) {
    auto bytes = BytesOf(packed);
    EXPECT_EQ(filter->Run(0x12340, &bytes), !content.empty()) << name;
    EXPECT_TRUE(content.empty() || bytes == BytesOf(content)) << name;
  }
}

MachineOperand R(unsigned number) {
  return {MachineOperand::Kind::kRegister, static_cast<std::uint8_t>(number), 0};
}
MachineOperand N(std::uint32_t value) {
  return {.value = value};
}
MachineOperand At(std::uint32_t address) {
  return {.kind = MachineOperand::Kind::kMemory, .value = address};
}
MachineCommand C(MachineOpcode opcode, MachineOperand first = {}, MachineOperand second = {}) {
  return {opcode, false, first, second};
}
MachineCommand B(MachineOpcode opcode, MachineOperand first, MachineOperand second = {}) {
  return {opcode, true, first, second};
}

// R0 and the flags behind the commands. Nullopt: they did not end.
std::optional<std::pair<std::uint32_t, std::uint32_t>> After(std::vector<MachineCommand> commands) {
  for (const auto& last : {C(kMov, At(0), R(0)), C(kPushF), C(kPop, At(4)), C(kRet)})
    commands.push_back(last);
  std::vector<std::uint8_t> range(8);
  std::vector<std::uint8_t> globals;
  static FilterMachine machine;
  machine.BeginEntry();
  if (!machine.Run({commands, {}}, 0, {}, &range, &globals)) return std::nullopt;
  const std::string bytes(range.begin(), range.end());
  return std::pair{static_cast<std::uint32_t>(LittleEndian(bytes, 0, 4)),
                   static_cast<std::uint32_t>(LittleEndian(bytes, 4, 4))};
}

constexpr std::uint32_t kC = 1;
constexpr std::uint32_t kZ = 2;
constexpr std::uint32_t kS = 0x80000000;

GTEST_TEST(FilterMachine, CarriesCommandsOut) {
  struct Case {
    const char* name;
    std::vector<MachineCommand> commands;
    std::uint32_t r0;
    std::uint32_t flags = 0;
  };
  const auto r0 = [](std::uint32_t value) { return C(kMov, R(0), N(value)); };
  const MachineCommand below = C(kCmp, R(5), N(1));  // sets C and S
  const Case cases[] = {
      {"add byte", {r0(0x1FF), B(kAdd, R(0), N(1))}, 0x100, kC | kZ},
      {"add byte sign", {r0(0x17F), B(kAdd, R(0), N(1))}, 0x180, kS},
      {"adc", {below, C(kAdc, R(0), N(0xFFFFFFFF))}, 0, kC | kZ},
      {"adc of all", {r0(5), below, C(kAdc, R(0), N(0xFFFFFFFF))}, 5, kC},
      {"sbb", {below, C(kSbb, R(0), N(0))}, 0xFFFFFFFF, kC | kS},
      {"sbb of all", {r0(5), below, C(kSbb, R(0), N(0xFFFFFFFF))}, 5, kC},
      {"inc byte", {r0(0x1FF), below, B(kInc, R(0))}, 0x100, kZ},
      {"xor", {r0(6), below, C(kXor, R(0), N(3))}, 5},
      {"and", {r0(6), C(kAnd, R(0), N(3))}, 2},
      {"or", {r0(6), C(kOr, R(0), N(kS))}, 6 | kS, kS},
      {"not", {r0(6), below, C(kNot, R(0))}, 0xFFFFFFF9, kC | kS},
      {"neg", {r0(5), C(kNeg, R(0))}, 0xFFFFFFFB, kC | kS},
      {"shl", {r0(0xA0000001), C(kShl, R(0), N(3))}, 8, kC},
      {"shl by 0", {r0(1), below, C(kShl, R(0), N(0))}, 1},
      {"shr", {r0(6), C(kShr, R(0), N(2))}, 1, kC},
      {"sar", {r0(0x80000002), C(kSar, R(0), N(2))}, 0xE0000000, kC | kS},
      {"div", {r0(45), C(kDiv, R(0), N(7))}, 6},
      {"div by 0", {r0(45), C(kDiv, R(0), N(0))}, 45},
      {"wrapped memory", {C(kMov, At(0x7FFFF), N(0x1234)), B(kMov, R(0), At(0x3FFFF))}, 0x34},
      {"number as target", {r0(7), C(kAdd, N(5), N(6))}, 7},
      {"pusha begins with R0", {r0(9), C(kPushA), C(kAdd, R(7), N(28)), C(kPop, R(0))}, 9},
      {"popf", {below, C(kPushF), C(kAnd, R(5), N(0)), C(kPopF)}, 0, kC | kS},
      {"call", {C(kCall, N(3)), C(kInc, R(0)), C(kJmp, N(5)), r0(7), C(kRet)}, 8},
      {"result outside", {r0(0x12340000), C(kMov, At(0x3C01C), N(0x3FFFF)), C(kMov, At(0x3C020), N(2))}, 0},
      {"print", {below, C(kPrint, R(0))}, 0, kC | kS},
  };
  for (const auto& [name, commands, result, flags] : cases)
    EXPECT_EQ(After(commands), std::pair(result, flags)) << name;
  EXPECT_FALSE(After({C(kJmp, N(100))})) << "out of the program";
  FilterMachine machine;
  std::vector<std::uint8_t> none;
  EXPECT_FALSE(machine.Run({{C(kJmp, N(0))}, {}}, 1ULL << 40, {}, &none, &none)) << "without an end";
  EXPECT_FALSE(machine.Run({{C(kRet)}, {}}, 0, {}, &none, &none)) << "too much for one entry";
}

std::vector<std::uint8_t> Checked(const PackedBits& bits) {
  auto code = BytesOf('\0' + bits.Bytes());
  code[0] = std::accumulate(code.begin(), code.end(), std::uint8_t{0}, std::bit_xor());
  return code;
}

GTEST_TEST(FilterMachine, ReadsPrograms) {
  // Those of jumps, in place of command 0.
  for (const auto& [number, target] :
       {std::pair{5U, 5U}, {9U, -7U}, {20U, 12U}, {140U, -124U}, {300U, 44U}}) {
    PackedBits jump;
    PutNumber(number, &jump.Put(0, 1).Put(0x20, 6).Put(0, 2));
    const auto program = ParseMachineProgram(Checked(jump));
    ASSERT_TRUE(program && program->commands.size() == 2) << number;
    EXPECT_EQ(program->commands[0].opcode, kJmp) << number;
    EXPECT_EQ(program->commands[0].first.value, target) << number;
  }
  PackedBits data;
  PutNumber(0x10000000, &data.Put(1, 1));
  EXPECT_FALSE(ParseMachineProgram(Checked(data))) << "more data than there are";
}

// The program for sound, from where that for calls is, too.
const std::string kSoundProgram = FromHex(
    "47019a4195e5720dc26482749324b14006d8384400a8013411dca1ba01990cc4033119a4066622604d9a400d668e60d030401826"
    "c1c8f6e62613789208e850bc5a07c6e9f520a9a0ed3733473966907019a39bcf258380c1bd30166e233493811609b050183b4dc8"
    "4c059b88c528e0769390980b37118a59c480424843a947ee43346047d44a0dbbd359a486ee05094026c9342476a0306a20ea0220"
    "04a041509e503fe6e128944601bd8b40f0681136c9a1923811419ca89510ee50662b00209511040262ac668c6aca2640b2671b4b"
    "26cc648a6271a2b8");

GTEST_TEST(FilterMachine, DoesWhatFiltersDoWithoutIt) {
  std::vector<std::uint8_t> packed(8'000, 0xE8);
  for (std::size_t i = 0; i < packed.size(); ++i) {
    if (i % 7 != 0) packed[i] = static_cast<std::uint8_t>(i * i >> 5);
    if (i < 5'000) packed[i] = static_cast<std::uint8_t>(i < 2'500 || i % 2 == 0 ? 1 : -1);
  }
  FilterMachine machine;
  for (const bool is_sound : {false, true}) {
    auto expected = packed;
    auto range = packed;
    std::vector<std::uint8_t> globals;
    if (is_sound) {
      AudioFilter(1).Run(12'345, &expected);
    } else {
      X86Filter(false, X86Filter::Positions::k32Bits).Run(12'345, &expected);
    }
    const auto program = ParseMachineProgram(BytesOf(is_sound ? kSoundProgram : kCallsProgram));
    EXPECT_TRUE(machine.Run(program.value(), 12'345, {1, 0, 0, 0x3C000, 8'000}, &range, &globals));
    EXPECT_TRUE(range == expected) << is_sound;
  }
}

// Puts out R0 to R6, a word of globals, which is kept and grows with each run, and one of data.
const std::string kTelling = FromHex(
    "658608060402070200e2481c8a039960744300e8a681d18e03a38f8001e02001d207c000f01118f8001e02001f0003c03004");

// What the next 36 bytes become by a record, as hexadecimal words.
std::string Words(FilterPrograms* programs, unsigned flags, const std::string& record) {
  FilterQueue filters;
  filters.Begin();
  if (!programs->Add(static_cast<std::uint8_t>(flags), BytesOf(record), 0, &filters)) return "refused";
  const std::string zeros(300, '\0');
  std::string_view raw = zeros;
  std::string_view out;
  while (!raw.empty() && out.size() != 36 && filters.Pass(&raw, &out)) continue;
  if (raw.empty()) return filters.IsHolding() ? "held" : "unfiltered";
  std::ostringstream words;
  for (std::size_t i = 0; i < 36; i += 4) words << std::hex << LittleEndian(out, i, 4) << ' ';
  return words.str();
}

GTEST_TEST(FilterPrograms, RunAsRecordsSay) {
  const std::string fresh = Record({0, 0, 36, 50}, kTelling);
  PackedBits registers;
  for (const std::uint32_t number : {0U, 2U, 36U}) PutNumber(number, &registers);
  registers.Put(0b0100101, 7);
  for (const std::uint32_t number : {11U, 22U, 0xFFFFFFF0U, 50U}) PutNumber(number, &registers);
  PutBytes(kTelling, &registers);
  PutBytes(std::string("\x10\x40\0\0\0", 5), &registers);
  struct Case {
    const char* name;
    unsigned flags;
    std::string record;
    const char* words;
  };
  const Case cases[] = {
      {"registers", 0xB8, registers.Bytes(), "b 0 16 3c000 24 fffffff0 2 10 1020304 "},
      {"same, global kept", 0x00, Record({3}), "0 0 0 3c000 24 1 3 11 1020304 "},
      {"far", 0x48, Record({1, 4}, "abcd"), "0 0 0 3c000 24 2 103 12 1020304 "},
      {"second", 0xA0, Record({2, 0, 36, 50}, kTelling), "0 0 0 3c000 24 0 0 1020304 0 "},
      {"first again", 0x80, Record({1, 0}), "0 0 0 3c000 24 3 0 13 1020304 "},
      {"all forgotten", 0xA0, fresh, "0 0 0 3c000 24 0 0 1020304 0 "},
      {"its length, too", 0x80, Record({2, 0, 50}, kTelling), "unfiltered"},
      {"too long", 0x20, Record({0, 0x3C001}), "unfiltered"},
      {"length cut off", 0x20, Record({0}), "refused"},
      {"no such", 0x80, Record({4, 0}), "refused"},
      {"no record", 0xA0, "", "refused"},
      {"program cut off", 0xA0, fresh.substr(0, 50), "refused"},
      {"no program", 0xA0, Record({0, 0, 36, 0}), "refused"},
      {"program changed", 0xA0, Record({0, 0, 36, 50}, kTelling.substr(0, 49) + '!'), "refused"},
      {"too many globals", 0xA8, fresh + '\x87' + '\xF0' + std::string(9'000, 'a'), "refused"},
  };
  FilterPrograms programs;
  for (const auto& [name, flags, record, words] : cases)
    EXPECT_EQ(Words(&programs, flags, record), words) << name;
}

GTEST_TEST(FilterPrograms, AreOnlyAsManyAsPackersMake) {
  FilterPrograms programs;
  FilterQueue filters;
  const auto add = [&](const std::string& record) {
    return programs.Add(0xA0, BytesOf(record), 0, &filters);
  };
  for (std::uint32_t number = 1; number <= 1'025; ++number)
    EXPECT_EQ(add(Record({number, 0, 0, 53}, kCallsProgram)), number <= 1'024) << number;
  for (std::size_t bytes = 0; bytes <= 1U << 20; bytes += kTelling.size())
    EXPECT_EQ(add(Record({0, 0, 0, 50}, kTelling)), bytes + kTelling.size() <= 1U << 20) << bytes;
}

}  // namespace
}  // namespace quendle::modules
