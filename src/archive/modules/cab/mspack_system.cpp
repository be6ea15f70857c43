#include "archive/modules/cab/mspack_system.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace quendle::modules {
namespace {

constexpr std::size_t kBufferSize = 64U << 10;

void Ignore(mspack_file*, const char*, ...) {}

void* Allocate(mspack_system*, size_t size) {
  return std::malloc(size);
}

void Copy(void* from, void* to, size_t size) {
  std::memcpy(to, from, size);
}

}  // namespace

struct MspackSystem::File {
  MspackSystem* owner;
  bool is_output;
  std::uint64_t begin = 0;  // in the input
  std::uint64_t size = 0;
  std::uint64_t position = 0;
  std::string buffer;                 // the library reads a few bytes at a time
  std::uint64_t buffer_position = 0;  // in the file

  static File* From(mspack_file* file) { return reinterpret_cast<File*>(file); }

  // Bytes at `position`, as many as the buffer has; 0 at the end, -1 for a failure.
  int ReadSome(char* bytes, std::size_t wanted) {
    if (position < buffer_position || position >= buffer_position + buffer.size()) {
      buffer.resize(
          static_cast<std::size_t>(std::min<std::uint64_t>(kBufferSize, size - std::min(position, size))));
      std::size_t got = 0;
      const bool ok = owner->input_.ReadAt(begin + position, buffer.data(), buffer.size(), &got).ok();
      buffer.resize(ok ? got : 0);
      buffer_position = position;
      if (!ok) return -1;
    }
    const std::size_t got = buffer.copy(bytes, wanted, static_cast<std::size_t>(position - buffer_position));
    position += got;
    return static_cast<int>(got);
  }
};

MspackSystem::MspackSystem(const ArchiveInput& input)
    : input_(input),
      functions_{{&Open, &Close, &Read, &Write, &Seek, &Tell, &Ignore, &Allocate, &std::free, &Copy, nullptr},
                 this} {
  for (std::size_t i = 0; i < input.VolumeCount(); ++i) names_.push_back(std::to_string(i));
}

mspack_file* MspackSystem::Open(mspack_system* self, const char* name, int mode) {
  MspackSystem* const owner = reinterpret_cast<Functions*>(self)->owner;
  auto* file = new File{owner, mode != MSPACK_SYS_OPEN_READ, 0, 0, 0, "", 0};
  if (!file->is_output) {
    std::size_t volume = 0;
    std::from_chars(name, name + std::strlen(name), volume);
    const ArchiveInput& input = owner->input_;
    file->begin = input.VolumeStart(volume);
    file->size =
        (volume + 1 < input.VolumeCount() ? input.VolumeStart(volume + 1) : input.Size()) - file->begin;
  }
  return reinterpret_cast<mspack_file*>(file);
}

void MspackSystem::Close(mspack_file* file) {
  delete File::From(file);
}

int MspackSystem::Read(mspack_file* file, void* buffer, int size) {
  int done = 0;
  while (done < size) {
    const int got =
        File::From(file)->ReadSome(static_cast<char*>(buffer) + done, static_cast<std::size_t>(size - done));
    if (got < 0) return got;
    if (got == 0) break;
    done += got;
  }
  return done;
}

int MspackSystem::Write(mspack_file* file, void* buffer, int size) {
  File::From(file)->owner->output_.append(static_cast<const char*>(buffer), static_cast<std::size_t>(size));
  return size;
}

int MspackSystem::Seek(mspack_file* file, off_t offset, int mode) {
  File& seeked = *File::From(file);
  const auto base = static_cast<off_t>(mode == MSPACK_SYS_SEEK_START ? 0
                                       : mode == MSPACK_SYS_SEEK_CUR ? seeked.position
                                                                     : seeked.size);
  if (offset < -base) return -1;
  seeked.position = static_cast<std::uint64_t>(base + offset);
  return 0;
}

off_t MspackSystem::Tell(mspack_file* file) {
  return static_cast<off_t>(File::From(file)->position);
}

}  // namespace quendle::modules
