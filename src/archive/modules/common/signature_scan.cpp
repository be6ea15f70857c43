#include "archive/modules/common/signature_scan.h"

#include <algorithm>
#include <span>
#include <string>

namespace quendle::modules {
namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t kBlock = 256U << 10;
constexpr unsigned kMostCandidates = 10'000;  // programs have a handful

// Mach-O stands in either order of bytes, for 32 and 64 bits, and for several machines at once.
constexpr std::string_view kPrograms[] = {
    "MZ"sv,
    "\x7F\x45LF"sv,
    "\xFE\xED\xFA\xCE"sv,
    "\xFE\xED\xFA\xCF"sv,
    "\xCE\xFA\xED\xFE"sv,
    "\xCF\xFA\xED\xFE"sv,
    "\xCA\xFE\xBA\xBE"sv,
    "\xCA\xFE\xBA\xBF"sv,
    "\xBE\xBA\xFE\xCA"sv,
    "\xBF\xBA\xFE\xCA"sv,
};
constexpr std::string_view kArchives[] = {"PK\3\4"sv, "PK\5\6"sv, "MSCF"sv, "Rar!\x1A\x07"sv,
                                          "7z\xBC\xAF\x27\x1C"sv};

// Where the signatures stand in some bytes, one place after the other.
class Places {
 public:
  Places(std::string_view bytes, const std::vector<std::string_view>& signatures)
      : bytes_(bytes), signatures_(signatures) {
    for (const std::string_view signature : signatures_) next_.push_back(bytes_.find(signature));
  }

  // npos when there are no more.
  std::size_t Next() {
    const std::size_t place = next_.empty() ? bytes_.npos : *std::min_element(next_.begin(), next_.end());
    if (place == bytes_.npos) return place;
    for (std::size_t i = 0; i < next_.size(); ++i) {
      if (next_[i] == place) next_[i] = bytes_.find(signatures_[i], place + 1);
    }
    return place;
  }

 private:
  std::string_view bytes_;
  const std::vector<std::string_view>& signatures_;
  std::vector<std::size_t> next_;  // of each signature
};

bool BeginsWithOneOf(const ArchiveInput& input, std::span<const std::string_view> marks) {
  char begin[8] = {};
  std::size_t got = 0;
  if (!input.ReadAt(0, begin, sizeof begin, &got).ok()) return false;
  const std::string_view bytes(begin, got);
  return std::any_of(marks.begin(), marks.end(),
                     [bytes](std::string_view mark) { return bytes.starts_with(mark); });
}

// May the archive stand further behind?
bool MayHaveFront(const ArchiveInput& input, const SignatureRule& rule) {
  return BeginsWithProgram(input) || (rule.behind_anything && !BeginsWithOneOf(input, kArchives));
}

}  // namespace

bool BeginsWithProgram(const ArchiveInput& input) {
  return BeginsWithOneOf(input, kPrograms);
}

std::optional<std::uint64_t> FindSignature(const ArchiveInput& input, const SignatureRule& rule,
                                           const std::function<bool(std::uint64_t position)>& fits) {
  std::size_t longest = 1;
  for (const std::string_view signature : rule.signatures) longest = std::max(longest, signature.size());
  const std::uint64_t reach = std::min(MayHaveFront(input, rule) ? rule.reach : 1, input.Size());
  std::string block;
  unsigned tried = 0;
  for (std::uint64_t begin = 0; begin < reach; begin += kBlock) {
    const auto candidates = static_cast<std::size_t>(std::min(kBlock, reach - begin));
    // A signature that begins at the last candidate ends behind the block.
    block.resize(candidates + longest - 1);
    std::size_t got = 0;
    if (!input.ReadAt(begin + rule.lead, block.data(), block.size(), &got).ok()) return std::nullopt;
    Places places(std::string_view(block).substr(0, got), rule.signatures);
    for (std::size_t place = places.Next(); place < candidates; place = places.Next()) {
      if (fits(begin + place)) return begin + place;
      if (++tried == kMostCandidates) return std::nullopt;
    }
  }
  return std::nullopt;
}

}  // namespace quendle::modules
