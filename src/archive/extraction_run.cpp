#include "archive/extraction_run.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "base/modSystem.h"
#include "platform/entries/durable_file.h"
#include "platform/entries/paths.h"
#include "platform/services/known_folders.h"
#include "platform/text/unicode.h"
#include "settings/modOpenFile.h"

namespace quendle {
namespace {

constexpr std::uint32_t kShownOutput = 32767;
constexpr std::uint32_t kHiddenOutput = 1024;

// Zeroed memory of which only what a library writes to is really taken: a thousand outputs cost little.
using Buffer = std::unique_ptr<char, void (*)(void*)>;
Buffer MakeBuffer(std::size_t count, std::size_t size) {
  Buffer buffer(static_cast<char*>(std::calloc(count, size)), std::free);
  if (buffer == nullptr) throw std::bad_alloc();
  return buffer;
}

}  // namespace

std::string OutputFolder(const std::string& destination, const std::string& sub_folder) {
  std::string folder = AddBackslash(destination) + sub_folder;
  if constexpr (kHostStyle == PathStyle::kWindows) std::replace(folder.begin(), folder.end(), '/', '\\');
  return RemoveBackslash(folder);
}

platform::Result CheckNameable(const std::string& path) {
  if (path.find('"') == std::string::npos) return platform::Success();
  return Failure(platform::Code::kRefused, path, why::kPathHasQuote);
}

platform::Result CheckOutputFolder(const std::string& destination, const std::string& sub_folder) {
  platform::Result result = CheckNameable(OutputFolder(destination, sub_folder));
  return result.ok() ? platform::CheckNoLinks(destination, sub_folder) : result;
}

ExtractionRun::~ExtractionRun() {
  if (!context_.problems.empty()) RemoveMadeFolders(made_folders_);
}

bool ExtractionRun::Extract(const std::vector<ExtractionGroup>& groups) {
  platform::Result why;
  if (!MakeDirNested(context_.destination, &why, &made_folders_)) {
    Fail(why);
    return false;
  }
  if (!WriteResponseFiles(groups)) return false;
  clsOutput& output = context_.output;
  output.BeginRun();
  output.ARCTYPE = context_.row.type;
  output.FILENAME = context_.archive;
  output.RESFILECOUNT(static_cast<std::int32_t>(pairs_.size()) - 1);
  const std::size_t known_problems = context_.problems.size();
  const std::size_t told_problems = context_.session.ToldProblems();
  if (context_.library.HasExtractCalls() && pairs_.size() > 1) {
    context_.guarded([this] { ExtractTogether(); });
    for (const Pair& pair : pairs_) RemoveResponseFile(pair);
  } else {
    ExtractOneByOne();
  }
  const bool is_silent =
      context_.problems.size() == known_problems && context_.session.ToldProblems() == told_problems;
  if (result_ != 0 && is_silent) {
    const Reason error = why::kLibraryError(result_);
    Fail(Failure(platform::Code::kFailed, "", context_.session.IsCancelled() ? why::kStopped : error));
  }
  if (output.SHOWRESULT) context_.guarded([&output] { output.ShowOutputWindow(); });
  return result_ == 0;
}

bool ExtractionRun::WriteResponseFiles(const std::vector<ExtractionGroup>& groups) {
  bool written = true;
  for (const ExtractionGroup& group : groups) {
    written = written && MayGoOn() && WriteResponseFile(group);
  }
  if (!written) {
    for (const Pair& pair : pairs_) RemoveResponseFile(pair);
  }
  return written;
}

// Thousands of groups take a while before a library is called that reports progress.
bool ExtractionRun::MayGoOn() {
  if (context_.session.MayGoOn()) return true;
  Fail(Failure(platform::Code::kCancelled, "", why::kStopped));
  return false;
}

bool ExtractionRun::WriteResponseFile(const ExtractionGroup& group) {
  std::string text;
  for (const std::string& name : group.names) {
    text.append(text.empty() ? "" : "\r\n").append(AddQuotes(platform::UpperCase(name)));
  }
  // Of a large archive there are thousands, which on a disk take longer than the rest.
  const std::string runtime_folder = platform::RuntimeFolder();
  std::string path = runtime_folder.empty() ? "" : GetTempFilePath(true, runtime_folder);
  if (path.empty()) path = GetTempFilePath(true, "");
  if (path.empty()) {
    Fail(Failure(platform::Code::kFailed, platform::TemporaryFolder(), why::kNoTemporaryFile));
    return false;
  }
  pairs_.push_back({path, group.sub_folder, ""});
  // The names are in the list because the library's encoding holds them.
  platform::Result result = platform::WriteTemporaryFile(path, context_.library.Encode(text).value_or(""));
  if (result.ok()) result = CheckNameable(path);
  if (!result.ok()) Fail(result);
  return result.ok();
}

// Makes the output folder and the command line, which stays empty when the pair is left out.
void ExtractionRun::Prepare(Pair* pair) {
  const std::string folder = OutputFolder(context_.destination, pair->sub_folder);
  platform::Result result = CheckOutputFolder(context_.destination, pair->sub_folder);
  if (result.ok()) (void)MakeDirNested(folder, &result, &made_folders_);
  if (result.ok()) {
    const auto line = context_.library.Encode(
        CommandLine(context_.row, context_.options, context_.archive, folder, pair->response_file));
    if (line) {
      pair->command_line = *line;
      return;
    }
    result = Failure(platform::Code::kRefused, folder, why::kPathNotEncodable);
  }
  Fail(result);
  RemoveResponseFile(*pair);
}

void ExtractionRun::ExtractOneByOne() {
  const std::uint32_t size = context_.output.SHOWRESULT ? kShownOutput : kHiddenOutput;
  for (Pair& pair : pairs_) {
    bool goes_on = true;
    context_.guarded([&] {
      const Buffer output = MakeBuffer(1, size);
      Prepare(&pair);
      if (pair.command_line.empty()) return;
      context_.session.BeginCall();
      const std::int32_t result = context_.library.Command(pair.command_line, output.get(), size);
      goes_on = Settle(pair, output.get(), result);
      context_.session.RethrowFault();
    });
    if (!goes_on) return;
  }
}

void ExtractionRun::ExtractTogether() {
  const std::uint32_t size = context_.output.SHOWRESULT ? kShownOutput : kHiddenOutput;
  for (Pair& pair : pairs_) {
    if (!MayGoOn()) return;
    Prepare(&pair);
  }
  std::erase_if(pairs_, [](const Pair& pair) { return pair.command_line.empty(); });
  if (pairs_.empty()) return;
  const Buffer outputs = MakeBuffer(pairs_.size(), size);
  std::vector<ArchiverCall> calls;
  for (std::size_t i = 0; i < pairs_.size(); ++i) {
    calls.push_back({pairs_[i].command_line.c_str(), outputs.get() + i * size, size, 0});
  }
  context_.session.BeginCall();
  const std::int32_t result = context_.library.ExtractCalls(&calls);
  for (std::size_t i = 0; i < pairs_.size(); ++i) {
    (void)Settle(pairs_[i], calls[i].output, calls[i].result);
  }
  if (result_ == 0) result_ = result;  // of the pass as a whole
  context_.session.RethrowFault();
}

// After a call: takes its output and its result. False when none that depends on it may follow.
bool ExtractionRun::Settle(const Pair& pair, const char* output, std::int32_t result) {
  if (result_ == 0) result_ = result;
  clsOutput& log = context_.output;
  if (log.SHOWRESULT) log.SetOutputText(context_.library.OutputText(std::string_view(output, kShownOutput)));
  RemoveResponseFile(pair);
  return result == 0;
}

void ExtractionRun::Fail(const platform::Result& failure) {
  const bool is_somewhere = !failure.path.empty();
  context_.problems.push_back(
      {"", is_somewhere ? why::kAbout(failure.reason, failure.path) : failure.reason});
}

// The library may have removed it; what cannot be removed lies among other temporary files and harms nobody.
void ExtractionRun::RemoveResponseFile(const Pair& pair) {
  (void)platform::RemoveFile(pair.response_file);
}

}  // namespace quendle
