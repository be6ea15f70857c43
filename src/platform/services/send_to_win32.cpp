#include "platform/process/system_failure.h"
#include "platform/services/send_to.h"

#include "platform/text/wide_win32.h"

#include <objbase.h>
#include <shlobj.h>

#include "platform/entries/paths.h"

namespace quendle::platform {
namespace {

constexpr const wchar_t* kName = L"\\Quendle.lnk";
constexpr std::wstring_view kProgramName = L"quendle.exe";

template <class Interface>
class Pointer {
 public:
  ~Pointer() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Pointer() = default;
  Pointer(const Pointer&) = delete;
  Pointer& operator=(const Pointer&) = delete;
  Interface* operator->() const { return pointer_; }
  Interface** Address() { return &pointer_; }
  void** Untyped() { return reinterpret_cast<void**>(&pointer_); }

 private:
  Interface* pointer_ = nullptr;
};

// The shell's objects, on whatever thread. One that has chosen another model works as well.
class Shell {
 public:
  Shell() : started_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~Shell() {
    if (SUCCEEDED(started_)) CoUninitialize();
  }
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;

 private:
  HRESULT started_;
};

// Empty when the user has no such folder.
std::wstring ShortcutPath() {
  PWSTR folder = nullptr;
  std::wstring path;
  if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_SendTo, KF_FLAG_CREATE, nullptr, &folder))) {
    path.assign(folder).append(kName);
  }
  CoTaskMemFree(folder);
  return path;
}

Result ShellFailure(HRESULT error, const std::wstring& path) {
  return SystemFailure(HRESULT_CODE(error), TextFromWide(path));
}

bool IsSame(std::wstring_view a, std::wstring_view b) {
  return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()),
                              TRUE) == CSTR_EQUAL;
}

// Where the shortcut leads; empty when it cannot be read.
std::wstring TargetOf(const std::wstring& path) {
  Pointer<IShellLinkW> link;
  Pointer<IPersistFile> file;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              link.Untyped())) ||
      FAILED(link->QueryInterface(IID_IPersistFile, file.Untyped())) ||
      FAILED(file->Load(path.c_str(), STGM_READ))) {
    return L"";
  }
  std::wstring target(0x8000, L'\0');
  if (FAILED(link->GetPath(target.data(), static_cast<int>(target.size()), nullptr, SLGP_RAWPATH)))
    return L"";
  target.resize(target.find(L'\0'));
  return target;
}

bool IsOurs(const std::wstring& path) {
  const std::wstring target = TargetOf(path);
  const std::size_t name = target.find_last_of(L'\\') + 1;
  return IsSame(std::wstring_view(target).substr(name), kProgramName);
}

}  // namespace

bool IsInSendTo(const std::string& program) {
  const Shell shell;
  const std::wstring path = ShortcutPath();
  return !path.empty() && IsSame(TargetOf(path), WideFromText(program));
}

Result AddToSendTo(const std::string& program) {
  const Shell shell;
  const std::wstring path = ShortcutPath();
  if (path.empty()) return Failure(Code::kNotFound, "", why::kNoMenuFolder);
  if (IsTaken(TextFromWide(path)) && !IsOurs(path)) {
    return Failure(Code::kExists, TextFromWide(path), why::kNameTakenByOther);
  }
  Pointer<IShellLinkW> link;
  Pointer<IPersistFile> file;
  HRESULT done =
      CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, link.Untyped());
  if (SUCCEEDED(done)) done = link->SetPath(WideFromText(program).c_str());
  if (SUCCEEDED(done)) done = link->QueryInterface(IID_IPersistFile, file.Untyped());
  if (SUCCEEDED(done)) done = file->Save(path.c_str(), TRUE);
  return SUCCEEDED(done) ? Success() : ShellFailure(done, path);
}

Result RemoveFromSendTo() {
  const Shell shell;
  const std::wstring path = ShortcutPath();
  if (path.empty() || !IsTaken(TextFromWide(path)) || !IsOurs(path)) return Success();
  return RemoveFile(TextFromWide(path));
}

}  // namespace quendle::platform
