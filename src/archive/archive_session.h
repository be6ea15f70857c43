// What an archiver library is answered while it lists and extracts one archive: the user's answers, and the
// list in which it reports problems.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "archive/archiver_library.h"
#include "base/user_interface.h"

namespace quendle {

struct ExtractionProblem {
  std::string entry;  // empty: the archive itself
  Reason reason;
};

// Puts the text before all others, from where it stands or as a new one. Nothing happens to an empty text.
void PutFirst(std::vector<std::string>* texts, const std::string& text);

// Passwords are tried in this order: those that are known, then what the user says, three times at most.
class ArchiveSession {
 public:
  struct Settings {
    std::string charset;
    std::vector<std::string> passwords;  // that are known
    std::vector<std::string> protected_paths;
    bool asks_for_password = true;  // else only those that are known are tried
  };

  // `problems` receives what the library reports. It, the library and the user outlive the session.
  ArchiveSession(const ArchiverLibrary& library, UserInterface& user, std::string archive, Settings settings,
                 std::vector<ExtractionProblem>* problems);
  ~ArchiveSession();
  ArchiveSession(const ArchiveSession&) = delete;
  ArchiveSession& operator=(const ArchiveSession&) = delete;

  // To be called before each call that may ask: the password that was given last is offered again first.
  void BeginCall();

  // An exception must not pass through the library: what was thrown in an answer is thrown from here, after
  // the call.
  void RethrowFault();

  // For work of the program's own in between: false when the user wants no more.
  bool MayGoOn();

  // How many problems the library has told, one that is known already among them.
  std::size_t ToldProblems() const { return told_; }

  // The user has stopped it, or did not let it go on.
  bool IsCancelled() const { return cancelled_; }

  // The files that the library has said it reads the archive from, in any order and number.
  const std::vector<std::string>& ReadFrom() const { return read_from_; }

  // The password given last; empty when none was.
  const std::string& Password() const { return given_; }

  // None that is known fits, and the user was not to be asked.
  bool LacksPassword() const { return lacks_password_; }

 private:
  static std::int32_t ARCHIVER_CALL OnProgress(void* self, const char* path, std::uint64_t done,
                                               std::uint64_t total);
  static std::int32_t ARCHIVER_CALL OnOverwrite(void* self, const ArchiverVersion* existing,
                                                const ArchiverVersion* incoming);
  static std::int32_t ARCHIVER_CALL OnPassword(void* self, const char* archive, char* buffer,
                                               std::uint32_t size);
  static std::int32_t ARCHIVER_CALL OnProceed(void* self, const char* question);
  void NoteProblem(std::string entry, Reason reason);
  static void ARCHIVER_CALL OnProblem(void* self, const char* entry, const char* reason);
  static void ARCHIVER_CALL OnReadsFrom(void* self, const char* path);
  static void ARCHIVER_CALL OnProblemOf(void* self, const char* entry, const ArchiverReason* reason);
  static std::int32_t ARCHIVER_CALL OnProceedFor(void* self, const ArchiverReason* question);

  std::int32_t AskOverwrite(const ArchiverVersion& existing, const ArchiverVersion& incoming);
  std::optional<std::string> NextPassword();
  std::int32_t AskProceed(const Reason& question);
  std::string Text(const char* bytes) const;
  Reason ReasonOf(const ArchiverReason& told) const;

  const ArchiverLibrary& library_;
  UserInterface& user_;
  std::string archive_;
  Settings settings_;
  std::vector<const char*> protected_paths_;  // with null at the end, for the library
  std::vector<ExtractionProblem>* problems_;
  std::vector<std::string> read_from_;
  ArchiverSession callbacks_;

  std::size_t offered_ = 0;  // of the known passwords, in this call
  std::string given_;
  int asked_ = 0;
  bool lacks_password_ = false;
  std::optional<std::int32_t> answer_to_all_;
  std::chrono::steady_clock::time_point asked_to_go_on_ = std::chrono::steady_clock::now();
  bool progress_shown_ = false;
  bool cancelled_ = false;
  std::size_t told_ = 0;  // problems
  std::exception_ptr fault_;
};

}  // namespace quendle
