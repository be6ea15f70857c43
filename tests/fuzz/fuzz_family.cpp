// Whole archives: found, listed and read to the end by every engine of a family, FUZZ_FAMILY.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "archive/modules/common/listing.h"
#include FUZZ_FAMILY_HEADER

namespace {

using namespace quendle;
using namespace quendle::modules;

constexpr std::uint64_t kMostBytes = 16U << 20;

std::shared_ptr<const platform::InputFile> FileOf(const std::uint8_t* data, std::size_t size) {
  static const int memory = memfd_create("fuzz", 0);
  static const std::string path = "/proc/self/fd/" + std::to_string(memory);
  if (ftruncate(memory, 0) != 0 || pwrite(memory, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  std::unique_ptr<platform::InputFile> file;
  if (!platform::InputFile::Open(path, &file).ok()) std::abort();
  return file;
}

void ReadAll(const OpenedArchive& archive, const Engine& engine, const ReaderOptions& options) {
  Reason reason;
  const auto reader = engine.open(archive.input, options, &reason);
  std::uint64_t total = 0;
  Entry entry;
  while (reader && total < kMostBytes && reader->NextEntry(&entry) == ReadStatus::kOk) {
    if (entry.kind != EntryKind::kFile) continue;
    std::string_view piece;
    std::uint64_t size = 0;
    ReadStatus status;
    while ((status = reader->ReadContent(&piece)) == ReadStatus::kOk && size < kMostBytes) {
      if (piece.empty()) std::abort();
      size += piece.size();
    }
    if (status == ReadStatus::kEnd && entry.size && *entry.size != size) std::abort();  // a false success
    if (status > ReadStatus::kEnd && reader->Problem().empty()) std::abort();
    total += size;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ReaderOptions options{
      "", [asked = 0]() mutable { return asked++ < 2 ? std::optional<std::string>("right") : std::nullopt; }};
  Reason reason;
  const auto input = FUZZ_FAMILY.find(FileOf(data, size), &reason);
  if (!input) return 0;
  const auto archive = ListArchive(FUZZ_FAMILY, *input, options, &reason);
  if (!archive) {
    if (reason.empty()) std::abort();
    return 0;
  }
  for (const Engine& engine : archive->engines) ReadAll(*archive, engine, options);
  return 0;
}
