#include "platform/entries/entry_status_win32.h"
#include "platform/entries/nt_file_win32.h"
#include "platform/extraction/origin_mark.h"

namespace quendle::platform {
namespace {

constexpr wchar_t kStream[] = L":Zone.Identifier";
constexpr DWORD kLongest = 64 << 10;  // they are some hundred bytes

}  // namespace

std::string ReadOriginMark(const std::string& path) {
  const Handle stream(CreateFileW((SystemPath(path) + kStream).c_str(), GENERIC_READ, kShareAll, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
  if (!stream.ok()) return "";
  std::string mark(kLongest, '\0');
  DWORD got = 0;
  if (ReadFile(stream.get(), mark.data(), kLongest, &got, nullptr) == 0) got = 0;
  mark.resize(got);
  return mark;
}

void WriteOriginMark(const OpenFolder& folder, const std::string& name, const std::string& mark) {
  Handle stream;
  const NtOpening how{.access = GENERIC_WRITE | FILE_READ_ATTRIBUTES, .makes = true};
  if (OpenStream(HandleFrom(folder.get()), WideFromText(name) + kStream, how, &stream) != 0) return;
  // The stream has the times of its file.
  FILE_BASIC_INFO before;
  const BOOL known = GetFileInformationByHandleEx(stream.get(), FileBasicInfo, &before, sizeof before);
  DWORD written = 0;
  (void)WriteFile(stream.get(), mark.data(), static_cast<DWORD>(mark.size()), &written, nullptr);
  if (known == 0) return;
  FILE_BASIC_INFO basic = {};
  basic.LastWriteTime = before.LastWriteTime;
  (void)SetFileInformationByHandle(stream.get(), FileBasicInfo, &basic, sizeof basic);
}

}  // namespace quendle::platform
