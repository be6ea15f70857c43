#include "archive/modules/sevenzip/sevenzip_blocks.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace quendle::modules {
namespace {

// Of a block that is unpacked here. What is unpacked of it and as much for its dictionary count in the pool, so that two
// of the largest have room, with what each entry takes.
constexpr std::uint64_t kLargestBlock = ContentPool::kMostSize / 5;
constexpr std::size_t kMostEntriesInBlock = 20'000;
// A worker has the list of entries once more, which takes about so much memory for each ...
constexpr std::size_t kListBytes = 200;
constexpr std::size_t kMostListBytes = 32U << 20;  // of all workers
// ... and about as long as unpacking so many bytes. Threads cost, too.
constexpr std::uint64_t kBytesPerEntry = 100;
constexpr std::uint64_t kLeastBytes = 512U << 10;

// Is the memory for unpacking small, even if what is unpacked is less? PPMd's does not go by that, and a dictionary is
// taken as large as it is declared: "LZMA2:26" is 2^26 bytes, and others have a unit, as "LZMA:96m".
bool IsModest(const std::string& method) {
  constexpr unsigned long kLargest = 26;
  if (method.find("PPMD") != std::string::npos) return false;
  const std::size_t lzma = method.find("LZMA");
  const std::size_t value = lzma == std::string::npos ? lzma : method.find(':', lzma);
  if (value == std::string::npos) return true;
  char* unit = nullptr;
  const unsigned long number = std::strtoul(method.c_str() + value + 1, &unit, 10);
  if (*unit == 'm') return number <= 1UL << (kLargest - 20);
  return *unit == 'k' || *unit == 'b' || number <= kLargest;
}

// An archive of its own, as only one thread may use one.
class BlockWorker final : public ContentPool::Worker, private SevenZipReceiver {
 public:
  BlockWorker(const ArchiveInput& input, std::uint32_t count, std::function<bool()> goes_on)
      : archive_(BytesOf(input), [] { return std::nullopt; }), count_(count), goes_on_(std::move(goes_on)) {}

  void Begin(std::span<const ContentPool::Job> jobs) override {
    const InterruptibleReads reads(goes_on_);
    contents_.clear();
    next_ = 0;
    if (!IsOpen()) return;
    std::vector<std::uint32_t> indices;
    for (const ContentPool::Job& job : jobs) indices.push_back(static_cast<std::uint32_t>(job.entry));
    archive_.Extract(indices, this);
  }

  std::optional<ContentBuffer> Unpack(std::size_t entry) override {
    if (next_ == contents_.size() || contents_[next_].entry != entry) return std::nullopt;
    return std::move(contents_[next_++].bytes);
  }

 private:
  struct Content {
    std::size_t entry = 0;
    ContentBuffer bytes;
  };

  bool IsOpen() {
    Reason ignored;
    if (!is_open_)
      is_open_ = archive_.Open(sevenzip::kSevenZipFormat, &ignored, SevenZipArchive::Threads::kOne) ==
                 ReadStatus::kOk;
    return *is_open_ && archive_.Count() == count_;
  }

  bool Begin(std::uint32_t index) override {
    const std::uint64_t size = archive_.Number(index, sevenzip::kSize).value_or(0);
    if (size > kLargestBlock) return false;
    content_ = ContentBuffer(static_cast<std::size_t>(size));
    size_ = 0;
    return true;
  }
  bool Write(std::string_view piece) override {
    if (piece.size() > content_.View().size() - size_) return false;
    piece.copy(content_.Data() + size_, piece.size());
    size_ += piece.size();
    return true;
  }
  bool End(std::uint32_t index, sevenzip::ExtractResult result) override {
    if (result == sevenzip::ExtractResult::kWhole && size_ == content_.View().size())
      contents_.push_back({index, std::move(content_)});
    return true;
  }
  bool GoesOn() override { return goes_on_(); }

  SevenZipArchive archive_;
  std::uint32_t count_;
  std::function<bool()> goes_on_;
  std::optional<bool> is_open_;
  ContentBuffer content_;  // of the entry that is being unpacked
  std::size_t size_ = 0;   // of that, so far
  std::vector<Content> contents_;
  std::size_t next_ = 0;
};

}  // namespace

void SevenZipBlocks::Add(std::uint32_t index, bool is_wanted) {
  const auto block = archive_.Number(index, sevenzip::kBlock);
  if (!block) return;  // it is empty
  if (block != block_) EndBlock();
  block_ = block;
  const std::uint64_t size = archive_.Number(index, sevenzip::kSize).value_or(0);
  block_size_ += std::min(size, UINT64_MAX - block_size_);
  if (!is_wanted) return;
  needed_ = block_size_;
  if (needed_ <= kLargestBlock && block_jobs_.size() <= kMostEntriesInBlock)
    block_jobs_.push_back({index, static_cast<std::size_t>(size), !block_jobs_.empty()});
}

void SevenZipBlocks::EndBlock() {
  const std::vector<ContentPool::Job> jobs = std::exchange(block_jobs_, {});
  const std::uint64_t needed = std::exchange(needed_, 0);
  block_size_ = 0;
  if (needed == 0) return;
  ++blocks_;
  if (needed > kLargestBlock || jobs.empty() || jobs.size() > kMostEntriesInBlock) return;
  const auto first = static_cast<std::uint32_t>(jobs.front().entry);
  if (archive_.Number(first, sevenzip::kIsEncrypted).value_or(0) != 0) return;
  if (!IsModest(archive_.Text(first, sevenzip::kMethod))) return;
  const std::size_t begin = jobs_.size();
  jobs_.insert(jobs_.end(), jobs.begin(), jobs.end());
  jobs_[begin].size += static_cast<std::size_t>(needed);
  pooled_ += needed;
}

void SevenZipBlocks::Start(std::function<bool()> goes_on) {
  EndBlock();
  const std::size_t count = std::max<std::size_t>(archive_.Count(), 1);
  std::size_t workers = kMostListBytes / kListBytes / count;
  const bool pays = blocks_ > 1 && workers > 1 && pooled_ >= std::max(kLeastBytes, kBytesPerEntry * count);
  if (!pays) jobs_.clear();
  pool_ = std::make_unique<ContentPool>(jobs_, [&]() -> std::unique_ptr<ContentPool::Worker> {
    if (workers-- == 0) return nullptr;
    return std::make_unique<BlockWorker>(input_, archive_.Count(), goes_on);
  });
}

bool SevenZipBlocks::BeginsAt(std::uint32_t index) const {
  return taken_ < jobs_.size() && jobs_[taken_].entry == index && !jobs_[taken_].is_with_last;
}

std::optional<ContentBuffer> SevenZipBlocks::Take(std::uint32_t index) {
  if (taken_ == jobs_.size() || jobs_[taken_].entry != index) return std::nullopt;
  std::optional<ContentBuffer> content = pool_->Take(index);
  is_wrong_ = !content || (is_wrong_ && jobs_[taken_].is_with_last);
  ++taken_;
  return is_wrong_ ? std::nullopt : std::move(content);
}

}  // namespace quendle::modules
