#include "archive/modules/common/archive_input.h"

#include <algorithm>
#include <utility>

namespace quendle::modules {
namespace {

thread_local InterruptibleReads* interruptible = nullptr;

}  // namespace

InterruptibleReads::InterruptibleReads(std::function<bool()> may_go_on)
    : may_go_on_(std::move(may_go_on)), outer_(std::exchange(interruptible, this)) {}

InterruptibleReads::~InterruptibleReads() {
  interruptible = outer_;
}

bool InterruptibleReads::MayGoOn() {
  interrupted_ = interrupted_ || !may_go_on_();
  return !interrupted_;
}

bool InterruptibleReads::GoOn() {
  return interruptible == nullptr || interruptible->MayGoOn();
}

ArchiveInput::ArchiveInput(std::shared_ptr<const platform::InputFile> file, std::uint64_t offset)
    : offset_(offset), size_(file->Size() - std::min(offset, file->Size())) {
  volumes_.push_back(std::move(file));
  starts_.push_back(0);
}

ArchiveInput::ArchiveInput(std::vector<std::shared_ptr<const platform::InputFile>> volumes)
    : volumes_(std::move(volumes)) {
  for (const auto& volume : volumes_) {
    starts_.push_back(size_);
    size_ += volume->Size();
  }
}

ArchiveInput ArchiveInput::From(std::uint64_t offset) const {
  ArchiveInput rest = *this;
  const std::uint64_t skipped = std::min(offset, size_);
  rest.offset_ += skipped;
  rest.size_ -= skipped;
  return rest;
}

platform::Result ArchiveInput::ReadAt(std::uint64_t position, void* buffer, std::size_t size,
                                      std::size_t* got) const {
  *got = 0;
  if (!InterruptibleReads::GoOn()) {
    return platform::Failure(platform::Code::kCancelled, Path(), why::kCancelled);
  }
  if (position >= size_) return platform::Success();
  position += offset_;
  auto volume = static_cast<std::size_t>(std::upper_bound(starts_.begin(), starts_.end(), position) -
                                         starts_.begin() - 1);
  while (*got < size && volume < volumes_.size()) {
    std::size_t read = 0;
    platform::Result result = volumes_[volume]->ReadAt(position - starts_[volume],
                                                       static_cast<char*>(buffer) + *got, size - *got, &read);
    if (!result.ok()) return result;
    *got += read;
    position += read;
    if (position < starts_[volume] + volumes_[volume]->Size()) break;  // the file is shorter than it was
    ++volume;
  }
  return platform::Success();
}

std::vector<std::string> ArchiveInput::Paths() const {
  std::vector<std::string> paths;
  for (const auto& volume : volumes_) paths.push_back(volume->Path());
  return paths;
}

std::uint64_t ArchiveInput::VolumeStart(std::size_t index) const {
  return starts_[index] - std::min(offset_, starts_[index]);
}

std::string ArchiveInput::Identity() const {
  std::string identity = std::to_string(offset_);
  for (const auto& volume : volumes_) identity += " " + volume->Identity();
  return identity;
}

}  // namespace quendle::modules
