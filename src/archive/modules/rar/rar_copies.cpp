#include "archive/modules/rar/rar_copies.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "archive/modules/common/entry_names.h"

namespace quendle::modules {
namespace {

// A content up to this size is kept for the next file that has the same; each further copy of a larger one takes
// another way through the archive.
constexpr std::size_t kMostKept = 4U << 20;
constexpr unsigned kMostPasses = 100;

// Keeps what goes through it.
class Keeper final : public EntrySink {
 public:
  Keeper(EntrySink* sink, std::string* kept) : sink_(*sink), kept_(*kept) {}

  bool Wants(const Entry& entry) override { return sink_.Wants(entry); }
  bool Begin(Entry entry, bool is_wanted) override { return sink_.Begin(std::move(entry), is_wanted); }
  Wish Content(std::string_view piece) override {
    if (kept_.size() <= kMostKept) kept_ += piece;
    return sink_.Content(piece);
  }
  bool End(ReadStatus status, const Reason& problem) override {
    is_whole_ = status == ReadStatus::kEnd && kept_.size() <= kMostKept;
    return sink_.End(status, problem);
  }
  bool GoesOn() override { return sink_.GoesOn(); }

  bool IsWhole() const { return is_whole_; }

 private:
  EntrySink& sink_;
  std::string& kept_;
  bool is_whole_ = false;
};

}  // namespace

// A copy may be the source of another. Only files in front of it can be its own: so none is its own source.
RarCopies::RarCopies(const ArchiveInput& input, RarKeys* keys, const std::vector<RarFile>& files)
    : input_(input), keys_(keys), files_(files), sources_(files.size(), files.size()) {
  std::unordered_map<std::string_view, std::size_t> known;
  std::vector<std::size_t> copies;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const RarFile& file = files[i];
    if (file.kind == EntryKind::kFile && !file.source) known[file.name] = i;
    (file.source ? copies : order_).push_back(i);
    if (!file.source) continue;
    const auto source = known.find(*file.source);
    if (source == known.end()) continue;
    sources_[i] = source->second;
    known[file.name] = source->second;
  }
  std::stable_sort(copies.begin(), copies.end(),
                   [this](std::size_t a, std::size_t b) { return sources_[a] < sources_[b]; });
  order_.insert(order_.end(), copies.begin(), copies.end());
}

const RarFile* RarCopies::SourceOf(std::size_t copy) const {
  return sources_[copy] < files_.size() ? &files_[sources_[copy]] : nullptr;
}

bool RarCopies::Refuse(Entry entry, const Reason& reason, EntrySink* sink) const {
  return sink->Begin(std::move(entry), true) && sink->End(ReadStatus::kFailed, reason);
}

bool RarCopies::Give(std::size_t copy, Entry entry, EntrySink* sink) {
  const std::size_t source = sources_[copy];
  if (source == files_.size())
    return Refuse(std::move(entry), why::kSourceMissing(DecodeName(*files_[copy].source, true, "")), sink);
  if (kept_of_ == source) {
    if (!sink->Begin(std::move(entry), true)) return false;
    const auto wish = kept_.empty() ? EntrySink::Wish::kMore : sink->Content(kept_);
    return wish == EntrySink::Wish::kMore ? sink->End(ReadStatus::kEnd, {}) : wish == EntrySink::Wish::kSkip;
  }
  if (!GoTo(source, sink)) return Refuse(std::move(entry), why::kReadAgainTooOften, sink);
  kept_.clear();
  kept_of_.reset();
  Keeper keeper(sink, &kept_);
  // Another copy's source may go on with this one.
  if (!content_->Give(files_[source], std::move(entry), true, &keeper)) return false;
  if (keeper.IsWhole()) kept_of_ = source;
  return true;
}

// What the source goes on with is unpacked again, from where the last source was on.
bool RarCopies::GoTo(std::size_t source, EntrySink* sink) {
  if (!content_ || next_ > source) {
    content_.emplace(input_, keys_);
    next_ = 0;
  }
  std::size_t first = source;
  for (std::size_t i = source; i > next_ && files_[first].IsPacked() && files_[first].is_solid; --i) {
    if (files_[i - 1].IsPacked()) first = i - 1;
  }
  // Without that another copy costs no more than what comes of it.
  if (first < source && next_ == 0 && ++passes_ > kMostPasses) return false;
  for (std::size_t i = first; i < source; ++i) {
    if (files_[i].IsPacked()) content_->PassOver(files_[i], sink);
  }
  next_ = source + 1;
  return true;
}

}  // namespace quendle::modules
