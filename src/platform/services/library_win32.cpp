#include "platform/process/system_failure.h"
#include "platform/services/library.h"

#include <utility>

#include "platform/entries/input_file.h"
#include "platform/services/version_record.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {
namespace {

#if defined(_M_ARM64) || defined(__aarch64__)
constexpr std::uint64_t kOwnMachine = IMAGE_FILE_MACHINE_ARM64;
#elif defined(_WIN64)
constexpr std::uint64_t kOwnMachine = IMAGE_FILE_MACHINE_AMD64;
#else
constexpr std::uint64_t kOwnMachine = IMAGE_FILE_MACHINE_I386;
#endif

Reason MachineName(std::uint64_t machine) {
  switch (machine) {
    case IMAGE_FILE_MACHINE_I386:
      return why::kPrograms32;
    case IMAGE_FILE_MACHINE_AMD64:
      return why::kPrograms64;
    case IMAGE_FILE_MACHINE_ARM64:
      return why::kProgramsArm64;
    default:
      return why::kProgramsElsewhere;
  }
}

// `size` of at most eight bytes as a number; 0 where the file ends before.
std::uint64_t ReadNumber(const InputFile& file, std::uint64_t position, std::size_t size) {
  char bytes[8];
  std::size_t got = 0;
  if (!file.ReadAt(position, bytes, size, &got).ok() || got < size) return 0;
  return NumberAt({bytes, size}, 0, size);
}

// What the loader has against the file itself.
Reason WrongFormat(const std::string& path) {
  constexpr std::uint64_t kSignature = 0x4550;  // "PE", two zeros
  std::unique_ptr<InputFile> file;
  if (InputFile::Open(path, &file).ok()) {
    const std::uint64_t header = ReadNumber(*file, 60, 4);
    const std::uint64_t machine = ReadNumber(*file, header + 4, 2);
    if (ReadNumber(*file, header, 4) == kSignature && machine != kOwnMachine) {
      return why::kOtherMachine(MachineName(machine), MachineName(kOwnMachine));
    }
  }
  return why::kNoModule;
}

Result WhyNotLoaded(const std::string& path, DWORD error) {
  Result failure = SystemFailure(static_cast<int>(error), path);
  switch (error) {
    case ERROR_BAD_EXE_FORMAT:
    case ERROR_EXE_MACHINE_TYPE_MISMATCH:
      failure.reason = WrongFormat(path);
      break;
    case ERROR_MOD_NOT_FOUND:
      if (GetFileAttributesW(SystemPath(path).c_str()) == INVALID_FILE_ATTRIBUTES) break;
      failure.code = Code::kFailed;
      failure.reason = why::kNeedsLibrary;
      break;
    case ERROR_PROC_NOT_FOUND:
      failure.reason = why::kNeedsFunction;
      break;
    case ERROR_DLL_INIT_FAILED:
    case ERROR_NOACCESS:
    case ERROR_MR_MID_NOT_FOUND:  // an exception that has no error of its own
      failure.reason = why::kFailedWhileLoaded;
      break;
    default:
      // An exception in it, which the system ends with the exception's own number.
      if (error > 0xFFFF) failure.reason = why::kFailedWhileLoaded;
      break;
  }
  return failure;
}

}  // namespace

Result Library::Load(const std::string& path, std::unique_ptr<Library>* library, Binding) {
  // The prefix only where it is needed: a module should be known by one name.
  std::wstring name = SystemPath(path);
  if (std::wstring plain = WithoutPrefix(name); plain.size() < MAX_PATH) name = std::move(plain);
  DWORD mode = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, &mode);  // no box of the system's about what is wrong with it
  const HMODULE handle = LoadLibraryExW(name.c_str(), nullptr,
                                        LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  const DWORD error = GetLastError();
  SetThreadErrorMode(mode, nullptr);
  if (handle == nullptr) return WhyNotLoaded(path, error);
  library->reset(new Library(handle));
  return Success();
}

Library::~Library() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

Library::AnyFunction Library::FindSymbol(const std::string& name) const {
  return reinterpret_cast<AnyFunction>(GetProcAddress(static_cast<HMODULE>(handle_), name.c_str()));
}

}  // namespace quendle::platform
