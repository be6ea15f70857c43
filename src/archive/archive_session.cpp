#include "archive/archive_session.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quendle {
namespace {

constexpr int kMostQuestionsForPassword = 3;
constexpr std::chrono::milliseconds kBetweenReports{20};

}  // namespace

void PutFirst(std::vector<std::string>* texts, const std::string& text) {
  if (text.empty()) return;
  const auto known = std::find(texts->begin(), texts->end(), text);
  if (known == texts->end()) {
    texts->insert(texts->begin(), text);
  } else {
    std::rotate(texts->begin(), known, known + 1);
  }
}

ArchiveSession::ArchiveSession(const ArchiverLibrary& library, UserInterface& user, std::string archive,
                               Settings settings, std::vector<ExtractionProblem>* problems)
    : library_(library),
      user_(user),
      archive_(std::move(archive)),
      settings_(std::move(settings)),
      problems_(problems),
      callbacks_{sizeof(ArchiverSession),
                 this,
                 settings_.charset.c_str(),
                 &OnProgress,
                 &OnOverwrite,
                 &OnPassword,
                 &OnProceed,
                 &OnProblem,
                 nullptr,
                 &OnReadsFrom,
                 &OnProblemOf,
                 &OnProceedFor} {
  for (std::string& path : settings_.protected_paths) {
    // A path that the library cannot be told is kept from it by what it is asked for.
    const auto encoded = library_.Encode(path);
    if (!encoded) continue;
    path = *encoded;
    protected_paths_.push_back(path.c_str());
  }
  protected_paths_.push_back(nullptr);
  callbacks_.protected_paths = protected_paths_.data();
  library_.SetSession(&callbacks_);
}

ArchiveSession::~ArchiveSession() {
  library_.SetSession(nullptr);
  if (progress_shown_) user_.EndProgress();
}

void ArchiveSession::BeginCall() {
  PutFirst(&settings_.passwords, given_);
  offered_ = 0;
}

void ArchiveSession::RethrowFault() {
  if (fault_) std::rethrow_exception(std::exchange(fault_, nullptr));
}

bool ArchiveSession::MayGoOn() {
  const auto now = std::chrono::steady_clock::now();
  if (now - asked_to_go_on_ < kBetweenReports) return true;
  asked_to_go_on_ = now;
  progress_shown_ = true;
  cancelled_ = !user_.ShowProgress({archive_, 0, 0}, false);
  return !cancelled_;
}

std::int32_t ArchiveSession::OnProgress(void* user, const char* path, std::uint64_t done,
                                        std::uint64_t total) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    self.progress_shown_ = true;
    if (self.user_.ShowProgress({self.Text(path), done, total}, false)) return 1;
    self.cancelled_ = true;
  } catch (...) {
    self.fault_ = std::current_exception();
  }
  return 0;
}

std::int32_t ArchiveSession::OnOverwrite(void* user, const ArchiverVersion* existing,
                                         const ArchiverVersion* incoming) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    return self.AskOverwrite(*existing, *incoming);
  } catch (...) {
    self.fault_ = std::current_exception();
  }
  return ARCHIVER_CANCEL;
}

std::int32_t ArchiveSession::AskOverwrite(const ArchiverVersion& existing, const ArchiverVersion& incoming) {
  if (answer_to_all_) return *answer_to_all_;
  const auto version = [this](const ArchiverVersion& side) {
    return platform::FileSide{Text(side.path), side.size, side.write_time};
  };
  switch (user_.AskOverwrite(version(existing), version(incoming))) {
    case UserInterface::OverwriteAnswer::kYes:
      return ARCHIVER_YES;
    case UserInterface::OverwriteAnswer::kNo:
      return ARCHIVER_NO;
    case UserInterface::OverwriteAnswer::kYesToAll:
      return answer_to_all_.emplace(ARCHIVER_YES);
    case UserInterface::OverwriteAnswer::kNoToAll:
      return answer_to_all_.emplace(ARCHIVER_NO);
    case UserInterface::OverwriteAnswer::kNobody:
      problems_->push_back({Text(existing.path), why::kExistsUnasked});
      return ARCHIVER_NO;
    case UserInterface::OverwriteAnswer::kCancel:
      break;
  }
  cancelled_ = true;
  return ARCHIVER_CANCEL;
}

