// The host of a module, as the module sees it: an ArchiverSession, or nobody.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archiver_abi.h"
#include "platform/entries/file_side.h"
#include "reasons/reason.h"

namespace quendle::modules {

class Session {
 public:
  // A copy of what the host gave; null: nobody, and every answer is no. `decode` makes text of its paths.
  using Decode = std::function<std::string(std::string_view)>;
  explicit Session(
      const ArchiverSession* session,
      const Decode& decode = [](std::string_view bytes) { return std::string(bytes); });

  const std::string& Charset() const { return charset_; }
  const std::vector<std::string>& ProtectedPaths() const { return protected_paths_; }

  // At most one call to the host in 20 milliseconds, from the first 20 on. False: cancelled.
  bool Progress(const std::string& entry, std::uint64_t done, std::uint64_t total);

  enum class Answer { kNo, kYes, kCancel };
  Answer AskOverwrite(const platform::FileSide& existing, const platform::FileSide& incoming) const;
  std::optional<std::string> AskPassword(const std::string& archive) const;
  bool AskProceed(const Reason& question) const;
  void Problem(const std::string& entry, const Reason& reason) const;
  // `path` is in the host's encoding.
  void ReadsFrom(const std::string& path) const;

 private:
  std::optional<ArchiverSession> session_;
  std::string charset_;
  std::vector<std::string> protected_paths_;
  std::chrono::steady_clock::time_point reported_ = std::chrono::steady_clock::now();
};

}  // namespace quendle::modules
