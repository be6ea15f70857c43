#include "settings/clsPropItem.h"

#include <cmath>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "platform/code_page.h"
#include "platform/profile.h"
#include "platform/unicode.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

const std::string& OrElse(const std::string& text, const std::string& fallback) {
  return text.empty() ? fallback : text;
}

// What a profile with an ID of its own does when it says nothing, and the greatest number that it can say.
constexpr const char* kNoAction = "0";
constexpr std::int16_t kAllActions = 7;

std::optional<std::int16_t> NumberWithin(const std::string& text, std::int16_t lowest, std::int16_t highest) {
  double number = 0;
  if (!ToNumber(text, &number)) return std::nullopt;
  const double rounded = std::nearbyint(number);
  if (rounded < lowest || rounded > highest) return std::nullopt;
  return static_cast<std::int16_t>(rounded);
}

// The values of some keys, each cut as reading it alone would cut it; of keys of one name the first counts.
class KeyValues {
 public:
  KeyValues(const platform::ProfileKeys& keys, std::size_t buffer) : buffer_(buffer) {
    for (const auto& [key, value] : keys) values_.emplace_back(platform::UpperCase(key), value);
  }

  std::string Get(int key) const {
    const std::string wanted = platform::UpperCase(LoadText(key));
    for (const auto& [name, value] : values_) {
      if (name != wanted) continue;
      return std::string(platform::CutToAnsiBytes(value.substr(0, value.find('\0')), buffer_ - 1));
    }
    return "";
  }

 private:
  std::size_t buffer_;
  std::vector<std::pair<std::string, std::string_view>> values_;
};

void FillSummary(const platform::ProfileKeys& keys, std::size_t buffer, ProfileSummary* summary) {
  const KeyValues values(keys, buffer);
  summary->pattern = values.Get(text_id::kPattern);
  summary->extract_to = values.Get(text_id::kExtractTo);
  summary->move_to = values.Get(text_id::kMoveTo);
  summary->copy_to = values.Get(text_id::kCopyTo);
  if (!ToBoolean(values.Get(text_id::kId))) return;
  const std::string action = values.Get(text_id::kAction);
  summary->action = NumberWithin(action.empty() ? kNoAction : action, 0, kAllActions);
}

}  // namespace

clsPropItem::clsPropItem(const std::string& application_folder, Fallbacks fallbacks)
    : fallbacks_(std::move(fallbacks)) {
  ini_.pFileName = AddBackslash(application_folder) + LoadText(text_id::kItemsFile);
}

void clsPropItem::DelSection(const std::string& title) {
  ini_.DeleteSection(title);
}

void clsPropItem::DelSections(const std::vector<std::string>& titles) {
  ini_.DeleteSections(titles);
}

std::int32_t clsPropItem::EnumSection(std::vector<std::string>* titles) const {
  const std::int32_t count = ini_.EnumSection(titles);
  SortStrings(titles, 0, count - 1);
  return count;
}

void clsPropItem::RenameSection(const std::string& old_title, const std::string& new_title) {
  ini_.RenameSection(old_title, new_title);
}

// In order, each line of the body has an end of its own, as the functions on whole sections need it.
void clsPropItem::CopySection(const std::string& title, const std::string& new_title) {
  OptimizeFile();
  if (LastFailure().ok()) ini_.SetSectionData(new_title, ini_.GetSectionData(title));
}

std::vector<ProfileSummary> clsPropItem::Summaries() const {
  std::vector<std::string> titles;
  std::vector<ProfileSummary> summaries;
  if (EnumSection(&titles) == 0) return summaries;
  std::unordered_map<std::string, std::size_t> unread;  // by upper-cased title
  for (const std::string& title : titles) {
    if (title.empty() || !unread.try_emplace(platform::UpperCase(title), summaries.size()).second) continue;
    summaries.emplace_back().title = title;
  }
  const auto buffer = static_cast<std::size_t>(ini_.pBUFFER());
  platform::VisitProfileSections(ini_.pFileName,
                                 [&](std::string_view name, const platform::ProfileKeys& keys) {
                                   const auto place = unread.find(platform::UpperCase(name));
                                   if (place == unread.end()) return;
                                   FillSummary(keys, buffer, &summaries[place->second]);
                                   unread.erase(place);
                                 });
  return summaries;
}

void clsPropItem::OptimizeFile() {
  ini_.OptimizeFile(true);
}

std::string clsPropItem::Read(int key, const char* fallback) const {
  return ini_.GetStr(Title, LoadText(key), fallback);
}