std::int32_t ArchiveSession::OnPassword(void* user, const char*, char* buffer, std::uint32_t size) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    while (const auto password = self.NextPassword()) {
      const auto encoded = self.library_.Encode(*password);
      if (!encoded || encoded->size() >= size) continue;  // it cannot be this archive's
      std::memcpy(buffer, encoded->c_str(), encoded->size() + 1);
      return ARCHIVER_YES;
    }
  } catch (...) {
    self.fault_ = std::current_exception();
  }
  return ARCHIVER_NO;
}

std::optional<std::string> ArchiveSession::NextPassword() {
  if (offered_ < settings_.passwords.size()) return given_ = settings_.passwords[offered_++];
  lacks_password_ = !settings_.asks_for_password;
  if (lacks_password_ || asked_ == kMostQuestionsForPassword) return std::nullopt;
  std::optional<std::string> answer = user_.AskPassword(archive_, asked_ > 0);
  ++asked_;
  if (answer) {
    given_ = *answer;
  } else {
    asked_ = kMostQuestionsForPassword;  // who has none is not asked again
  }
  return answer;
}

std::int32_t ArchiveSession::OnProceed(void* user, const char* question) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    return self.AskProceed(Reason(self.Text(question)));
  } catch (...) {
    self.fault_ = std::current_exception();
  }
  return ARCHIVER_NO;
}

std::int32_t ArchiveSession::OnProceedFor(void* user, const ArchiverReason* question) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    return self.AskProceed(self.ReasonOf(*question));
  } catch (...) {
    self.fault_ = std::current_exception();
  }
  return ARCHIVER_NO;
}

std::int32_t ArchiveSession::AskProceed(const Reason& question) {
  if (user_.AskProceed(question)) return ARCHIVER_YES;
  cancelled_ = true;
  return ARCHIVER_NO;
}

void ArchiveSession::OnProblem(void* user, const char* entry, const char* reason) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    self.NoteProblem(self.Text(entry), Reason(self.Text(reason)));
  } catch (...) {
    self.fault_ = std::current_exception();
  }
}

void ArchiveSession::OnProblemOf(void* user, const char* entry, const ArchiverReason* reason) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    self.NoteProblem(self.Text(entry), self.ReasonOf(*reason));
  } catch (...) {
    self.fault_ = std::current_exception();
  }
}

// What concerns the whole archive is told when it is listed, and again when it is extracted.
void ArchiveSession::NoteProblem(std::string entry, Reason reason) {
  ++told_;
  const bool is_known =
      entry.empty() &&
      std::any_of(problems_->begin(), problems_->end(), [&reason](const ExtractionProblem& problem) {
        return problem.entry.empty() && problem.reason == reason;
      });
  if (!is_known) problems_->push_back({std::move(entry), std::move(reason)});
}

Reason ArchiveSession::ReasonOf(const ArchiverReason& told) const {
  std::vector<Reason> arguments;
  for (std::uint32_t i = 0; i < told.part_count; ++i) arguments.push_back(ReasonOf(told.parts[i]));
  const auto known = told.name == nullptr ? std::nullopt : ReasonNamed(told.name, std::move(arguments));
  return known ? *known : Reason(Text(told.words));
}

void ArchiveSession::OnReadsFrom(void* user, const char* path) {
  auto& self = *static_cast<ArchiveSession*>(user);
  try {
    self.read_from_.push_back(self.Text(path));
  } catch (...) {
    self.fault_ = std::current_exception();
  }
}

std::string ArchiveSession::Text(const char* bytes) const {
  return bytes == nullptr ? "" : library_.Decode(bytes);
}

}  // namespace quendle
