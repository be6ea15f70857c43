// Archives, as the dispatcher sees them: what type a file is, and extract it. The archiver libraries do the
// work; this class decides which entries go where and tells them.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "archive/archive_session.h"
#include "archive/archiver_libraries.h"
#include "archive/clsOutput.h"
#include "archive/existing_files.h"
#include "archive/extraction_list.h"
#include "base/user_interface.h"

namespace quendle {

// What an extraction did or would do.
struct ExtractionReport {
  std::size_t all = 0;               // entries of the archive
  std::size_t chosen = 0;            // entries to extract
  std::vector<std::string> folders;  // extracted into and not there before, full paths
  bool doubled_folder_avoided = false;
  std::vector<ExtractionProblem> problems;
  // Files that are, or would be, replaced. Nothing: unknown, since not all entries could be listed.
  std::optional<Replacements> replaces = std::nullopt;
  bool by_user = false;  // the only problem is that the user stopped it
  bool asks = false;     // planned: the user is asked first whether files that exist may be overwritten
  bool asks_for_password =
      false;  // planned: what is in it is not known before the user has said its password
};

// The first problem and how many more there are, as one line; empty when there are none.
//   "a.txt: the checksum is wrong (and 3 more)"
Reason DescribeProblems(const std::vector<ExtractionProblem>& problems);

class clsArchiver {
 public:
  // What the archiver works with; all of it outlives it, but the output, which is asked for at each run.
  struct Environment {
    UserInterface& user;
    std::function<clsOutput&()> output;
    std::string module_folder;  // of the archiver libraries
    // Files, and folders with all that is in them, that the program needs: no entry replaces or becomes one.
    std::vector<std::string> protected_files = {};
    std::vector<std::string> passwords = {};  // tried for every archive, in this order
    // How long a plan for somebody who waits for it looks at the places that entries go to; large archives name them by the
    // hundred thousand.
    std::chrono::milliseconds patience{200};
  };
  explicit clsArchiver(Environment environment);
  virtual ~clsArchiver() = default;

  // To be set before each call.
  std::string pFileName;          // full path of the file to inspect or extract
  bool SMARTMAKEDIR = false;      // leave a single top folder out; an extraction clears it when there is none
  std::int16_t EXTRACTTYPE = 1;   // 1 overwrite, 2 update
  std::string INCLUDE;            // patterns of entries to take, as for EntryFilter
  std::string EXCLUDE;            // and to leave
  bool CONFIRMOVERWRITE = false;  // ask before a file is overwritten
  std::string ARCHIVECHARSET;     // of entry names that do not say theirs; empty: the library's own rule

  // The type of pFileName: 1 ZIP, 2 LZH, 3 CAB, 4 RAR, 5 7Z, 0 when no installed archiver library accepts it.
  // Of several that do the first in that order counts.
  virtual std::int16_t GetArcType();

  // The user has stopped the last GetArcType, whose answer means nothing then.
  bool IsTypeUnknown() const { return stopped_; }

  // Why pFileName, which is to be extracted, has no type. Where GetArcType was not asked for it, the reason is its name's
  // ending.
  Reason WhyNoType();

  // Extracts pFileName, whose type is not 0, into `destination`. True when all that was to be extracted was,
  // also when that is nothing; otherwise LastReport tells why not.
  virtual bool mExtractArchive(const std::string& destination);

  // What mExtractArchive would do and which problems it would meet, as far as the list of entries and a look
  // at the destination tell. Touches nothing and asks nothing. When there is `somebody_answers`, what would be asked about,
  // a file that exists or the password, is no problem, and it comes to an end before somebody gets tired of waiting.
  virtual ExtractionReport PlanExtraction(const std::string& destination, bool somebody_answers = false);

  // Of the last mExtractArchive.
  const ExtractionReport& LastReport() const { return report_; }

  // Archiver libraries that are there and could not be used so far, one line each with the reason.
  std::vector<std::string> LibraryProblems() const { return libraries_.Problems(); }

 protected:
  ExtractionReport report_;  // for LastReport

 private:
  struct Work;
  Work Begin(const ArchiverRow& row, const ArchiverLibrary& library, const std::string& destination,
             ExtractionReport* report, bool asks_for_password) const;
  bool Accepts(const ArchiverLibrary& library);
  Reason VolumeProblem();
  void RememberPassword(const Work& work);
  void List(Work* work);
  void Choose(Work* work) const;
  void Refuse(Work* work) const;
  void KeepWhatIsNeeded(Work* work, std::vector<ExtractionGroup>* groups) const;
  bool FindObstacles(Work* work, bool somebody_answers) const;
  static bool NoteObstacle(Work* work, const std::string& name, const platform::Result& obstacle);
  void FindObstacle(Work* work, const std::string& name, const std::string& path,
                    bool somebody_answers) const;
  bool NoteExisting(Work* work) const;
  // Files that are not older are left alone.
  bool Updates(const ArchiverRow& row) const {
    return !CONFIRMOVERWRITE && EXTRACTTYPE == 2 && CanUpdate(row);
  }
  Fate FateOf(const Work& work, const std::string& name, const platform::EntryStatus& existing) const;
  void Guarded(ExtractionReport* report, const std::function<void()>& step);
  bool Run(Work* work);

  Environment environment_;
  ArchiverLibraries libraries_;
  std::int16_t type_ = 0;               // the last answer of GetArcType
  bool stopped_ = false;                // that one
  std::string inspected_;               // the file that it was for
  std::string locked_;                  // the archive that no known password opened when a plan tried them
  std::vector<std::string> passwords_;  // that are known, the one that opened an archive last at first
};

// The word for an archive type: 1 => "ZIP", ... 5 => "7Z", 0 => "".
const char* ArchiveTypeName(std::int16_t type);

}  // namespace quendle
