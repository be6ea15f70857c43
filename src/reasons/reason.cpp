#include "reasons/reason.h"

#include <array>
#include <iterator>

namespace quendle {
namespace {

constexpr std::string_view kAsSaid = "%1";  // by the system or a library, in English

struct Row {
  std::string_view name;
  std::array<std::string_view, kLanguageCount> sentences;
};

// In the order of ReasonId.
constexpr Row kRows[] = {
    {"", {kAsSaid, kAsSaid}},
#define REASON(name, ...) {#name, {__VA_ARGS__}},
#define IN_THEIR_WORDS(name, ...) {#name, {kAsSaid, __VA_ARGS__}},
#include "reasons/reason_table.inc"
#undef IN_THEIR_WORDS
#undef REASON
};

constexpr bool HasEach(std::string_view sentence, std::size_t count) {
  for (std::size_t number = 1; number <= count; ++number) {
    const char placeholder[] = {'%', static_cast<char>('0' + number)};
    if (sentence.find(std::string_view(placeholder, 2)) == std::string_view::npos) return false;
  }
  return PlaceholderCount(sentence) == count;
}

constexpr bool IsSaidInEachLanguage(const Row& row) {
  const std::size_t count = PlaceholderCount(row.sentences[0]);
  for (const std::string_view sentence : row.sentences) {
    const bool translates_words = row.sentences[0] == kAsSaid && HasEach(sentence, 0);
    if (sentence.empty() || !(translates_words || HasEach(sentence, count))) return false;
  }
  return true;
}

static_assert(std::all_of(std::begin(kRows), std::end(kRows), IsSaidInEachLanguage),
              "a reason lacks a language, or its sentences have different placeholders");

const Row& RowOf(const Reason& reason) {
  return kRows[static_cast<std::size_t>(reason.id())];
}

void AppendTo(std::string* text, const Reason& reason, Language language) {
  if (reason.id() == ReasonId::kWords) {
    text->append(reason.words());
    return;
  }
  std::string_view rest = RowOf(reason).sentences[static_cast<std::size_t>(language)];
  for (std::size_t mark; (mark = rest.find('%')) != std::string_view::npos; rest.remove_prefix(mark + 2)) {
    text->append(rest.substr(0, mark));
    AppendTo(text, reason.arguments()[static_cast<std::size_t>(rest[mark + 1] - '1')], language);
  }
  text->append(rest);
}

}  // namespace

Reason Reason::WithWords(const std::function<std::string(const std::string&)>& replace) const {
  if (id_ == ReasonId::kWords) return Reason(replace(words_));
  std::vector<Reason> arguments;
  for (const Reason& argument : arguments_) arguments.push_back(argument.WithWords(replace));
  return {id_, std::move(arguments)};
}

std::string Sentence(const Reason& reason, Language language) {
  std::string sentence;
  AppendTo(&sentence, reason, language);
  return sentence;
}

std::string_view NameOf(const Reason& reason) {
  return RowOf(reason).name;
}

std::optional<Reason> ReasonNamed(std::string_view name, std::vector<Reason> arguments) {
  const auto row = std::find_if(std::begin(kRows) + 1, std::end(kRows),
                                [name](const Row& known) { return known.name == name; });
  if (row == std::end(kRows) || PlaceholderCount(row->sentences[0]) != arguments.size()) return std::nullopt;
  return Reason(static_cast<ReasonId>(row - std::begin(kRows)), std::move(arguments));
}

}  // namespace quendle
