#include "archive/modules/rar/rar4_names.h"

#include <cstddef>
#include <utility>

#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

class UnicodeName {
 public:
  UnicodeName(std::string_view other, std::string_view packed) : other_(other), packed_(packed) {}

  // As UTF-16, little-endian.
  std::string Unpack() {
    const unsigned high = Next();
    while (at_ < packed_.size() && utf16_.size() < 2 * kLongest) {
      const unsigned kinds = Next();
      for (int shift = 6; shift >= 0 && at_ < packed_.size(); shift -= 2) UnpackOne(kinds >> shift & 3, high);
    }
    return std::move(utf16_);
  }

 private:
  static constexpr std::size_t kLongest = 32'768;

  unsigned Next() { return at_ < packed_.size() ? static_cast<unsigned char>(packed_[at_++]) : 0; }
  void Put(unsigned low, unsigned high) {
    utf16_ += static_cast<char>(low & 0xFF);
    utf16_ += static_cast<char>(high);
  }
  void UnpackOne(unsigned kind, unsigned high) {
    if (kind == 0) return Put(Next(), 0);
    if (kind == 1) return Put(Next(), high);
    const unsigned first = Next();
    if (kind == 2) return Put(first, Next());
    const bool differs = (first & 0x80) != 0;
    const unsigned difference = differs ? Next() : 0;
    for (unsigned i = (first & 0x7F) + 2; i > 0 && utf16_.size() / 2 < other_.size(); --i) {
      Put(static_cast<unsigned char>(other_[utf16_.size() / 2]) + difference, differs ? high : 0);
    }
  }

  std::string_view other_;
  std::string_view packed_;
  std::size_t at_ = 0;
  std::string utf16_;
};

}  // namespace

std::string NameInUnicode(std::string_view other, std::string_view packed) {
  return platform::FromUtf16Le(UnicodeName(other, packed).Unpack());
}

}  // namespace quendle::modules
