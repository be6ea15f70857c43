// An archiver library whose archives are scripts: each line of an "archive" says what the library is to
// answer.
//
//   accept PREFIX     the file is an archive of that family
//   entry NAME        it has this entry (the bytes as they stand)
//   dated N           when all its entries were written, date << 16 | time
//   result N          what the next command returns, one line for each; 0 without a line
//   output TEXT       what the next command puts out, "\n" for CR LF; "fill" fills the whole buffer
//   closed            it cannot be opened
//   listing REASON    a problem to report while it is listed
//   problem REASON    a problem to report during the first command, of the entry "e"
//   told NAME|WORDS   the same as a reason of that name with one part
//   password TEXT     to be asked for during commands until it is given
//   locked TEXT       the same while it is listed
//   charset NAME      commands fail without this encoding of names in the session
//   protected PATH    commands fail unless the session protects it
//   reads PATH        a file to report as one that the archive is read from
//   overwrite, proceed, progress    to be asked or told during each command
//
// What it was asked goes to the file ARCHIVE.calls: command lines, then the lines of their response files.
//
// SCRIPTED_FULL adds the optional exports to the six functions, SCRIPTED_BROKEN leaves out one that is
// required.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archiver_abi.h"

namespace {

using Script = std::vector<std::pair<std::string, std::string>>;  // words and what follows them

struct Open {
  std::vector<std::string> entries;
  std::uint32_t time = 0;
  std::size_t next = 0;
};

std::map<ArchiverHandle, Open> open_archives;
const ArchiverSession* session = nullptr;
constexpr std::int32_t kEndedByUser = 9;
std::map<std::string, std::size_t> commands_done;  // by archive

Script ReadScript(const std::string& archive) {
  Script script;
  std::ifstream file(archive, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    script.emplace_back(line.substr(0, blank), blank == line.size() ? "" : line.substr(blank + 1));
  }
  return script;
}

std::vector<std::string> All(const Script& script, std::string_view word) {
  std::vector<std::string> found;
  for (const auto& [key, value] : script)
    if (key == word) found.push_back(value);
  return found;
}

// The one quoted word that is an existing file.
std::string ArchiveOf(const std::string& line) {
  for (std::size_t at = line.find(" \""); at != std::string::npos; at = line.find(" \"", at + 1)) {
    const std::string path = line.substr(at + 2, line.find('"', at + 2) - at - 2);
    if (std::ifstream file(path); file.peek() != std::ifstream::traits_type::eof()) return path;
  }
  return "";
}

// A password that fitted is not asked for again within a pass.
std::string opened_archive;

bool IsPasswordKnown(const Script& script, const std::string& archive, const char* word) {
  if (opened_archive == archive) return true;
  for (const std::string& wanted : All(script, word)) {
    char given[64] = "";
    do {
      if (session == nullptr ||
          session->password(session->user, archive.c_str(), given, 64) != ARCHIVER_YES) {
        return false;
      }
    } while (wanted != given);
  }
  opened_archive = archive;
  return true;
}

bool IsProtected(std::string_view path) {
  const char* const* paths = session->protected_paths;
  while (*paths != nullptr && *paths != path) ++paths;
  return *paths != nullptr;
}

// 0 unless an answer forbids to go on.
std::int32_t Ask(const Script& script) {
  if (session == nullptr) return 0;
  const ArchiverVersion version = {"/old", 1, 2};
  for (const auto& [word, text] : script) {
    if (word == "overwrite" && session->overwrite(session->user, &version, &version) == ARCHIVER_CANCEL)
      return kEndedByUser;
    if (word == "protected" && !IsProtected(text)) return kEndedByUser;
    if (word == "charset" && session->charset != text) return kEndedByUser;
    if (word == "proceed" && session->proceed(session->user, text.c_str()) != ARCHIVER_YES)
      return kEndedByUser;
    if (word == "progress" && session->progress(session->user, text.c_str(), 1, 2) == 0) return kEndedByUser;
  }
  return 0;
}

std::int32_t Run(const std::string& line, char* output, std::uint32_t size) {
  const std::string archive = ArchiveOf(line);
  const Script script = ReadScript(archive);
  const std::size_t turn = commands_done[archive]++;
  const std::size_t list_at = line.find("\"@") + 2;
  std::ifstream list(line.substr(list_at, line.find('"', list_at) - list_at), std::ios::binary);
  std::ofstream(archive + ".calls", std::ios::app | std::ios::binary)
      << line << "\n"
      << std::string(std::istreambuf_iterator<char>(list), {}) << "\n";

  const std::vector<std::string> outputs = All(script, "output");
  std::string text = turn < outputs.size() ? outputs[turn] : "";
  for (std::size_t at; (at = text.find("\\n")) != std::string::npos;) text.replace(at, 2, "\r\n");
  if (text == "fill") text.assign(size, 'x');
  text.copy(output, size);
  if (text.size() < size) output[text.size()] = '\0';

  if (!IsPasswordKnown(script, archive, "password")) return 7;
  if (const std::int32_t answer = Ask(script); answer != 0) return answer;
  for (const std::string& reason : All(script, "problem")) {
    if (session != nullptr && turn == 0) session->problem(session->user, "e", reason.c_str());
  }
  for (const std::string& told : All(script, "told")) {
    const std::size_t bar = told.find('|');
    const std::string name = told.substr(0, bar);
    const std::string words = told.substr(bar + 1);
    const ArchiverReason part{nullptr, words.c_str(), nullptr, 0};
    const ArchiverReason reason{name.c_str(), "as it was told", &part, 1};
    if (session != nullptr && turn == 0) session->problem_of(session->user, "e", &reason);
  }
  const std::vector<std::string> results = All(script, "result");
  return turn < results.size() ? std::stoi(results[turn]) : 0;
}

std::int32_t RunOne(const char* line, char* output, std::uint32_t size) {
  opened_archive.clear();
  return Run(line, output, size);
}

std::int32_t Check(const char* archive, const char* prefix) {
  const std::vector<std::string> accepted = All(ReadScript(archive), "accept");
  return std::count(accepted.begin(), accepted.end(), prefix) > 0 ? 1 : 0;
}

ArchiverHandle OpenScript(const char* archive) {
  const Script script = ReadScript(archive);
  commands_done.erase(archive);
  for (const std::string& reason : All(script, "listing")) {
    if (session != nullptr) session->problem(session->user, "", reason.c_str());
  }
  for (const std::string& path : All(script, "reads")) {
    if (session != nullptr) session->reads_from(session->user, path.c_str());
  }
  if (!All(script, "closed").empty()) return 0;
  opened_archive.clear();
  if (!IsPasswordKnown(script, archive, "locked")) {
    if (session != nullptr) session->problem(session->user, "", "it is encrypted");
    return 0;
  }
  static ArchiverHandle last = 0;
  std::uint32_t time = 0;
  for (const std::string& dated : All(script, "dated")) time = static_cast<std::uint32_t>(std::stoul(dated));
  open_archives[++last] = {All(script, "entry"), time, 0};
  return last;
}

std::int32_t Next(ArchiverHandle handle, ArchiverEntry* entry) {
  Open& open = open_archives.at(handle);
  if (open.next == open.entries.size()) return -1;
  const std::string& name = open.entries[open.next++];
  entry->date = static_cast<std::uint16_t>(open.time >> 16U);
  entry->time = static_cast<std::uint16_t>(open.time);
  std::memset(entry->file_name, 0, sizeof entry->file_name);
  name.copy(entry->file_name, sizeof entry->file_name);
  return 0;
}

[[maybe_unused]] std::uint32_t CopyFullName(ArchiverHandle handle, char* name, std::uint32_t size) {
  const Open& open = open_archives.at(handle);
  const std::string& whole = open.entries.at(open.next - 1);
  name[whole.copy(name, size - 1)] = '\0';
  return static_cast<std::uint32_t>(whole.size());
}

// Longer than a caller would think.
[[maybe_unused]] std::uint32_t CopyCredits(char* text, std::uint32_t size) {
  const std::string whole = "A. Author; " + std::string(600, 'x') + "\n日本";
  text[whole.copy(text, size - 1)] = '\0';
  return static_cast<std::uint32_t>(whole.size());
}

[[maybe_unused]] std::int32_t RunAll(ArchiverCall* calls, std::uint32_t count) {
  opened_archive.clear();
  if (count > 0) {
    for (const std::string& result : All(ReadScript(ArchiveOf(calls[0].command_line)), "pass"))
      return std::stoi(result);
  }
  std::int32_t first_failure = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    calls[i].result = Run(calls[i].command_line, calls[i].output, calls[i].output_size);
    if (first_failure == 0) first_failure = calls[i].result;
    if (calls[i].result == kEndedByUser) break;
  }
  return first_failure;
}

}  // namespace

