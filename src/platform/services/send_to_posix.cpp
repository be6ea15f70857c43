#include "platform/process/process.h"
#include "platform/process/system_failure.h"
#include "platform/services/send_to.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "platform/entries/durable_file.h"
#include "platform/entries/path_names.h"
#include "platform/entries/paths.h"
#include "platform/services/launch.h"

namespace quendle::platform {
namespace {

constexpr const char* kApplications = "/applications";
constexpr std::string_view kMark = "X-Quendle-Entry=true\n";  // what has it was made here

struct Entry {
  const char* folder;
  const char* begin;  // of its text, before the line that starts the program
  const char* end;
  bool is_executable;  // or else the file manager does not trust it
};

constexpr Entry kEntries[] = {
    {kApplications,
     "[Desktop Entry]\nType=Application\nName=Quendle\nComment=Extract, copy and move files by their names\n"
     "Comment[ja]=ファイルを名前で振り分けて、解凍・移動・コピーします\nIcon=package-x-generic\nTerminal="
     "false\n"
     "Categories=Utility;Archiving;\n"
     "MimeType=application/zip;application/x-7z-compressed;application/x-lha;application/x-lzh;application/"
     "vnd.rar;application/x-rar;application/vnd.ms-cab-compressed;\n",
     "", false},
    {"/Thunar/sendto",
     "[Desktop Entry]\nType=Application\nName=Quendle\nIcon=package-x-generic\nTerminal=false\n", "", false},
    {"/kio/servicemenus",
     "[Desktop "
     "Entry]\nType=Service\nX-KDE-ServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;\nActions=send;\n",
     "\n[Desktop Action send]\nName=Send to Quendle\nName[ja]=Quendle に送る\nIcon=package-x-generic\n",
     true},
};

std::string DataFolder() {
  const std::string folder = EnvironmentVariable("XDG_DATA_HOME").value_or("");
  if (folder.starts_with('/')) return WithoutTrailingSlashes(folder);
  const std::string home = EnvironmentVariable("HOME").value_or("");
  return home.starts_with('/') ? WithoutTrailingSlashes(home) + "/.local/share" : "";
}

std::string PathOf(const Entry& entry) {
  return DataFolder() + entry.folder + "/quendle.desktop";
}

// A quoted word of a command, in a value in which each backslash is written twice; "%" begins a field of its own.
//   "/a b/$x" => "\"/a b/\\\\$x\""
std::string QuotedProgram(const std::string& program) {
  std::string quoted = "\"";
  for (const char c : program) {
    if (c == '"' || c == '`' || c == '$') quoted += "\\\\";
    if (c == '\\') quoted += "\\\\\\";
    if (c == '%') quoted += '%';
    quoted += c;
  }
  return quoted + "\"";
}

std::string TextOf(const Entry& entry, const std::string& program) {
  const std::string start = "Exec=" + QuotedProgram(program) + " %F\n";
  const bool has_action = *entry.end != '\0';
  std::string text = entry.begin;
  text.append(kMark);
  if (has_action) text.append(entry.end);
  return text + start;
}

// Nothing, or an entry that was made here.
bool IsOurs(const std::string& path) {
  std::string text;
  const Result read = ReadWholeFile(path, &text);
  return read.code == Code::kNotFound || (read.ok() && text.find(kMark) != std::string::npos);
}

Result Add(const Entry& entry, const std::string& program) {
  const std::string path = PathOf(entry);
  if (!IsOurs(path)) return Failure(Code::kExists, path, "something else has this name already");
  std::error_code error;
  std::filesystem::create_directories(FolderOf(path), error);
  if (error) return SystemFailure(error.value(), FolderOf(path));
  Result written = ReplaceFile(path, TextOf(entry, program));
  constexpr mode_t kExecutable = S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH;
  if (written.ok() && entry.is_executable && chmod(path.c_str(), kExecutable) != 0)
    written = LastSystemFailure(path);
  return written;
}

// Which programs open a kind of file is looked up in a list that desktops keep.
void RenewListOfKinds() {
  const std::string program = FindOnSearchPath("update-desktop-database");
  if (program.empty()) return;
  // Without it the entry is still there for those who look for themselves.
  static_cast<void>(StartProgram({program, "-q", DataFolder() + kApplications}));
}

}  // namespace

bool IsInSendTo(const std::string& program) {
  for (const Entry& entry : kEntries) {
    std::string text;
    if (!ReadWholeFile(PathOf(entry), &text).ok() || text != TextOf(entry, program)) return false;
  }
  return true;
}

Result AddToSendTo(const std::string& program) {
  if (DataFolder().empty()) return Failure(Code::kNotFound, "", "there is no home folder");
  if (program.find_first_of("\n\r") != std::string::npos) {
    return Failure(Code::kRefused, program, "a line break in the path cannot be written into the entry");
  }
  Result first = Success();
  for (const Entry& entry : kEntries) {
    if (Result added = Add(entry, program); !added.ok() && first.ok()) first = std::move(added);
  }
  RenewListOfKinds();
  return first;
}

Result RemoveFromSendTo() {
  Result first = Success();
  for (const Entry& entry : kEntries) {
    const std::string path = PathOf(entry);
    if (!IsTaken(path) || !IsOurs(path)) continue;
    if (Result removed = RemoveFile(path); !removed.ok() && first.ok()) first = std::move(removed);
  }
  RenewListOfKinds();
  return first;
}

}  // namespace quendle::platform
