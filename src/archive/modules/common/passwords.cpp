#include "archive/modules/common/passwords.h"

#include <utility>

#include "platform/text/code_page.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kMost = 1000;  // the host says long before when it is enough

}  // namespace

Passwords::Passwords(std::function<std::optional<std::string>()> ask, PasswordForm form,
                     std::optional<std::string> first)
    : ask_(std::move(ask)), form_(form) {
  if (first) known_.push_back(std::move(*first));
}

void Passwords::Add(const std::string& text) {
  known_.push_back(text);
  if (form_ == PasswordForm::kText) return;
  auto bytes = platform::AnsiFromText(text);
  if (bytes && *bytes != text) known_.push_back(std::move(*bytes));
}

std::optional<std::string> Passwords::Current() {
  if (at_ == known_.size() && !asked_all_) {
    const auto text = ask_();
    if (text) Add(*text);
    asked_all_ = !text || known_.size() >= kMost;
  }
  return at_ < known_.size() ? std::optional(known_[at_]) : std::nullopt;
}

bool Passwords::Advance() {
  if (at_ < known_.size()) ++at_;
  return Current().has_value();
}

}  // namespace quendle::modules
