#include "archive/archiver_library.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

// A byte that is the first half of a character of the ANSI code page comes back as a character of its own.
void DropUndecodableEnd(std::string* text) {
  std::size_t last = text->size();
  while (last > 0 && (static_cast<unsigned char>((*text)[last - 1]) & 0xC0) == 0x80) --last;
  if (last == 0) return;
  std::string_view end = std::string_view(*text).substr(last - 1);
  char32_t code_point = 0;
  if (platform::TakeCodePoint(&end, &code_point) && platform::IsUndecodableByte(code_point)) {
    text->resize(last - 1);
  }
}

std::string_view UpToNul(std::string_view bytes) {
  return bytes.substr(0, bytes.find('\0'));
}

void AddTime(const std::string& name, const ArchiverEntry& entry, EntryTimes* times) {
  const std::uint32_t time = std::uint32_t{entry.date} << 16U | entry.time;
  const auto [known, is_new] = times->emplace(name, time);
  if (!is_new) known->second = std::min(known->second, time) == 0 ? 0 : std::max(known->second, time);
}

// What a function of the library writes that copies as much as fits and returns how much there is.
template <typename Copy>
std::string WholeText(const Copy& copy) {
  std::string text(ARCHIVER_NAME_SIZE, '\0');
  const std::uint32_t length = copy(text.data(), static_cast<std::uint32_t>(text.size()));
  if (length >= text.size()) {
    text.assign(std::size_t{length} + 1, '\0');
    copy(text.data(), length + 1);
  }
  return std::string(UpToNul(text));
}

}  // namespace

platform::Result ArchiverLibrary::Load(const std::string& path, const std::string& prefix,
                                       std::unique_ptr<ArchiverLibrary>* library) {
  std::unique_ptr<platform::Library> module;
  if (platform::Result loaded = platform::Library::Load(path, &module); !loaded.ok()) return loaded;
  std::unique_ptr<ArchiverLibrary> made(new ArchiverLibrary(std::move(module)));
  if (const std::string missing = made->Bind(prefix); !missing.empty()) {
    return Failure(platform::Code::kFailed, path, why::kNoFunction(missing));
  }
  *library = std::move(made);
  return platform::Success();
}

// Returns the name of the first required function that is missing.
std::string ArchiverLibrary::Bind(const std::string& prefix) {
  std::string missing;
  const auto find = [&]<typename Function>(Function* function, const char* name, bool required) {
    *function = library_->Find<Function>(prefix + name);
    if (required && *function == nullptr && missing.empty()) missing = prefix + name;
  };
  ArchiverUseUtf8 use_utf8 = nullptr;
  find(&command_, "", true);
  find(&check_, "CheckArchive", true);
  find(&open_, "OpenArchive", true);
  find(&find_first_, "FindFirst", true);
  find(&find_next_, "FindNext", true);
  find(&close_, "CloseArchive", true);
  find(&use_utf8, "UseUtf8", false);
  find(&full_name_, "FullName", false);
  find(&set_session_, "SetSession", false);
  find(&extract_calls_, "ExtractCalls", false);
  find(&credits_, "Credits", false);
  if (missing.empty()) utf8_ = use_utf8 != nullptr && use_utf8(1) != 0;
  return missing;
}

bool ArchiverLibrary::Accepts(const std::string& path) const {
  const auto encoded = Encode(path);
  return encoded && check_(encoded->c_str(), 0) != 0;
}

std::vector<std::string> ArchiverLibrary::EntryNames(const std::string& archive, EntryTimes* times) const {
  std::vector<std::string> names;
  const auto encoded = Encode(archive);
  const ArchiverHandle handle = encoded ? open_(nullptr, encoded->c_str(), 0) : 0;
  if (handle == 0) return names;
  const std::unique_ptr<const ArchiverHandle, std::function<void(const ArchiverHandle*)>> closer(
      &handle, [this](const ArchiverHandle* open) { close_(*open); });
  ArchiverEntry entry{};
  for (std::int32_t end = find_first_(handle, "*.*", &entry); end == 0; end = find_next_(handle, &entry)) {
    std::string name = EntryName(handle, entry);
    std::replace(name.begin(), name.end(), '\\', '/');
    if (times != nullptr) AddTime(name, entry, times);
    names.push_back(std::move(name));
  }
  return names;
}

std::string ArchiverLibrary::EntryName(ArchiverHandle handle, const ArchiverEntry& entry) const {
  // A field that has room for one more character has the whole name.
  constexpr std::size_t kLongestCharacter = 4;
  const std::string_view field = UpToNul(std::string_view(entry.file_name, sizeof entry.file_name));
  if (full_name_ == nullptr || field.size() + kLongestCharacter < sizeof entry.file_name)
    return Decode(field);
  return Decode(WholeText([&](char* name, std::uint32_t size) { return full_name_(handle, name, size); }));
}

std::string ArchiverLibrary::Credits() const {
  return credits_ == nullptr ? "" : Decode(WholeText(credits_));
}

std::optional<std::string> ArchiverLibrary::Encode(const std::string& text) const {
  return utf8_ ? text : platform::AnsiFromText(text);
}

std::string ArchiverLibrary::Decode(std::string_view bytes) const {
  return utf8_ ? std::string(bytes) : platform::TextFromAnsi(bytes);
}

std::string ArchiverLibrary::OutputText(std::string_view buffer) const {
  const std::string_view output = UpToNul(buffer);
  std::string text = Decode(output);
  if (output.size() < buffer.size()) {
    text.push_back('\0');
  } else if (!utf8_) {
    DropUndecodableEnd(&text);
  }
  return text;
}

std::int32_t ArchiverLibrary::Command(const std::string& line, char* output, std::uint32_t size) const {
  return command_(nullptr, line.c_str(), output, size);
}

std::int32_t ArchiverLibrary::ExtractCalls(std::vector<ArchiverCall>* calls) const {
  return extract_calls_(nullptr, calls->data(), static_cast<std::uint32_t>(calls->size()));
}

void ArchiverLibrary::SetSession(const ArchiverSession* session) const {
  if (set_session_ != nullptr) set_session_(session);
}

}  // namespace quendle
