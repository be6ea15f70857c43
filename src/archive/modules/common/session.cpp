#include "archive/modules/common/session.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace quendle::modules {
namespace {

constexpr std::chrono::milliseconds kBetweenReports{20};

constexpr std::size_t kFirstSize = offsetof(ArchiverSession, protected_paths);

ArchiverVersion ForHost(const platform::FileSide& version) {
  return {version.path.c_str(), version.size, version.write_time};
}

// A reason as the interface tells it, for as long as this lives.
class ToldReason {
 public:
  explicit ToldReason(const Reason& reason)
      : name_(NameOf(reason)),
        words_(Sentence(reason, Language::kEnglish)),
        parts_(reason.arguments().begin(), reason.arguments().end()) {
    for (const ToldReason& part : parts_) told_parts_.push_back(part.Told());
  }
  ToldReason(const ToldReason&) = delete;  // the parts are pointed at where they are
  ToldReason& operator=(const ToldReason&) = delete;

  ArchiverReason Told() const {
    return {name_.empty() ? nullptr : name_.c_str(), words_.c_str(), told_parts_.data(),
            static_cast<std::uint32_t>(told_parts_.size())};
  }

 private:
  std::string name_;
  std::string words_;
  std::vector<ToldReason> parts_;
  std::vector<ArchiverReason> told_parts_;
};

}  // namespace

Session::Session(const ArchiverSession* session, const Decode& decode) {
  // An older host has a shorter struct; a later one only has more behind what is known here.
  if (session == nullptr || session->struct_size < kFirstSize) return;
  session_.emplace();
  std::memcpy(&*session_, session, std::min<std::size_t>(session->struct_size, sizeof *session));
  if (session_->charset != nullptr) charset_ = session_->charset;
  if (session_->protected_paths == nullptr) return;
  for (const char* const* path = session_->protected_paths; *path != nullptr; ++path)
    protected_paths_.push_back(decode(*path));
}

bool Session::Progress(const std::string& entry, std::uint64_t done, std::uint64_t total) {
  if (!session_) return true;
  const auto now = std::chrono::steady_clock::now();
  if (now - reported_ < kBetweenReports) return true;
  reported_ = now;
  return session_->progress(session_->user, entry.c_str(), done, total) != 0;
}

Session::Answer Session::AskOverwrite(const platform::FileSide& existing,
                                      const platform::FileSide& incoming) const {
  if (!session_) return Answer::kNo;
  const ArchiverVersion there = ForHost(existing);
  const ArchiverVersion coming = ForHost(incoming);
  switch (session_->overwrite(session_->user, &there, &coming)) {
    case ARCHIVER_YES:
      return Answer::kYes;
    case ARCHIVER_CANCEL:
      return Answer::kCancel;
    default:
      return Answer::kNo;
  }
}

std::optional<std::string> Session::AskPassword(const std::string& archive) const {
  std::array<char, 1024> buffer{};
  if (!session_) return std::nullopt;
  const auto size = static_cast<std::uint32_t>(buffer.size());
  if (session_->password(session_->user, archive.c_str(), buffer.data(), size) != ARCHIVER_YES) {
    return std::nullopt;
  }
  buffer.back() = '\0';
  return std::string(buffer.data());
}

bool Session::AskProceed(const Reason& question) const {
  if (!session_) return false;
  const ToldReason told(question);
  const ArchiverReason asked = told.Told();
  return (session_->proceed_for != nullptr ? session_->proceed_for(session_->user, &asked)
                                           : session_->proceed(session_->user, asked.words)) == ARCHIVER_YES;
}

void Session::Problem(const std::string& entry, const Reason& reason) const {
  if (!session_) return;
  const ToldReason told(reason);
  const ArchiverReason why = told.Told();
  if (session_->problem_of != nullptr)
    session_->problem_of(session_->user, entry.c_str(), &why);
  else
    session_->problem(session_->user, entry.c_str(), why.words);
}

void Session::ReadsFrom(const std::string& path) const {
  if (session_ && session_->reads_from != nullptr) session_->reads_from(session_->user, path.c_str());
}

}  // namespace quendle::modules
