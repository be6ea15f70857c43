#include "settings/clsPropItem.h"

#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"

namespace quendle {

clsPropItem::clsPropItem(const std::string& application_folder, Fallbacks fallbacks)
    : fallbacks_(std::move(fallbacks)) {
  ini_.pFileName = AddBackslash(application_folder) + LoadText(TextId::kItemsFile);
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

void clsPropItem::OptimizeFile() {
  ini_.OptimizeFile(true);
}

ProfileValues clsPropItem::Values(const std::string& title) const {
  return {[this, title](TextId name) { return ini_.GetStr(title, LoadText(name), ""); },
          fallbacks_.standard().Values()};
}

std::string clsPropItem::EXTRACTTO(const std::string& title) const {
  if (title != LoadText(TextId::kNoProfile)) return Values(title).Text(TextId::kExtractTo);
  const std::string own = AddBackslash(fallbacks_.test().EXTRACTTO()) + fallbacks_.target_base_name();
  return own.empty() ? fallbacks_.standard().EXTRACTTO() : own;
}

void clsPropItem::Write(const std::string& title, TextId key, const std::string& value) {
  ini_.SetStr(title, LoadText(key), value);
}

}  // namespace quendle
