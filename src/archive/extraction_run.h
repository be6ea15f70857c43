// Carrying out an extraction list: a response file and a call of the library for each group of entries.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "archive/archive_session.h"
#include "archive/archiver_table.h"
#include "archive/clsOutput.h"
#include "archive/extraction_list.h"

namespace quendle {

// The folder that the entries of a group go into, without a separator at its end.
//   ("/d", "s") => "/d/s"    ("/d/", "") => "/d"
std::string OutputFolder(const std::string& destination, const std::string& sub_folder);

// Can a command line name the path? Not when it has a double quote in it.
platform::Result CheckNameable(const std::string& path);

// May entries go into that folder below the destination? Not through links, nor where no command line can
// name it.
platform::Result CheckOutputFolder(const std::string& destination, const std::string& sub_folder);

class ExtractionRun {
 public:
  struct Context {
    const ArchiverRow& row;
    const ArchiverLibrary& library;
    ArchiveSession& session;
    clsOutput& output;
    CommandOptions options;
    std::string archive;
    std::string destination;
    std::vector<ExtractionProblem>& problems;
    // Does a step of its own, whose exceptions it takes.
    std::function<void(const std::function<void()>&)> guarded;
  };
  explicit ExtractionRun(Context context) : context_(std::move(context)) {}
  ~ExtractionRun();  // after a problem removes what it made of folders and nothing has come into
  ExtractionRun(const ExtractionRun&) = delete;
  ExtractionRun& operator=(const ExtractionRun&) = delete;

  // True when all calls of the library succeeded. A group whose folder cannot be had is a problem and is left
  // out. After a call that failed no further one is made, and the response files of those that were not made
  // stay; calls in one pass are all made, and all that they put out is taken.
  bool Extract(const std::vector<ExtractionGroup>& groups);

 private:
  struct Pair {
    std::string response_file;
    std::string sub_folder;
    std::string command_line;  // in the library's encoding; empty: the pair is left out
  };

  bool WriteResponseFiles(const std::vector<ExtractionGroup>& groups);
  bool WriteResponseFile(const ExtractionGroup& group);
  bool MayGoOn();
  void Prepare(Pair* pair);
  void ExtractOneByOne();
  void ExtractTogether();
  bool Settle(const Pair& pair, const char* output, std::int32_t result);
  void Fail(const platform::Result& failure);
  void RemoveResponseFile(const Pair& pair);

  Context context_;
  std::vector<Pair> pairs_;
  std::vector<std::string> made_folders_;
  std::int32_t result_ = 0;  // of the first call that failed
};

}  // namespace quendle
