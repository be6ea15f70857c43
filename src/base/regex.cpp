#include "base/regex.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdint>
#include <utility>

namespace quendle {
namespace {

// Far above what a sensible pattern needs on a file name of 255 characters, and some milliseconds at most.
constexpr std::uint32_t kMatchLimit = 80'000;
constexpr std::uint32_t kDepthLimit = 5'000;

// Anchored, since only a match that begins at the beginning can be whole; otherwise the limit would count
// anew from each character of the name.
constexpr std::uint32_t kOptions = PCRE2_UTF | PCRE2_CASELESS | PCRE2_DOLLAR_ENDONLY |
                                   PCRE2_ALLOW_EMPTY_CLASS | PCRE2_MATCH_UNSET_BACKREF | PCRE2_ALT_BSUX |
                                   PCRE2_ANCHORED | PCRE2_NEVER_BACKSLASH_C;

// What compiling and matching share. Made on first use and kept: the settings never differ.
struct Engine {
  Engine()
      : compile(pcre2_compile_context_create(nullptr)),
        match(pcre2_match_context_create(nullptr)),
        data(pcre2_match_data_create(1, nullptr)) {
    pcre2_set_compile_extra_options(compile, PCRE2_EXTRA_ALT_BSUX);
    pcre2_set_newline(compile, PCRE2_NEWLINE_ANYCRLF);  // "." stops at either, as in ECMAScript
    pcre2_set_match_limit(match, kMatchLimit);
    pcre2_set_depth_limit(match, kDepthLimit);
  }
  ~Engine() {
    pcre2_match_data_free(data);
    pcre2_match_context_free(match);
    pcre2_compile_context_free(compile);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  pcre2_compile_context* compile;
  pcre2_match_context* match;
  pcre2_match_data* data;
};

Engine& SharedEngine() {
  static Engine engine;
  return engine;
}

Reason ErrorReason(int code) {
  PCRE2_UCHAR text[160];
  pcre2_get_error_message(code, text, sizeof text);
  const auto* const words = reinterpret_cast<const char*>(text);
  switch (code) {
    case PCRE2_ERROR_MISSING_CLOSING_PARENTHESIS:
      return why::kNoClosingParenthesis(words);
    case PCRE2_ERROR_UNMATCHED_CLOSING_PARENTHESIS:
      return why::kNoOpeningParenthesis(words);
    case PCRE2_ERROR_MISSING_SQUARE_BRACKET:
      return why::kNoClosingBracket(words);
    case PCRE2_ERROR_QUANTIFIER_INVALID:
      return why::kNothingToRepeat(words);
    case PCRE2_ERROR_END_BACKSLASH:
      return why::kEndsInBackslash(words);
    case PCRE2_ERROR_CLASS_RANGE_ORDER:
      return why::kRangeOutOfOrder(words);
    case PCRE2_ERROR_QUANTIFIER_OUT_OF_ORDER:
      return why::kNumbersOutOfOrder(words);
    case PCRE2_ERROR_QUANTIFIER_TOO_BIG:
      return why::kNumberTooBig(words);
    case PCRE2_ERROR_MATCHLIMIT:
    case PCRE2_ERROR_DEPTHLIMIT:
      return why::kMatchTakesTooLong(words);
    default:
      return Reason(words);
  }
}

// In UTF-8, behind its first byte.
bool IsInsideCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

PCRE2_SPTR Units(std::string_view text) {
  return reinterpret_cast<PCRE2_SPTR>(text.data());
}

}  // namespace

void Regex::FreeCode::operator()(void* code) const {
  pcre2_code_free(static_cast<pcre2_code*>(code));
}

Regex::Regex(std::string_view pattern) {
  int error = 0;
  PCRE2_SIZE offset = 0;
  code_.reset(
      pcre2_compile(Units(pattern), pattern.size(), kOptions, &error, &offset, SharedEngine().compile));
  if (code_ != nullptr) return;
  cause_ = ErrorReason(error);
  offset_ = offset;
}

Regex Regex::Unusable(Reason reason) {
  Regex regex;
  regex.cause_ = std::move(reason);
  return regex;
}

RegexAnswer Regex::MatchWhole(std::string_view subject) const {
  if (code_ == nullptr) return RegexAnswer::kError;
  Engine& engine = SharedEngine();
  const int found = pcre2_match(static_cast<const pcre2_code*>(code_.get()), Units(subject), subject.size(),
                                0, 0, engine.data, engine.match);
  if (found == PCRE2_ERROR_NOMATCH) return RegexAnswer::kNotWhole;
  if (found < 0) {
    cause_ = ErrorReason(found);
    return RegexAnswer::kError;
  }
  const PCRE2_SIZE* bounds = pcre2_get_ovector_pointer(engine.data);
  return bounds[0] == 0 && bounds[1] == subject.size() ? RegexAnswer::kWhole : RegexAnswer::kNotWhole;
}

bool Regex::MatchesPart(std::string_view subject) const {
  if (code_ == nullptr) return false;
  Engine& engine = SharedEngine();
  for (std::size_t begin = 0; begin < subject.size(); ++begin) {
    if (IsInsideCharacter(subject[begin])) continue;
    const int found = pcre2_match(static_cast<const pcre2_code*>(code_.get()), Units(subject), subject.size(),
                                  begin, 0, engine.data, engine.match);
    if (found == PCRE2_ERROR_NOMATCH) continue;
    if (found < 0) return false;
    const PCRE2_SIZE* bounds = pcre2_get_ovector_pointer(engine.data);
    if (bounds[1] > bounds[0]) return true;
  }
  return false;
}

}  // namespace quendle