#define EXPORT(type, name, parameters, answer) \
  type name parameters {                       \
    return answer;                             \
  }
// clang-format off
#define REQUIRED(prefix)                                                                                   \
  EXPORT(std::int32_t, prefix, (void*, const char* line, char* output, std::uint32_t size), RunOne(line, output, size)) \
  EXPORT(std::int32_t, prefix##CheckArchive, (const char* archive, std::int32_t), Check(archive, #prefix))  \
  EXPORT(ArchiverHandle, prefix##OpenArchive, (void*, const char* archive, std::uint32_t), OpenScript(archive)) \
  EXPORT(std::int32_t, prefix##FindFirst, (ArchiverHandle h, const char*, ArchiverEntry* e), Next(h, e))    \
  EXPORT(std::int32_t, prefix##FindNext, (ArchiverHandle h, ArchiverEntry* e), Next(h, e))
#define CLOSE(prefix) \
  EXPORT(std::int32_t, prefix##CloseArchive, (ArchiverHandle h), open_archives.erase(h) == 1 ? 0 : -1)
#define OPTIONAL(prefix)                                                                                   \
  EXPORT(std::int32_t, prefix##UseUtf8, (std::int32_t), 1)                                                 \
  EXPORT(std::uint32_t, prefix##FullName, (ArchiverHandle h, char* name, std::uint32_t size), CopyFullName(h, name, size)) \
  EXPORT(std::uint32_t, prefix##Credits, (char* text, std::uint32_t size), CopyCredits(text, size))        \
  EXPORT(std::int32_t, prefix##SetSession, (const ArchiverSession* host), (session = host, 1))             \
  EXPORT(std::int32_t, prefix##ExtractCalls, (void*, ArchiverCall* calls, std::uint32_t count), RunAll(calls, count))
// clang-format on

#define FOR_EACH_PREFIX(functions) \
  functions(UnZip) functions(Unlha) functions(Cab) functions(Unrar) functions(SevenZip)

extern "C" {
FOR_EACH_PREFIX(REQUIRED)
#ifndef SCRIPTED_BROKEN
FOR_EACH_PREFIX(CLOSE)
#endif
#ifdef SCRIPTED_FULL
FOR_EACH_PREFIX(OPTIONAL)
#endif
}
