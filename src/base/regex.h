// The regular expressions of profiles and filters: ECMAScript syntax and preferences, without regard to case,
// over Unicode text, with limits so that no pattern can hang the program.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "reasons/reason.h"

namespace quendle {

enum class RegexAnswer {
  kWhole,     // the first match found covers the whole subject
  kNotWhole,  // no match, or the first one found covers only a part
  kError,     // the pattern is invalid, or matching went over the limit
};

class Regex {
 public:
  // Compiles a pattern in UTF-8. An invalid one makes an object that answers kError.
  explicit Regex(std::string_view pattern);

  // One that answers kError for a reason known beforehand.
  static Regex Unusable(Reason reason);

  // Would replacing the first match in `subject` by nothing leave nothing? The first match is the leftmost
  // one with the earliest alternatives preferred, so a later alternative that would cover more does not
  // count. A `subject` that is not valid UTF-8 is kError; platform::WithReplacementCharacters makes one that
  // is.
  //   (".*\.zip", "A.ZIP") => kWhole    ("\.zip$", "A.ZIP") => kNotWhole    ("A|AB", "ab") => kNotWhole
  //   ("", "") => kWhole                ("(", "A") => kError                ("(a+)+\d", 255 "a"s) => kError
  RegexAnswer MatchWhole(std::string_view subject) const;

  // After kNotWhole: does the pattern match some characters of the name, but not all? What profiles need is
  // the answer above; this one tells their author what is missing.
  //   ("\.zip", "A.ZIP") => true    ("A|AB", "ab") => true    ("b", "A.ZIP") => false    ("b*", "A") => false
  bool MatchesPart(std::string_view subject) const;

  // Why an answer was kError: what is wrong with the pattern, and at which byte, or that the limit was reached, which is
  // remembered through later answers. Empty while there was no such answer.
  Reason Error() const { return offset_ ? why::kAtOffset(cause_, *offset_) : cause_; }

  // The two parts of it. Without an offset it is not the pattern's spelling.
  const Reason& ErrorCause() const { return cause_; }
  std::optional<std::size_t> ErrorOffset() const { return offset_; }

 private:
  struct FreeCode {
    void operator()(void* code) const;
  };
  Regex() = default;

  std::unique_ptr<void, FreeCode> code_;
  mutable Reason cause_;
  std::optional<std::size_t> offset_;
};

}  // namespace quendle
