#include "platform/process/system_failure.h"
#include "platform/services/launch.h"

#include <array>
#include <utility>

#include "platform/process/command_line_win32.h"
#include "platform/text/wide_win32.h"

// They need the system's header before them.
#include <shellapi.h>
#include <shlobj.h>

namespace quendle::platform {
namespace {

std::wstring WindowsFolder() {
  std::array<wchar_t, MAX_PATH> folder = {};
  const UINT length = GetSystemWindowsDirectoryW(folder.data(), static_cast<UINT>(folder.size()));
  return length == 0 || length >= folder.size() ? L"C:\\Windows" : std::wstring(folder.data(), length);
}

// A folder that nobody has to remove, and in which no program finds anything it did not look for.
std::wstring RootFolder() {
  return WindowsFolder().substr(0, 3);
}

// The system would hand it to its command interpreter, to which much in a path means something else.
bool IsBatchFile(const std::wstring& program) {
  const auto ends_with = [&](const wchar_t* ending) {
    return program.size() >= 4 && _wcsicmp(program.c_str() + program.size() - 4, ending) == 0;
  };
  return ends_with(L".bat") || ends_with(L".cmd");
}

// `parameters` is the rest of the command line.
Result Start(const std::string& program, const std::string& parameters) {
  std::wstring application;
  if (Result usable = ToShellPath(program, &application); !usable.ok()) return usable;
  if (IsBatchFile(application)) {
    return Failure(Code::kRefused, program, why::kBatchFile);
  }
  std::wstring command_line = L'"' + application + L'"';
  if (!parameters.empty()) command_line += L' ' + WideFromText(parameters);
  STARTUPINFOW how = {};
  how.cb = sizeof how;
  how.dwFlags = STARTF_USESHOWWINDOW;
  how.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION started;
  // A program that needs a console gets one of its own; the error mode is this process's affair.
  if (CreateProcessW(application.c_str(), command_line.data(), nullptr, nullptr, FALSE,
                     CREATE_NEW_CONSOLE | CREATE_DEFAULT_ERROR_MODE, nullptr, RootFolder().c_str(), &how,
                     &started) == 0) {
    return LastSystemFailure(program);
  }
  const Handle thread(started.hThread);
  const Handle process(started.hProcess);
  AllowSetForegroundWindow(started.dwProcessId);
  return Success();
}

class ComScope {
 public:
  ComScope() : begun_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  ~ComScope() {
    if (SUCCEEDED(begun_)) CoUninitialize();
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;

 private:
  HRESULT begun_;
};

// By the handler of its type. The shell is given the very file, since of a name without ending it would make a program
// with one.
Result OpenFile(const std::string& path, const std::wstring& shell_path) {
  const ComScope com;
  PIDLIST_ABSOLUTE item = nullptr;
  if (const HRESULT parsed = SHParseDisplayName(shell_path.c_str(), nullptr, &item, 0, nullptr);
      FAILED(parsed)) {
    return SystemFailure(HRESULT_CODE(parsed), path);
  }
  const std::wstring folder = RootFolder();
  SHELLEXECUTEINFOW how = {};
  how.cbSize = sizeof how;
  how.fMask = SEE_MASK_IDLIST | SEE_MASK_NOASYNC | SEE_MASK_FLAG_NO_UI;
  how.lpIDList = item;
  how.lpDirectory = folder.c_str();
  how.nShow = SW_SHOWNORMAL;
  const BOOL is_open = ShellExecuteExW(&how);
  const DWORD error = GetLastError();
  ILFree(item);
  if (is_open != 0) return Success();
  if (error == ERROR_NO_ASSOCIATION) return Failure(Code::kFailed, path, why::kNoProgramForType);
  return SystemFailure(static_cast<int>(error), path);
}

}  // namespace

Result StartProgram(const std::vector<std::string>& arguments) {
  std::string parameters;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (i > 1) parameters += ' ';
    parameters += QuotedWord(arguments[i]);
  }
  return Start(arguments.front(), parameters);
}

Result StartProgramFor(const std::string& program, const std::string& parameters, const std::string& value) {
  return Start(program, FilledParameters(parameters, value));
}

// The opener is the system's own, by its full path.
Result OpenWithDesktop(const std::string& path, const std::string&) {
  const DWORD attributes = GetFileAttributesW(SystemPath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return LastSystemFailure(path);
  std::wstring shell_path;
  if (Result usable = ToShellPath(path, &shell_path); !usable.ok()) return usable;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return OpenFile(path, shell_path);
  Result opened = StartProgram({TextFromWide(WindowsFolder()) + "\\explorer.exe", TextFromWide(shell_path)});
  if (!opened.ok()) opened.path = path;
  return opened;
}

}  // namespace quendle::platform
