// What support/recorder.h puts in place on Windows, where no script is a program.
#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

int main() {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (words == nullptr) return 1;
  std::vector<wchar_t> own_path(32768);
  GetModuleFileNameW(nullptr, own_path.data(), static_cast<DWORD>(own_path.size()));
  const std::wstring record = std::wstring(own_path.data()) + L".record";
  FILE* file = _wfopen((record + L".part").c_str(), L"wb");
  if (file == nullptr) return 1;
  std::fprintf(file, "%d\n", count - 1);
  for (int i = 1; i < count; ++i) {
    const std::u8string word = std::filesystem::path(words[i]).u8string();
    std::fprintf(file, "%s\n", reinterpret_cast<const char*>(word.c_str()));
  }
  std::fclose(file);
  LocalFree(words);
  std::error_code error;
  std::filesystem::rename(record + L".part", record, error);
  return error ? 1 : 0;
}
