// What type of archive a file is, and why it is none.
#include <algorithm>
#include <memory>
#include <string_view>

#include "archive/clsArchiver.h"
#include "base/modString.h"
#include "platform/entries/input_file.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

// ".r00", ".z01", ".002": a file that may be a later one of a set.
bool IsNumbered(std::string_view extension) {
  if (extension.size() < 3) return false;
  extension.remove_prefix(extension.size() - 2);
  return std::all_of(extension.begin(), extension.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string ExtensionOf(const std::string& path) {
  const std::string name = SplitPath(path).name;
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? "" : platform::UpperCase(name.substr(dot + 1));
}

// Why it can be no archive, whoever looks at it; empty when it may be one.
Reason FileProblem(const std::string& path) {
  std::unique_ptr<platform::InputFile> file;
  const platform::Result opened = platform::InputFile::Open(path, &file);
  if (opened.ok()) return {};
  if (opened.code == platform::Code::kIsFolder) return why::kFolderIsNoArchive;
  if (opened.code == platform::Code::kRefused) return why::kDeviceIsNoArchive;
  return why::kCannotBeOpened(opened.reason);
}

}  // namespace

std::int16_t clsArchiver::GetArcType() {
  std::vector<const ArchiverRow*> installed;
  for (const ArchiverRow& row : ArchiverRows()) {
    if (libraries_.IsInstalled(row)) installed.push_back(&row);
  }
  type_ = 0;
  stopped_ = false;
  inspected_ = pFileName;
  // A library that opens a pipe may wait for ever.
  if (!FileProblem(pFileName).empty()) return type_;
  for (const ArchiverRow* row : installed) {
    const ArchiverLibrary* library = libraries_.Use(*row);
    if (library != nullptr && Accepts(*library)) type_ = row->type;
    if (type_ != 0 || stopped_) break;
  }
  return type_;
}

// A library may look for long at what is large, or made to be looked at for long.
bool clsArchiver::Accepts(const ArchiverLibrary& library) {
  std::vector<ExtractionProblem> untold;
  ArchiveSession session(library, environment_.user, pFileName, {}, &untold);
  const bool accepts = library.Accepts(pFileName);
  session.RethrowFault();
  stopped_ = session.IsCancelled();
  return accepts && !stopped_;
}

Reason clsArchiver::WhyNoType() {
  if (Reason problem = FileProblem(pFileName); !problem.empty()) return problem;
  const std::string extension = ExtensionOf(pFileName);
  if (inspected_ != pFileName) {
    const Reason problem = IsNumbered(extension) ? VolumeProblem() : Reason();
    return problem.empty() ? why::kNoArchiveEnding : problem;
  }
  bool any_installed = false;
  for (const ArchiverRow& row : ArchiverRows()) {
    const bool is_installed = libraries_.IsInstalled(row);
    any_installed = any_installed || is_installed;
    if (extension != row.name) continue;
    if (!is_installed) return why::kLibraryNotInstalled(row.name);
    const Reason problem = libraries_.Problem(row);
    if (!problem.empty()) return why::kLibraryUnusable(row.name, problem);
  }
  return any_installed ? why::kNoLibraryTakesIt : why::kNoLibraryInstalled;
}

// What the first library that accepts the file says of it; empty when it has nothing to say.
Reason clsArchiver::VolumeProblem() {
  for (const ArchiverRow& row : ArchiverRows()) {
    const ArchiverLibrary* library = libraries_.IsInstalled(row) ? libraries_.Use(row) : nullptr;
    if (library == nullptr || !library->Accepts(pFileName)) continue;
    std::vector<ExtractionProblem> problems;
    const ArchiveSession session(*library, environment_.user, pFileName, {}, &problems);
    const bool can_be_listed = !library->EntryNames(pFileName).empty();
    return can_be_listed || problems.empty() ? Reason() : problems.front().reason;
  }
  return {};
}

}  // namespace quendle
