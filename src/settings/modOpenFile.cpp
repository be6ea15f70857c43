#include "settings/modOpenFile.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <random>

#include "base/modString.h"
#include "platform/entries/durable_file.h"
#include "platform/entries/input_file.h"
#include "platform/entries/paths.h"
#include "platform/services/known_folders.h"
#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

std::string Utf16FileOf(const std::string& text) {
  const bool has_mark = text.starts_with(platform::kMark);
  return std::string(has_mark ? "" : platform::kUtf16LeMark) + platform::ToUtf16Le(text);
}

platform::Result EncodeText(const std::string& text, bool as_unicode, std::string* bytes) {
  if (!as_unicode && text.starts_with(platform::kMark)) {
    *bytes = text;
    return platform::Success();
  }
  std::optional<std::string> ansi;
  if (!as_unicode) ansi = platform::AnsiFromText(text);
  // Bytes that would be taken for UTF-16 when they are read again do not hold the text either.
  if (ansi && !platform::IsTakenForUtf16(*ansi)) {
    *bytes = *ansi;
    return platform::Success();
  }
  *bytes = Utf16FileOf(text);
  return platform::CheckDecoded(text);
}

// The old text is not encoded anew: its bytes may be other spellings of the same characters.
platform::Result AppendTo(const std::string& text, bool as_unicode, std::string* bytes) {
  if (platform::IsTakenForUtf16(*bytes) || (bytes->empty() && as_unicode)) {
    bytes->resize(bytes->size() / 2 * 2);
    if (bytes->empty()) *bytes = platform::kUtf16LeMark;
    *bytes += platform::ToUtf16Le(text);
    return platform::Success();
  }
  const std::string line = text + std::string(kLineBreak);
  if (bytes->starts_with(platform::kMark)) {
    *bytes += line;
    return platform::Success();
  }
  const std::string whole = platform::TextFromAnsi(*bytes) + line;
  if (const std::optional<std::string> ansi = platform::AnsiFromText(line)) {
    const std::string appended = *bytes + *ansi;
    // Half a character at the old end may have taken a byte of the new text.
    if (!platform::IsTakenForUtf16(appended) && platform::TextFromAnsi(appended) == whole) {
      *bytes = appended;
      return platform::Success();
    }
  }
  return EncodeText(whole, true, bytes);
}

platform::Result AppendText(const std::string& path, const std::string& text, bool as_unicode) {
  std::unique_ptr<platform::FolderLock> lock;
  if (platform::Result taken = platform::FolderLock::Take(path, &lock); !taken.ok()) return taken;
  std::string old;
  platform::Result read = platform::ReadWholeFile(path, &old);
  if (!read.ok() && read.code != platform::Code::kNotFound) return read;
  if (platform::Result appended = AppendTo(text, as_unicode, &old); !appended.ok()) return appended;
  return platform::ReplaceFile(path, old);
}

platform::Result ReplaceText(const std::string& path, const std::string& text, bool as_unicode) {
  std::string bytes;
  if (platform::Result encoded = EncodeText(text, as_unicode, &bytes); !encoded.ok()) return encoded;
  return platform::ReplaceFile(path, bytes);
}

platform::Result WriteText(const std::string& path, const std::string& text, std::int16_t mode,
                           bool as_unicode) {
  switch (mode) {
    case kReplaceText:
      return ReplaceText(path, text, as_unicode && !text.empty());
    case kPrintText:
      return ReplaceText(path, text + std::string(kLineBreak), false);
    case kAppendText:
      return AppendText(path, text, as_unicode);
    default:
      return platform::Failure(platform::Code::kRefused, path, why::kNoSuchWayToWrite);
  }
}

// Begins anywhere, and ends when every name was looked at.
std::string FreeName(const std::string& folder) {
  constexpr unsigned kNames = 32767;
  std::random_device device;
  const unsigned first = std::uniform_int_distribution<unsigned>(1, kNames)(device);
  for (unsigned i = 0; i < kNames; ++i) {
    const unsigned number = (first - 1 + i) % kNames + 1;
    char name[sizeof "7fff.tmp"];
    std::snprintf(name, sizeof name, "%x.tmp", number & 0xFFFF);
    std::string path = AddBackslash(folder) + name;
    if (!FileExists(path) && !FolderExists(path)) return path;
  }
  return "";
}

}  // namespace

bool IsUnicodeFile(const std::string& path) {
  std::unique_ptr<platform::InputFile> file;
  char first = 0;
  std::size_t got = 0;
  return platform::InputFile::Open(path, &file).ok() && file->ReadAt(0, &first, 1, &got).ok() && got == 1 &&
         platform::IsTakenForUtf16({&first, 1});
}

std::string ReadTextFile(const std::string& path, bool* is_unicode) {
  *is_unicode = false;
  std::string bytes;
  if (!platform::ReadWholeFile(path, &bytes).ok()) return "";
  if (bytes.starts_with(platform::kMark)) return platform::WithReplacementCharacters(bytes);
  if (!platform::IsTakenForUtf16(bytes)) return platform::TextFromAnsi(bytes);
  if (bytes.size() == 1) return "";
  *is_unicode = true;
  // The last (size - 2) units are kept, which are all of them for every size but 2: the mark is not cut off.
  return bytes.size() == 2 ? "" : platform::FromUtf16Le(bytes);
}

bool WriteTextFile(const std::string& path, const std::string& text, std::int16_t mode, bool as_unicode,
                   platform::Result* why) {
  platform::Result written = WriteText(path, text, mode, as_unicode);
  if (!written.ok() && written.path.empty()) written.path = path;  // a refused conversion knows no file
  if (why != nullptr) *why = written;
  return mode == kReplaceText && text.empty() && written.ok();
}

std::string GetTempFilePath(bool create, const std::string& folder) {
  const std::string place = folder.empty() ? platform::TemporaryFolder() : folder;
  if (!create) return FreeName(place);
  std::string path;
  return platform::MakeTemporaryFile(place, &path).ok() ? path : "";
}

}  // namespace quendle
