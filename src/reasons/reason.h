// Why something failed, as a value: which of the program's reasons it is, and the names, numbers and other reasons in it.
// Lower rooms make and pass it on; it becomes a sentence when it is shown, in the language it is shown in. The sentences
// stand in reasons/reason_table.inc.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quendle {

// In the order in which the table has their sentences.
enum class Language { kEnglish, kJapanese };
inline constexpr std::size_t kLanguageCount = 2;

enum class ReasonId {
  kWords,
#define REASON(name, ...) name,
#define IN_THEIR_WORDS(name, ...) name,
#include "reasons/reason_table.inc"
#undef IN_THEIR_WORDS
#undef REASON
};

// The highest n of the %n in a sentence; those before it are all there, which is checked when the table is compiled.
constexpr std::size_t PlaceholderCount(std::string_view sentence) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = sentence.find('%', at)) != std::string_view::npos; ++at)
    count = std::max(count, static_cast<std::size_t>(sentence.substr(at + 1).front() - '0'));
  return count;
}

class Reason;

// A reason of the table that takes kCount arguments. It is called to fill them in; one without any is a Reason as it is.
template <std::size_t kCount>
struct ReasonForm {
  ReasonId id;

  template <typename... Arguments>
  Reason operator()(const Arguments&... arguments) const;
};

// why::kThereAlready, why::kVolumeMissing(path): the reasons of the table.
namespace why {
#define REASON(name, english, ...) \
  inline constexpr ReasonForm<PlaceholderCount(english)> name{ReasonId::name};
#define IN_THEIR_WORDS(name, ...) inline constexpr ReasonForm<1> name{ReasonId::name};
#include "reasons/reason_table.inc"
#undef IN_THEIR_WORDS
#undef REASON
}  // namespace why

class Reason {
 public:
  // None: nothing failed.
  Reason() = default;

  // What is no sentence of the table: a name, a number, or what somebody else said.
  explicit Reason(std::string words) : words_(std::move(words)) {}
  explicit Reason(const char* words) : words_(words) {}
  template <std::integral Number>
  explicit Reason(Number number) : words_(std::to_string(number)) {}

  // NOLINTNEXTLINE(google-explicit-constructor): it is one
  Reason(ReasonForm<0> form) : id_(form.id) {}

  bool empty() const { return id_ == ReasonId::kWords && words_.empty(); }

  ReasonId id() const { return id_; }
  const std::string& words() const { return words_; }  // of kWords; empty otherwise
  const std::vector<Reason>& arguments() const { return arguments_; }

  // The same with `replace` applied to each of its words.
  Reason WithWords(const std::function<std::string(const std::string&)>& replace) const;

  friend bool operator==(const Reason&, const Reason&) = default;

 private:
  template <std::size_t kCount>
  friend struct ReasonForm;
  friend std::optional<Reason> ReasonNamed(std::string_view name, std::vector<Reason> arguments);

  Reason(ReasonId id, std::vector<Reason> arguments) : id_(id), arguments_(std::move(arguments)) {}

  ReasonId id_ = ReasonId::kWords;
  std::string words_;
  std::vector<Reason> arguments_;
};

template <std::size_t kCount>
template <typename... Arguments>
Reason ReasonForm<kCount>::operator()(const Arguments&... arguments) const {
  static_assert(sizeof...(Arguments) == kCount, "each placeholder of the sentence takes one argument");
  return Reason(id, std::vector<Reason>{Reason(arguments)...});
}

// One line without the path that it happened on and without a full stop; empty for none. Questions may have a line break
// ("\r\n") in other languages than English. Words are put in as they are, also where they look like a placeholder.
//   why::kVolumeMissing("a.002"), kEnglish  => "the volume a.002 is missing"
//   why::kAbout("/media", why::kDiskFull("No space left on device")), kJapanese => "/media: 空き容量がありません"
std::string Sentence(const Reason& reason, Language language);

// How the other side of an interface calls a reason, whichever version it is of: "kVolumeMissing"; empty for words.
std::string_view NameOf(const Reason& reason);

// The reason of that name; nothing when the table has none, or it takes another number of arguments.
std::optional<Reason> ReasonNamed(std::string_view name, std::vector<Reason> arguments);

}  // namespace quendle
