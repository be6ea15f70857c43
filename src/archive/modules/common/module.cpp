#include "archive/modules/common/module.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

#include "archive/modules/common/entry_record.h"
#include "archive/modules/common/response_file.h"
#include "platform/entries/durable_file.h"
#include "platform/entries/input_file.h"
#include "platform/text/code_page.h"

namespace quendle::modules {
namespace {

constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kFailure = 1;
constexpr std::int32_t kNoMore = -1;

// Text that may have characters outside the code page: those become "?", for logs and lists.
std::string AnsiForDisplay(const std::string& text) {
  if (const auto whole = platform::AnsiFromText(text)) return *whole;
  std::string ansi;
  for (std::size_t begin = 0, end; begin < text.size(); begin = end) {
    end = begin + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
    ansi += platform::AnsiFromText(text.substr(begin, end - begin)).value_or("?");
  }
  return ansi;
}

// As much of the text as fits, and a NUL; the answer is how long the whole is.
std::uint32_t CopyWhole(const std::string& text, char* buffer, std::uint32_t size) {
  if (size > 0) {
    const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return static_cast<std::uint32_t>(text.size());
}

}  // namespace

std::string Module::FromHost(std::string_view bytes) const {
  return utf8_ ? std::string(bytes) : platform::TextFromAnsi(bytes);
}

std::string Module::ToHost(std::string text) const {
  return utf8_ ? std::move(text) : AnsiForDisplay(text);
}

std::int32_t Module::CheckArchive(const char* archive) try {
  std::unique_ptr<platform::InputFile> file;
  if (!platform::InputFile::Open(FromHost(archive), &file).ok()) return 0;
  Reason reason;
  const InterruptibleReads reads([this, path = file->Path()] { return session_.Progress(path, 0, 0); });
  // An incomplete archive is one all the same; opening it says what is missing.
  const bool is_one = family_.find(std::move(file), &reason) || !reason.empty();
  return is_one && !reads.AreInterrupted() ? 1 : 0;
} catch (const std::exception&) {
  return 0;
}

Module::Archive Module::List(const std::string& path, Reason* reason) {
  std::unique_ptr<platform::InputFile> file;
  const platform::Result opened = platform::InputFile::Open(path, &file);
  if (!opened.ok()) {
    *reason = opened.reason;
    return nullptr;
  }
  const InterruptibleReads reads([this, &path] { return session_.Progress(path, 0, 0); });
  const auto input = family_.find(std::move(file), reason);
  if (reads.AreInterrupted()) *reason = why::kCancelled;
  if (reads.AreInterrupted() || !input) {
    if (reason->empty()) *reason = why::kNoArchiveOfKind(family_.name);
    return nullptr;
  }
  for (const std::string& part : input->Paths()) session_.ReadsFrom(ToHost(part));
  const std::string identity = input->Identity() + session_.Charset();
  if (last_ && last_identity_ == identity) return last_;
  Archive listed = ListArchive(
      family_, *input, session_.Charset(), [this, &path] { return session_.AskPassword(path); }, reason);
  if (reads.AreInterrupted()) {
    *reason = why::kCancelled;
    return nullptr;
  }
  last_ = std::move(listed);
  last_identity_ = identity;
  return last_;
}

ArchiverHandle Module::OpenArchive(const char* archive) try {
  Reason reason;
  Archive listed = List(FromHost(archive), &reason);
  if (!listed) {
    session_.Problem("", reason);
    return 0;
  }
  if (!listed->problem.empty()) session_.Problem("", listed->problem);
  open_[++last_handle_] = {std::move(listed), 0};
  return last_handle_;
} catch (const std::exception& fault) {
  session_.Problem("", Reason(fault.what()));
  return 0;
}

std::int32_t Module::FindFirst(ArchiverHandle handle, ArchiverEntry* entry) {
  const auto found = open_.find(handle);
  if (found == open_.end()) return kNoMore;
  found->second.next = 0;
  return FindNext(handle, entry);
}

std::int32_t Module::FindNext(ArchiverHandle handle, ArchiverEntry* entry) try {
  const auto found = open_.find(handle);
  if (found == open_.end()) return kNoMore;
  Listed& listed = found->second;
  if (listed.next >= listed.archive->entries.size()) return kNoMore;
  const Entry& next = listed.archive->entries[listed.next++];
  FillRecord(next, ToHost(ListedName(next.path)), utf8_, entry);
  return kSuccess;
} catch (const std::exception& fault) {
  session_.Problem("", Reason(fault.what()));
  return kNoMore;
}

std::uint32_t Module::FullName(ArchiverHandle handle, char* name, std::uint32_t size) try {
  const auto found = open_.find(handle);
  if (found == open_.end() || found->second.next == 0) return 0;
  const Entry& entry = found->second.archive->entries[found->second.next - 1];
  return CopyWhole(ToHost(ListedName(entry.path)), name, size);
} catch (const std::exception&) {
  return 0;
}

std::uint32_t Module::Credits(char* text, std::uint32_t size) const try {
  return CopyWhole(ToHost("Quendle contributors; " + family_.libraries()), text, size);
} catch (const std::exception&) {
  return 0;
}

std::int32_t Module::CloseArchive(ArchiverHandle handle) {
  return open_.erase(handle) == 1 ? kSuccess : kFailure;
}

std::int32_t Module::UseUtf8(std::int32_t on) {
  utf8_ = on != 0;
  return 1;
}

std::int32_t Module::SetSession(const ArchiverSession* session) {
  session_ = Session(session, [this](std::string_view bytes) { return FromHost(bytes); });
  return kSuccess;
}

platform::Result Module::ReadCall(const char* command_line, Call* call) const {
  const std::string line = FromHost(command_line);
  Reason problem;
  if (!ParseCommandLine(family_.dialect, line, &call->request, &problem)) {
    return platform::Failure(platform::Code::kRefused, "", problem);
  }
  if (call->request.response_file.empty()) return platform::Success();
  std::string bytes;
  platform::Result read = platform::ReadWholeFile(call->request.response_file, &bytes);
  if (read.ok()) call->names = ParseResponseFile(FromHost(bytes));
  return read;
}

platform::Result Module::ReadCalls(const ArchiverCall* calls, std::uint32_t count,
                                   std::vector<Call>* read) const {
  for (std::uint32_t i = 0; i < count; ++i) {
    platform::Result result = ReadCall(calls[i].command_line, &read->emplace_back());
    if (!result.ok()) return result;
    if (read->back().request.archive != read->front().request.archive) {
      return platform::Failure(platform::Code::kRefused, "", why::kOtherArchives);
    }
  }
  return platform::Success();
}

std::int32_t Module::Command(const char* command_line, char* output, std::uint32_t size) {
  ArchiverCall call{command_line, output, size, kFailure};
  return ExtractCalls(&call, 1);
}

std::int32_t Module::ExtractCalls(ArchiverCall* calls, std::uint32_t count) try {
  for (std::uint32_t i = 0; i < count; ++i) calls[i].result = kFailure;
  std::vector<Call> read;
  platform::Result ready = ReadCalls(calls, count, &read);
  Archive archive;
  if (ready.ok() && count > 0) {
    archive = List(read.front().request.archive, &ready.reason);
    if (!archive) ready.code = platform::Code::kFailed;
  }
  if (!ready.ok()) {
    read.resize(count);
    session_.Problem("", ready.reason);
    for (Call& call : read) call.log.push_back("failed     " + Sentence(ready.reason, Language::kEnglish));
  } else if (archive) {
    Extract(*archive, Limits(), &session_, &read);
  }
  std::int32_t first_failure = kSuccess;
  for (std::uint32_t i = 0; i < count; ++i) {
    calls[i].result = ready.ok() && !read[i].failed ? kSuccess : kFailure;
    if (first_failure == kSuccess) first_failure = calls[i].result;
    // Of a set of volumes the first one is named, whichever was given.
    WriteOutput(read[i], archive ? archive->input.Path() : read[i].request.archive, &calls[i]);
  }
  return first_failure;
} catch (const std::exception& fault) {
  session_.Problem("", Reason(fault.what()));
  return kFailure;
}

void Module::WriteOutput(const Call& call, const std::string& head, ArchiverCall* out) const {
  std::string text;
  if (family_.dialect.log_head_lines > 0) text += "Archive: " + head + "\r\n";
  for (unsigned i = 1; i < family_.dialect.log_head_lines; ++i) text += "----------\r\n";
  for (const std::string& line : call.log) {
    if (text.size() > out->output_size) break;
    text += line + "\r\n";
  }
  text = ToHost(std::move(text));
  text.resize(std::min<std::size_t>(text.size() + 1, out->output_size), '\0');
  std::memcpy(out->output, text.data(), text.size());
}

}  // namespace quendle::modules