void clsPropItem::Write(int key, const std::string& value) {
  ini_.SetStr(Title, LoadText(key), value);
}

std::int16_t clsPropItem::ReadOwn(int key, const char* fallback, std::int16_t lowest, std::int16_t highest,
                                  std::int16_t (clsPropDefault::*standard)() const) const {
  std::optional<std::int16_t> own;
  if (ID()) own = NumberWithin(Read(key, fallback), lowest, highest);
  return own ? *own : (fallbacks_.standard().*standard)();
}

bool clsPropItem::ReadOwnFlag(int key, bool (clsPropDefault::*standard)() const) const {
  return ID() ? ToBoolean(Read(key, "0")) : (fallbacks_.standard().*standard)();
}

std::string clsPropItem::pattern() const {
  return Read(text_id::kPattern, "");
}
void clsPropItem::pattern(const std::string& value) {
  Write(text_id::kPattern, value);
}

std::string clsPropItem::EXTRACTTO() const {
  if (Title == LoadText(text_id::kNoProfile)) {
    return OrElse(AddBackslash(fallbacks_.test().EXTRACTTO()) + fallbacks_.target_base_name(),
                  fallbacks_.standard().EXTRACTTO());
  }
  return OrElse(Read(text_id::kExtractTo, ""), fallbacks_.standard().EXTRACTTO());
}
void clsPropItem::EXTRACTTO(const std::string& value) {
  Write(text_id::kExtractTo, value);
}

std::string clsPropItem::MOVETO() const {
  return OrElse(Read(text_id::kMoveTo, ""), fallbacks_.standard().MOVETO());
}
void clsPropItem::MOVETO(const std::string& value) {
  Write(text_id::kMoveTo, value);
}
std::string clsPropItem::COPYTO() const {
  return OrElse(Read(text_id::kCopyTo, ""), fallbacks_.standard().COPYTO());
}
void clsPropItem::COPYTO(const std::string& value) {
  Write(text_id::kCopyTo, value);
}

std::string clsPropItem::INCLUDE() const {
  return Read(text_id::kInclude, "");
}
void clsPropItem::INCLUDE(const std::string& value) {
  Write(text_id::kInclude, value);
}
std::string clsPropItem::EXCLUDE() const {
  return Read(text_id::kExclude, "");
}
void clsPropItem::EXCLUDE(const std::string& value) {
  Write(text_id::kExclude, value);
}
std::string clsPropItem::OPENFILE() const {
  return Read(text_id::kOpenFile, "");
}
void clsPropItem::OPENFILE(const std::string& value) {
  Write(text_id::kOpenFile, value);
}

bool clsPropItem::ID() const {
  return ToBoolean(Read(text_id::kId, "0"));
}
void clsPropItem::ID(std::int16_t value) {
  Write(text_id::kId, std::to_string(value));
}

std::int16_t clsPropItem::ACTION() const {
  return ReadOwn(text_id::kAction, kNoAction, 0, kAllActions, &clsPropDefault::ACTION);
}
void clsPropItem::ACTION(std::int16_t value) {
  Write(text_id::kAction, std::to_string(value));
}
std::int16_t clsPropItem::SMARTRENAME() const {
  return ReadOwn(text_id::kSmartRename, "1", 1, 3, &clsPropDefault::SMARTRENAME);
}
void clsPropItem::SMARTRENAME(std::int16_t value) {
  Write(text_id::kSmartRename, std::to_string(value));
}
std::int16_t clsPropItem::EXTRACTTYPE() const {
  return ReadOwn(text_id::kExtractType, "1", 1, 2, &clsPropDefault::EXTRACTTYPE);
}
void clsPropItem::EXTRACTTYPE(std::int16_t value) {
  Write(text_id::kExtractType, std::to_string(value));
}

bool clsPropItem::SMARTMAKEDIR() const {
  return ReadOwnFlag(text_id::kSmartMakeDir, &clsPropDefault::SMARTMAKEDIR);
}
void clsPropItem::SMARTMAKEDIR(std::int16_t value) {
  Write(text_id::kSmartMakeDir, std::to_string(value));
}
bool clsPropItem::OPENDIR() const {
  return ReadOwnFlag(text_id::kOpenDir, &clsPropDefault::OPENDIR);
}
void clsPropItem::OPENDIR(std::int16_t value) {
  Write(text_id::kOpenDir, std::to_string(value));
}

}  // namespace quendle
