#include "archive/modules/common/libarchive_source.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace quendle::modules {
namespace {

constexpr std::size_t kReadSize = 128U << 10;

}  // namespace

LibarchiveSource::LibarchiveSource(const ArchiveInput& input, Ending ending)
    : input_(input),
      ending_(std::move(ending)),
      beginning_(std::min(input.Size(), ending_.position)),
      size_(beginning_ + ending_.bytes.size()),
      buffer_(kReadSize) {}

void LibarchiveSource::Attach(archive* library) {
  archive_read_set_read_callback(library, &Read);
  archive_read_set_skip_callback(library, &Skip);
  archive_read_set_seek_callback(library, &Seek);
  archive_read_set_callback_data(library, this);
}

la_ssize_t LibarchiveSource::Read(archive* library, void* self, const void** bytes) {
  auto* source = static_cast<LibarchiveSource*>(self);
  std::size_t got = 0;
  if (source->position_ < source->beginning_) {
    const std::uint64_t size = std::min<std::uint64_t>(kReadSize, source->beginning_ - source->position_);
    const platform::Result result = source->input_.ReadAt(source->position_, source->buffer_.data(),
                                                          static_cast<std::size_t>(size), &got);
    if (!result.ok()) {
      archive_set_error(library, EIO, "%s", Sentence(result.reason, Language::kEnglish).c_str());
      return -1;
    }
    *bytes = source->buffer_.data();
  } else if (source->position_ < source->size_) {
    const auto skipped = static_cast<std::size_t>(source->position_ - source->beginning_);
    got = source->ending_.bytes.size() - skipped;
    *bytes = source->ending_.bytes.data() + skipped;
  }
  source->position_ += got;
  return static_cast<la_ssize_t>(got);
}

la_int64_t LibarchiveSource::Skip(archive*, void* self, la_int64_t request) {
  auto* source = static_cast<LibarchiveSource*>(self);
  const auto rest = static_cast<la_int64_t>(source->size_ - source->position_);
  const la_int64_t skipped = std::clamp<la_int64_t>(request, 0, rest);
  source->position_ += static_cast<std::uint64_t>(skipped);
  return skipped;
}

la_int64_t LibarchiveSource::Seek(archive*, void* self, la_int64_t offset, int origin) {
  auto* source = static_cast<LibarchiveSource*>(self);
  const auto size = static_cast<la_int64_t>(source->size_);
  la_int64_t base = 0;
  if (origin == SEEK_END) base = size;
  if (origin == SEEK_CUR) base = static_cast<la_int64_t>(source->position_);
  if (offset < -base || offset > size - base) return ARCHIVE_FATAL;
  source->position_ = static_cast<std::uint64_t>(base + offset);
  return base + offset;
}

}  // namespace quendle::modules
