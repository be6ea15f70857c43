#include "core/clsMover.h"

#include <algorithm>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "platform/known_folders.h"
#include "platform/unicode.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr const char* kArchiveExtensions[] = {"LZH", "ZIP", "CAB", "RAR", "EXE", "7Z"};

bool HasArchiveExtension(const std::string& extension) {
  const std::string upper = platform::UpperCase(extension);
  return std::find(std::begin(kArchiveExtensions), std::end(kArchiveExtensions), upper) !=
         std::end(kArchiveExtensions);
}

}  // namespace

clsMover::clsMover(const Environment& environment, std::unique_ptr<clsArchiver> archiver,
                   std::vector<std::string> arguments)
    : environment_(environment),
      archiver_(std::move(archiver)),
      operation_(environment.user),
      CommandLineArgs(std::move(arguments)) {
  CMDLINEMAX = static_cast<std::int32_t>(CommandLineArgs.size()) - 1;
  const std::string current_folder = platform::CurrentFolder();
  for (std::size_t i = 1; i < CommandLineArgs.size(); ++i) {
    CommandLineArgs[i] = MakeAbsolute(CommandLineArgs[i], current_folder);
  }
  operation_.pAllowUndo(false);
  operation_.pConfirmMakeDir(false);
  operation_.pRenameOnCollision(false);
  operation_.pRespondDialog(false);
  operation_.pShowProgress(true);
  operation_.pSimpleProgress(false);
  SetItemDataToArray();
}

const std::string& clsMover::CurrentCmdLineString() const {
  return CommandLineArgs.at(static_cast<std::size_t>(CMDLINECURRENT));
}

bool clsMover::SetTarget() {
  const std::string& path = CurrentCmdLineString();
  ORIGINALPATH = path;
  if (!environment_.file_info.SetFilename(path)) return false;
  // Without "." and ".." in it, so that comparing it with a destination means something.
  if (const std::string& real = environment_.file_info.pFilePathLong(); !real.empty()) ORIGINALPATH = real;
  DOESFOLDER = FolderExists(ORIGINALPATH);
  return !assumed_free_.contains(ORIGINALPATH);
}

void clsMover::SetItemDataToArray() {
  clsPropItem& items = environment_.items;
  std::vector<std::string> titles;
  ProfileIndex.clear();
  if (items.EnumSection(&titles) == 0) return;
  ProfileIndex.reserve(titles.size());
  items.EDITMODE = 5;
  for (std::string& title : titles) {
    items.Title = title;
    std::string pattern = items.pattern();
    Regex expression(pattern);
    ProfileIndex.push_back({std::move(title), std::move(pattern), std::move(expression)});
  }
  items.EDITMODE = 0;
}

std::vector<std::string> clsMover::GetAccordantTitles() {
  const std::string subject =
      platform::UpperCase(platform::WithReplacementCharacters(environment_.file_info.pFileNameLong()));
  std::vector<std::string> titles = {"", LoadText(text_id::kNoProfile)};
  for (const ProfileIndexEntry& profile : ProfileIndex) {
    if (profile.expression.MatchWhole(subject) == RegexAnswer::kWhole) titles.push_back(profile.Title);
  }
  pattern_match_count_ = static_cast<std::int32_t>(titles.size()) - 2;
  if (pattern_match_count_ == 0) {
    for (const ProfileIndexEntry& profile : ProfileIndex) titles.push_back(profile.Title);
  }
  ARCHIVETYPE = DetectArchiveType();
  return titles;
}

std::int16_t clsMover::DetectArchiveType() {
  archiver_->pFileName = ORIGINALPATH;
  if (DOESFOLDER) return 0;
  if (environment_.standard.CHECKARCHIVE() ||
      HasArchiveExtension(environment_.file_info.pFileNameExtension())) {
    return archiver_->GetArcType();
  }
  return 0;
}

std::optional<std::string> clsMover::FindTitle(const std::string& title) const {
  const std::string wanted = platform::UpperCase(title);
  for (const ProfileIndexEntry& profile : ProfileIndex) {
    if (platform::UpperCase(profile.Title) == wanted) return profile.Title;
  }
  return std::nullopt;
}

void clsMover::FillFromProfile(const std::string& title) {
  clsPropItem& items = environment_.items;
  items.Title = title;
  ACTION = items.ACTION();
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : items.SMARTRENAME();
  EXTRACTTYPE = items.EXTRACTTYPE();
  SMARTMAKEDIR = items.SMARTMAKEDIR();
  OPENDIR = items.OPENDIR();
  EXTRACTTO = GetTargetPathByFolder(1, items.EXTRACTTO());
  MOVETO = GetTargetPathByFolder(2, items.MOVETO());
  COPYTO = GetTargetPathByFolder(4, items.COPYTO());
}

void clsMover::FillFromTestSettings() {
  const clsPropDefault& test = environment_.test;
  environment_.items.Title = LoadText(text_id::kNoProfile);
  ACTION = static_cast<std::int16_t>(StepKind::kExtract);
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : test.SMARTRENAME();
  EXTRACTTYPE = test.EXTRACTTYPE();
  SMARTMAKEDIR = test.SMARTMAKEDIR();
  OPENDIR = test.OPENDIR();
  EXTRACTTO = GetTargetPathByFolder(1, environment_.items.EXTRACTTO());
  MOVETO.clear();
  COPYTO.clear();
}

void clsMover::SetDefaultItemData() {
  const clsPropDefault& standard = environment_.standard;
  environment_.items.Title.clear();
  ACTION = standard.ACTION();
  EXTRACTTO = standard.EXTRACTTO();
  MOVETO = standard.MOVETO();
  COPYTO = standard.COPYTO();
  EXTRACTTYPE = standard.EXTRACTTYPE();
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : standard.SMARTRENAME();
}

void clsMover::AssumeDone(const std::vector<ActionStep>& steps) {
  for (const ActionStep& step : steps) {
    if (step.result != StepResult::kPlanned || step.kind == StepKind::kExtract) continue;
    assumed_taken_.insert(step.to);
    assumed_free_.erase(step.to);
    if (step.kind != StepKind::kMove) continue;
    assumed_free_.insert(ORIGINALPATH);
    assumed_taken_.erase(ORIGINALPATH);
  }
}

bool clsMover::NameIsTaken(const std::string& path) const {
  if (assumed_taken_.contains(path)) return true;
  return !assumed_free_.contains(path) && FileExists(path);
}

}  // namespace quendle
