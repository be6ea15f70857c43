#include "platform/process/process.h"

#include <fcntl.h>
#include <io.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "platform/process/command_line_win32.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

std::atomic<bool> interrupted = false;
HANDLE interrupt_event = nullptr;  // for good: the system calls below until the process is gone
UINT former_code_page = 0;
bool console_understands_escapes = false;

// Called on a thread of its own.
BOOL WINAPI NoteInterrupt(DWORD event) {
  interrupted = true;
  if (interrupt_event != nullptr) SetEvent(interrupt_event);
  // After anything but a key the process is ended as soon as this returns; what is in progress is to be finished first.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

struct Stream {
  DWORD number;
  std::FILE* file;
  const wchar_t* console;
  const wchar_t* mode;
};

bool IsOpen(const Stream& stream) {
  const HANDLE handle = GetStdHandle(stream.number);
  return handle != nullptr && handle != INVALID_HANDLE_VALUE && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

HANDLE SystemHandle(std::FILE* file) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

void RestoreConsole() {
  SetConsoleOutputCP(former_code_page);
}

// The console belongs to the shell, too, which gets it back as it was.
void SpeakUtf8() {
  former_code_page = GetConsoleOutputCP();
  if (former_code_page == 0 || former_code_page == CP_UTF8 || SetConsoleOutputCP(CP_UTF8) == 0) return;
  std::atexit(RestoreConsole);
}

bool EnableEscapes(HANDLE console) {
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace

void SecureProcess() {
  SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  SetDllDirectoryW(L"");
  SetSearchPathMode(BASE_SEARCH_PATH_ENABLE_SAFE_SEARCHMODE | BASE_SEARCH_PATH_PERMANENT);
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

void OpenStandardStreams() {
  const Stream streams[] = {{STD_INPUT_HANDLE, stdin, L"CONIN$", L"r"},
                            {STD_OUTPUT_HANDLE, stdout, L"CONOUT$", L"w"},
                            {STD_ERROR_HANDLE, stderr, L"CONOUT$", L"w"}};
  bool is_open[3];
  bool all_open = true;
  for (std::size_t i = 0; i < 3; ++i) all_open = (is_open[i] = IsOpen(streams[i])) && all_open;
  // A program with windows is given no console, even by a shell that has one.
  const bool has_console = !all_open && AttachConsole(ATTACH_PARENT_PROCESS) != 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const Stream& stream = streams[i];
    if (!is_open[i] && (!has_console || _wfreopen(stream.console, stream.mode, stream.file) == nullptr) &&
        _wfreopen(L"NUL", stream.mode, stream.file) == nullptr) {
      std::exit(1);
    }
    _setmode(_fileno(stream.file), _O_BINARY);  // the same bytes on all systems
  }
  // The runtime writes an unbuffered stream byte by byte, which tears characters apart.
  for (std::FILE* file : {stdout, stderr}) std::setvbuf(file, nullptr, _IOFBF, BUFSIZ);
  SpeakUtf8();
  console_understands_escapes = EnableEscapes(SystemHandle(stderr));
}

std::vector<std::string> ProgramArguments(int, char**) {
  // What main() gets is in the code page, which has not every character.
  return CommandLineWords(TextFromWide(GetCommandLineW()));
}

std::optional<std::string> EnvironmentVariable(const char* name) {
  const std::wstring wide_name = WideFromText(name);
  const std::wstring value = WholeText(
      [&](wchar_t* text, DWORD size) { return GetEnvironmentVariableW(wide_name.c_str(), text, size); });
  if (value.empty()) return std::nullopt;
  return TextFromWide(value);
}

void CatchInterrupts() {
  interrupt_event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool InterruptRequested() {
  return interrupted;
}

std::intptr_t InterruptHandle() {
  return interrupt_event == nullptr ? -1 : reinterpret_cast<std::intptr_t>(interrupt_event);
}

int ErrorStreamColumns() {
  CONSOLE_SCREEN_BUFFER_INFO screen;
  if (!console_understands_escapes || GetConsoleScreenBufferInfo(SystemHandle(stderr), &screen) == 0)
    return 0;
  return screen.srWindow.Right - screen.srWindow.Left + 1;
}

}  // namespace quendle::platform
