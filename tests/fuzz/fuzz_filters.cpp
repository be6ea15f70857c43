// Filters over the ranges of a content: those that are known, the machine for others, and what puts them in order. The
// same content in pieces of other sizes must come to the same.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <numeric>
#include <span>
#include <string>

#include "archive/modules/rar/unpack/common_filters.h"
#include "archive/modules/rar/unpack/filter_programs.h"
#include "archive/modules/rar/unpack/filters29.h"

namespace {

using namespace quendle::modules;

void Check(bool holds) {
  if (!holds) std::abort();
}

// Takes what it needs from the front of the fuzzer's bytes; zeros behind their end.
class Taken {
 public:
  Taken(const std::uint8_t* data, std::size_t size) : left_(data, size) {}
  std::uint8_t Byte() { return left_.empty() ? std::uint8_t{0} : Many(1)[0]; }
  std::uint32_t Number() { return std::uint32_t{Byte()} << 8 | Byte(); }
  std::span<const std::uint8_t> Many(std::size_t count) {
    const auto taken = left_.first(std::min(count, left_.size()));
    left_ = left_.subspan(taken.size());
    return taken;
  }
  bool IsEmpty() const { return left_.empty(); }

 private:
  std::span<const std::uint8_t> left_;
};

std::unique_ptr<Filter> MakeFilter(Taken* taken) {
  const std::uint8_t kind = taken->Byte();
  switch (kind % 8) {
    case 0:
      return std::make_unique<DeltaFilter>(taken->Number());
    case 1:
      return std::make_unique<ArmFilter>();
    case 2:
      return std::make_unique<ItaniumFilter>();
    case 3: {
      const std::uint32_t width = taken->Number();
      return std::make_unique<RgbFilter>(width, taken->Number());
    }
    case 4:
      return std::make_unique<AudioFilter>(taken->Number());
    default:
      return std::make_unique<X86Filter>(
          kind % 2 == 0, kind % 8 == 5 ? X86Filter::Positions::k24Bits : X86Filter::Positions::k32Bits);
  }
}

// Puts one filter to the queue: one that is known, or what a record says, whose program gets the byte that checks it.
bool AddFilter(Taken* taken, std::uint64_t made, FilterPrograms* programs, FilterQueue* queue) {
  const std::uint8_t kind = taken->Byte();
  if (kind < 0x80) {
    const std::uint64_t start = made + taken->Byte();
    const std::size_t length = taken->Number() % 1024;
    return queue->Add(start, length, MakeFilter(taken));
  }
  const auto record = taken->Many(taken->Number() % 512);
  return programs->Add(taken->Byte(), record, made, queue);
}

std::string RunQueue(Taken taken, std::size_t at_once) {
  FilterPrograms programs;
  programs.Begin(false);
  FilterQueue queue;
  queue.Begin();
  std::string content;
  std::uint64_t made = 0;
  while (!taken.IsEmpty()) {
    if (!AddFilter(&taken, made, &programs, &queue)) return content + "?";
    const auto bytes = taken.Many(taken.Byte());
    made += bytes.size();
    std::string_view raw(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    while (!raw.empty()) {
      std::string_view piece = raw.substr(0, at_once);
      const std::size_t size = piece.size();
      std::string_view out;
      if (!queue.Pass(&piece, &out)) return content + "!";
      Check(piece.size() < size);
      content += out;
      raw.remove_prefix(size - piece.size());
    }
  }
  return content + (queue.IsHolding() ? "+" : ".");
}

void RunMachine(Taken taken) {
  FilterMachine::Registers registers{};
  for (std::uint32_t& value : registers) value = taken.Number();
  const auto range_size = taken.Byte();
  const auto some = taken.Many(range_size);
  std::vector<std::uint8_t> range(some.begin(), some.end());
  const auto globals_size = taken.Byte();
  const auto own = taken.Many(globals_size);
  std::vector<std::uint8_t> globals(own.begin(), own.end());
  std::vector<std::uint8_t> code{0};
  const auto rest = taken.Many(4096);
  code.insert(code.end(), rest.begin(), rest.end());
  code[0] = std::accumulate(code.begin(), code.end(), std::uint8_t{0}, std::bit_xor<>());
  const auto program = ParseMachineProgram(code);
  if (!program) return;
  FilterMachine machine;
  for (int run = 0; run < 2; ++run) {
    if (!machine.Run(*program, registers[0], registers, &range, &globals)) return;
    Check(globals.size() <= FilterMachine::kMostGlobals);
    range.resize(std::min<std::size_t>(range.size(), 256));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Taken taken(data + 1, size - 1);
  if (data[0] % 2 != 0) {
    RunMachine(taken);
  } else {
    Check(RunQueue(taken, size) == RunQueue(taken, 1));
  }
  return 0;
}
