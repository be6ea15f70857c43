#include "fuzz_family.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "archive/modules/common/listing.h"

namespace quendle::modules {
namespace {

constexpr std::uint64_t kMostBytes = 16U << 20;

std::shared_ptr<const platform::InputFile> FileOf(const std::uint8_t* data, std::size_t size) {
  static const int memory = memfd_create("fuzz", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(memory);
  if (ftruncate(memory, 0) != 0 || pwrite(memory, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  std::unique_ptr<platform::InputFile> file;
  if (!platform::InputFile::Open(path, &file).ok()) std::abort();
  return file;
}

// Asks for everything, up to so much.
class Checker : public EntrySink {
 public:
  bool Wants(const Entry&) override { return true; }
  bool GoesOn() override { return total_ < kMostBytes; }
  bool Begin(Entry entry, bool) override {
    size_ = entry.size;
    given_ = 0;
    return total_ < kMostBytes;
  }
  Wish Content(std::string_view piece) override {
    if (piece.empty()) std::abort();
    given_ += piece.size();
    total_ += piece.size();
    return given_ < kMostBytes ? Wish::kMore : Wish::kSkip;
  }
  bool End(ReadStatus status, const Reason& problem) override {
    if (status == ReadStatus::kEnd && size_ && *size_ != given_) std::abort();  // a false success
    if (status > ReadStatus::kEnd && problem.empty()) std::abort();
    return true;
  }

 private:
  std::optional<std::uint64_t> size_;
  std::uint64_t given_ = 0;
  std::uint64_t total_ = 0;
};

}  // namespace

void ReadEverything(const Family& family, const std::uint8_t* data, std::size_t size) {
  const auto password = [] { return std::optional<std::string>("right"); };
  Reason reason;
  const auto input = family.find(FileOf(data, size), &reason);
  if (!input) return;
  const auto archive = ListArchive(
      family, *input, "", [password, asked = 0]() mutable { return asked++ < 2 ? password() : std::nullopt; },
      &reason);
  if (!archive) {
    if (reason.empty()) std::abort();
    return;
  }
  for (const Engine& engine : archive->engines) {
    Checker checker;
    const auto reader = engine.open(archive->input, {"", password}, &reason);
    if (reader && reader->Unpack(&checker) > ReadStatus::kEnd && reader->Problem().empty()) std::abort();
  }
}

}  // namespace quendle::modules
