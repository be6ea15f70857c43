// The passwords that an archive is read with, one after the other.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quendle::modules {

// What a format makes its keys from.
enum class PasswordForm {
  kText,   // characters: a password is tried once, in UTF-8
  kBytes,  // the bytes that the packer happened to use: tried in UTF-8, then in CP932 where that differs
};

class Passwords {
 public:
  // `ask` gives the next password that the user knows, in UTF-8; nothing when there is none (any more). It is
  // not called before a password is needed. `first`, when there is one, is tried before all others.
  Passwords(std::function<std::optional<std::string>()> ask, PasswordForm form,
            std::optional<std::string> first = {});

  // The one to try now; nothing when there is none.
  std::optional<std::string> Current();

  // Goes on to the next one. False when there is none.
  bool Advance();

  // Begins again with the first one; who knew no more passwords is not asked again.
  void Restart() { at_ = 0; }

 private:
  void Add(const std::string& text);

  std::function<std::optional<std::string>()> ask_;
  PasswordForm form_;
  std::vector<std::string> known_;
  std::size_t at_ = 0;
  bool asked_all_ = false;
};

}  // namespace quendle::modules
