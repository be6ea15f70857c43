// The seam through which everything below the front ends asks and tells the user. The terminal answers with
// its options and lines, the windows with dialogs, tests with a script. All calls are made on the one thread
// of the run.
#pragma once

#include <optional>
#include <string>

#include "platform/moving/file_operation.h"

namespace quendle {

// The program of the user's choice that shows folders, and its parameters; both may be empty.
struct FileManager {
  std::string program;
  std::string parameters;
};

class UserInterface {
 public:
  virtual ~UserInterface() = default;

  enum class OverwriteAnswer {
    kYes,
    kNo,
    kYesToAll,
    kNoToAll,
    kCancel,
    kNobody,  // there is nobody to ask: no to all, which nobody wanted and is told as a failure
  };

  // May `existing` be replaced by `incoming`?
  virtual OverwriteAnswer AskOverwrite(const platform::FileSide& existing,
                                       const platform::FileSide& incoming) = 0;

  // May this missing destination folder be made? With nobody to ask: no.
  virtual bool AskMakeFolder(const std::string& folder) = 0;

  // May this be deleted for good? With nobody to ask: no.
  virtual bool AskDelete(const std::string& path) = 0;

  // A password for the archive of that path; nothing when there is none. `is_again`: the one that was said before does not
  // open it. With nobody to ask: none.
  virtual std::optional<std::string> AskPassword(const std::string& archive, bool is_again) = 0;

  // May the work go on although something is suspicious, as the question says? With nobody to ask: no.
  virtual bool AskProceed(const Reason& question) = 0;

  // Shows a message of one or more lines ("\r\n" between them) until the user has seen it. Names in it are as ForDisplay
  // shows them.
  enum class MessageKind { kInformation, kExclamation, kCritical };
  virtual void ShowMessage(MessageKind kind, const std::string& text) = 0;

  // Shows what the archiver library said ("\r\n" between lines) until the user closes it, not looking busy
  // meanwhile.
  virtual void ShowExtractionLog(const std::string& text) = 0;

  // Are there windows, or may there be some at any moment, that have to answer the user during a long operation?
  virtual bool HasWindows() const = 0;

  // Called at least ten times a second during a long operation. False cancels it. `simple` asks for a display
  // without names.
  virtual bool ShowProgress(const platform::FileProgress& progress, bool simple) = 0;

  // The operation whose progress was shown is over.
  virtual void EndProgress() = 0;

  // Work that keeps the user waiting begins or ends.
  virtual void SetBusy(bool busy) = 0;

  // Shows the folder in that file manager. A failure is shown, not returned: the work is done by then.
  virtual void ShowInFileManager(const std::string& folder, const FileManager& manager) = 0;

  // Opens a file with the program that the desktop has for it, which is never one from `untrusted_folder`. A
  // failure is shown, not returned.
  virtual void OpenFile(const std::string& path, const std::string& untrusted_folder) = 0;
};

}  // namespace quendle
