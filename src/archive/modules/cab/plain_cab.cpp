#include "archive/modules/cab/plain_cab.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "archive/modules/cab/cab_blocks.h"
#include "archive/modules/common/content_pool.h"

namespace quendle::modules {
namespace {

// Larger folders are unpacked while they are written.
constexpr std::uint64_t kMostPooled = 16U << 20;
constexpr std::size_t kPieceSize = 256U << 10;

// Of each folder: up to where its content is wanted.
using WantedEnds = std::vector<std::uint64_t>;

// What it takes to unpack so much of a folder.
std::size_t BufferSize(std::uint64_t end) {
  return static_cast<std::size_t>(end) + CabBlocks::kBlock + CabBlocks::kSlack;
}

// Unpacks the beginnings of folders.
class FolderWorker final : public ContentPool::Worker {
 public:
  FolderWorker(const ArchiveInput& input, const CabDirectory& directory, const WantedEnds& ends,
               EntrySink* sink)
      : directory_(directory), ends_(ends), sink_(*sink), blocks_(input) {}

  std::optional<ContentBuffer> Unpack(std::size_t folder) override {
    const auto end = static_cast<std::size_t>(ends_[folder]);
    ContentBuffer content(BufferSize(end));
    blocks_.Begin(directory_.folders[folder]);
    for (std::size_t size = 0; size < end;) {
      const std::size_t got = sink_.GoesOn() ? blocks_.Next(content.Data() + size) : 0;
      if (got == 0) return std::nullopt;
      size += got;
    }
    return content;
  }

 private:
  const CabDirectory& directory_;
  const WantedEnds& ends_;
  EntrySink& sink_;
  CabBlocks blocks_;
};

// The content of a folder from its beginning on, from memory or block by block.
class FolderContent {
 public:
  explicit FolderContent(const ArchiveInput& input) : blocks_(input) {}

  void Begin(const CabFolder& folder, std::optional<ContentBuffer> whole) {
    whole_ = std::move(whole);
    if (whole_) return;
    blocks_.Begin(folder);
    window_.resize((1 + kWindowBlocks) * CabBlocks::kBlock + CabBlocks::kSlack);
    next_ = CabBlocks::kBlock;
    end_ = 0;
  }

  // Bytes from `offset` on, which never goes back: `size` (not 0) at most. Empty: Problem().
  std::string_view At(std::uint64_t offset, std::uint64_t size) {
    if (whole_) {
      return whole_->View().substr(static_cast<std::size_t>(offset),
                                   static_cast<std::size_t>(std::min<std::uint64_t>(size, kPieceSize)));
    }
    while (end_ <= offset) {
      if (!TakeBlock()) return {};
    }
    const std::uint64_t left = end_ - offset;
    return {window_.data() + next_ - left, static_cast<std::size_t>(std::min(size, left))};
  }

  const Reason& Problem() const { return blocks_.Problem(); }

 private:
  static constexpr std::size_t kWindowBlocks = 7;

  bool TakeBlock() {
    if (next_ == (1 + kWindowBlocks) * CabBlocks::kBlock) {
      std::memcpy(window_.data(), window_.data() + next_ - CabBlocks::kBlock, CabBlocks::kBlock);
      next_ = CabBlocks::kBlock;
    }
    const std::size_t got = blocks_.Next(window_.data() + next_);
    end_ += got;
    next_ += got;
    return got > 0;
  }

  CabBlocks blocks_;
  std::optional<ContentBuffer> whole_;
  std::vector<char> window_;  // a block that came before, and some more
  std::size_t next_ = 0;      // behind the last block in it
  std::uint64_t end_ = 0;     // of that block in the folder's content
};

class PlainCabReader final : public ArchiveReader {
 public:
  PlainCabReader(const ArchiveInput& input, std::shared_ptr<const CabDirectory> directory,
                 std::string charset)
      : input_(input), directory_(std::move(directory)), charset_(std::move(charset)) {}

  ReadStatus NextEntry(Entry* entry) override;
  ReadStatus Unpack(EntrySink* sink) override;
  const Reason& Problem() const override { return none_; }

 private:
  Entry EntryOf(const CabFile& file) const {
    return ToEntry(file, directory_->folders[file.folder].is_mszip ? "MSZIP" : "none", charset_);
  }
  std::vector<ContentPool::Job> JobsFor(const WantedEnds& ends) const;

  const ArchiveInput& input_;
  const std::shared_ptr<const CabDirectory> directory_;
  const std::string charset_;
  std::size_t next_ = 0;  // of the list
  const Reason none_;
};

ReadStatus PlainCabReader::NextEntry(Entry* entry) {
  if (next_ == directory_->files.size()) return ReadStatus::kEnd;
  *entry = EntryOf(directory_->files[next_++]);
  return ReadStatus::kOk;
}

// A single folder would only wait for itself.
std::vector<ContentPool::Job> PlainCabReader::JobsFor(const WantedEnds& ends) const {
  std::vector<ContentPool::Job> jobs;
  if (ends.size() - static_cast<std::size_t>(std::count(ends.begin(), ends.end(), 0U)) < 2) return jobs;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    if (directory_->folders[i].is_mszip && ends[i] > 0 && ends[i] <= kMostPooled)
      jobs.push_back({i, BufferSize(ends[i])});
  }
  return jobs;
}

// Gives the content of a file. False: `sink` ends the reading.
bool GiveContent(const CabFile& file, FolderContent* folder, EntrySink* sink) {
  for (std::uint64_t given = 0; given < file.size;) {
    const std::string_view piece = folder->At(file.offset + given, file.size - given);
    if (piece.empty()) return sink->End(ReadStatus::kFailed, folder->Problem());
    const EntrySink::Wish wish = sink->Content(piece);
    if (wish != EntrySink::Wish::kMore) return wish == EntrySink::Wish::kSkip;
    given += piece.size();
  }
  return sink->End(ReadStatus::kEnd, {});
}

// Behind the last content that is wanted of a folder nothing of it is unpacked.
ReadStatus PlainCabReader::Unpack(EntrySink* sink) {
  std::vector<bool> wanted;
  WantedEnds ends(directory_->folders.size());
  for (const CabFile& file : directory_->files) {
    wanted.push_back(sink->Wants(EntryOf(file)));
    if (wanted.back() && file.size > 0) ends[file.folder] = file.offset + file.size;
  }
  ContentPool pool(JobsFor(ends),
                   [&] { return std::make_unique<FolderWorker>(input_, *directory_, ends, sink); });
  FolderContent content(input_);
  std::optional<std::size_t> folder;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const CabFile& file = directory_->files[i];
    if (!sink->Begin(EntryOf(file), wanted[i])) return ReadStatus::kEnd;
    if (!wanted[i]) continue;
    if (file.size > 0 && folder != file.folder) {
      folder = file.folder;
      content.Begin(directory_->folders[*folder], pool.Take(*folder));
    }
    if (!GiveContent(file, &content, sink)) return ReadStatus::kEnd;
  }
  return ReadStatus::kEnd;
}

}  // namespace

std::unique_ptr<ArchiveReader> OpenPlainCab(const ArchiveInput& input,
                                            std::shared_ptr<const CabDirectory> directory,
                                            const ReaderOptions& options) {
  return std::make_unique<PlainCabReader>(input, std::move(directory), options.charset);
}

}  // namespace quendle::modules
