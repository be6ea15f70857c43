#include "settings/modOpenFile.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <random>

#include "base/modString.h"
#include "platform/code_page.h"
#include "platform/durable_file.h"
#include "platform/known_folders.h"
#include "platform/paths.h"
#include "platform/unicode.h"

namespace quendle {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

std::string Utf16FileOf(const std::string& text) {
  const bool has_mark = text.starts_with(platform::kMark);
  return std::string(has_mark ? "" : platform::kUtf16LeMark) + platform::ToUtf16Le(text);
}

std::string BytesOf(const std::string& text, bool as_unicode) {
  if (as_unicode) return Utf16FileOf(text);
  std::optional<std::string> bytes = platform::AnsiFromText(text);
  // Bytes that would be taken for UTF-16 when they are read again do not hold the text either.
  return bytes && !platform::IsTakenForUtf16(*bytes) ? *bytes : Utf16FileOf(text);
}

std::string AppendedTo(const std::string& old, const std::string& text, bool as_unicode) {
  const std::string start = old.empty() && as_unicode ? std::string(platform::kUtf16LeMark) : old;
  if (platform::IsTakenForUtf16(start)) return start + platform::ToUtf16Le(text);
  const std::string line = text + std::string(kLineBreak);
  const std::optional<std::string> bytes = platform::AnsiFromText(line);
  return bytes ? start + *bytes : Utf16FileOf(platform::TextFromAnsi(start) + line);
}

platform::Result AppendText(const std::string& path, const std::string& text, bool as_unicode) {
  std::unique_ptr<platform::FolderLock> lock;
  if (platform::Result taken = platform::FolderLock::Take(path, &lock); !taken.ok()) return taken;
  std::string old;
  platform::Result read = platform::ReadWholeFile(path, &old);
  if (!read.ok() && read.code != platform::Code::kNotFound) return read;
  return platform::ReplaceFile(path, AppendedTo(old, text, as_unicode));
}

platform::Result WriteText(const std::string& path, const std::string& text, std::int16_t mode,
                           bool as_unicode) {
  switch (mode) {
    case kReplaceText:
      return platform::ReplaceFile(path, text.empty() ? "" : BytesOf(text, as_unicode));
    case kPrintText:
      return platform::ReplaceFile(path, BytesOf(text + std::string(kLineBreak), false));
    case kAppendText:
      return AppendText(path, text, as_unicode);
    default:
      return platform::Failure(platform::Code::kRefused, path, "there is no such way of writing");
  }
}

std::string FreeName(const std::string& folder) {
  std::random_device device;
  std::uniform_real_distribution<double> random;
  std::string path;
  do {
    // Rounding makes the two ends half as likely as the rest.
    const auto number = static_cast<unsigned>(std::lround(random(device) * 32766)) + 1;
    char name[sizeof "7fff.tmp"];
    std::snprintf(name, sizeof name, "%x.tmp", number & 0xFFFF);
    path = AddBackslash(folder) + name;
  } while (FileExists(path) || FolderExists(path));
  return path;
}

}  // namespace

bool IsUnicodeFile(const std::string& path) {
  char first = 0;
  return std::ifstream(path, std::ios::binary).get(first) && platform::IsTakenForUtf16({&first, 1});
}

std::string ReadTextFile(const std::string& path, bool* is_unicode) {
  *is_unicode = false;
  std::string bytes;
  if (!platform::ReadWholeFile(path, &bytes).ok()) return "";
  if (!platform::IsTakenForUtf16(bytes)) return platform::TextFromAnsi(bytes);
  if (bytes.size() == 1) return "";
  *is_unicode = true;
  // The last (size - 2) units are kept, which are all of them for every size but 2: the mark is not cut off.
  return bytes.size() == 2 ? "" : platform::FromUtf16Le(bytes);
}

bool WriteTextFile(const std::string& path, const std::string& text, std::int16_t mode, bool as_unicode,
                   platform::Result* why) {
  const platform::Result written = WriteText(path, text, mode, as_unicode);
  if (why != nullptr) *why = written;
  return mode == kReplaceText && text.empty() && written.ok();
}

std::string GetTempFilePath(bool create, const std::string& folder) {
  std::string place = folder.empty() ? platform::TemporaryFolder() : folder;
  if (place.empty()) place = platform::ExecutableFolder();
  if (!create) return FreeName(place);
  std::string path;
  return platform::MakeTemporaryFile(place, &path).ok() ? path : "";
}

}  // namespace quendle
