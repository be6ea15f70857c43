#include "core/clsMover.h"

#include <algorithm>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/profile_match.h"
#include "platform/known_folders.h"
#include "platform/paths.h"
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

platform::Result clsMover::SetTarget() {
  const std::string& path = CurrentCmdLineString();
  ORIGINALPATH = path;
  if (!environment_.file_info.SetFilename(path)) return environment_.file_info.LastFailure();
  // Without "." and ".." in it, so that comparing it with a destination means something.
  if (const std::string& real = environment_.file_info.pFilePathLong(); !real.empty()) ORIGINALPATH = real;
  DOESFOLDER = FolderExists(ORIGINALPATH);
  if (!IsAssumedGone(ORIGINALPATH)) return platform::Success();
  return Failure(platform::Code::kNotFound, ORIGINALPATH, "an earlier path of this run takes it away");
}

void clsMover::SetItemDataToArray() {
  clsPropItem& items = environment_.items;
  std::vector<std::string> titles;
  ProfileIndex.clear();
  repeated_titles_.clear();
  if (items.EnumSection(&titles) == 0) return;
  ProfileIndex.reserve(titles.size());
  items.EDITMODE = clsPropItem::kReadingAll;
  for (std::string& title : titles) {
    // Sorted without regard to case, and of several sections only the first is ever read.
    if (!ProfileIndex.empty() && EqualsIgnoringCase(ProfileIndex.back().Title, title)) {
      if (repeated_titles_.empty() || !EqualsIgnoringCase(repeated_titles_.back(), title)) {
        repeated_titles_.push_back(title);
      }
      continue;
    }
    items.Title = title;
    std::string pattern = items.pattern();
    Regex expression = ProfileRegex(pattern);
    ProfileIndex.push_back({std::move(title), std::move(pattern), std::move(expression)});
  }
  items.EDITMODE = clsPropItem::kNotEditing;
}

std::vector<std::string> clsMover::GetAccordantTitles() {
  const std::string subject = MatchSubject(environment_.file_info.pFileNameLong());
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

std::vector<std::string> clsMover::ProfileProblems() const {
  std::vector<std::string> problems;
  for (const ProfileIndexEntry& profile : ProfileIndex) {
    const std::string& error = profile.expression.Error();
    if (!error.empty())
      problems.push_back("profile " + profile.Title + ": its pattern cannot be used: " + error);
    environment_.items.Title = profile.Title;
    const std::string entries =
        EntryFilter(environment_.items.INCLUDE(), environment_.items.EXCLUDE()).Error();
    if (!entries.empty()) {
      problems.push_back("profile " + profile.Title +
                         ": a pattern of its Include or Exclude cannot be used: " + entries);
    }
  }
  environment_.items.Title.clear();
  for (const std::string& title : repeated_titles_) {
    problems.push_back("profile " + title + ": there are several of that name, and only the first is used");
  }
  return problems;
}

// Each property is read from the file as it is at that moment. An editor that saves in the midst of it, or a
// file that has gone, would mix this profile with the standard settings, whose folders are not meant for this
// target.
bool clsMover::FillFromProfile(const std::string& title, std::string* why) {
  if (!ProfileIsAsRead(title)) {
    *why = "the profile has been changed or removed, or cannot be read any more";
    return false;
  }
  *why = FillFromItems();
  if (!why->empty()) return false;
  if (ProfileIsAsRead(title)) return true;
  *why = "the profile is being changed";
  return false;
}

bool clsMover::ProfileIsAsRead(const std::string& title) const {
  clsPropItem& items = environment_.items;
  const auto profile =
      std::find_if(ProfileIndex.begin(), ProfileIndex.end(),
                   [&title](const ProfileIndexEntry& entry) { return entry.Title == title; });
  items.Title = title;
  if (profile == ProfileIndex.end() || items.pattern() != profile->Pattern) return false;
  if (!profile->Pattern.empty()) return true;
  // No pattern at all is what a missing section has too.
  std::vector<std::string> titles;
  items.EnumSection(&titles);
  return std::find(titles.begin(), titles.end(), title) != titles.end();
}

// Why what was read cannot be used; empty when it can.
std::string clsMover::FillFromItems() {
  const clsPropItem& items = environment_.items;
  ACTION = items.ACTION();
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : items.SMARTRENAME();
  EXTRACTTYPE = items.EXTRACTTYPE();
  SMARTMAKEDIR = items.SMARTMAKEDIR();
  OPENDIR = items.OPENDIR();
  EXTRACTTO = items.EXTRACTTO();
  MOVETO = items.MOVETO();
  COPYTO = items.COPYTO();
  if (MayBeCut(EXTRACTTO) || MayBeCut(MOVETO) || MayBeCut(COPYTO)) {
    return "a folder of the profile is too long to be read whole";
  }
  const bool extracts = (ACTION & static_cast<std::int16_t>(StepKind::kExtract)) != 0;
  if (extracts && (MayBeCut(items.INCLUDE()) || MayBeCut(items.EXCLUDE()))) {
    return "Include or Exclude of the profile is too long to be read whole";
  }
  EXTRACTTO = GetTargetPathByFolder(1, EXTRACTTO);
  MOVETO = GetTargetPathByFolder(2, MOVETO);
  COPYTO = GetTargetPathByFolder(4, COPYTO);
  return "";
}

bool clsMover::FillFromTestSettings(std::string* why) {
  const clsPropDefault& test = environment_.test;
  if (MayBeCut(test.EXTRACTTO())) {
    *why = "the folder of the test settings is too long to be read whole";
    return false;
  }
  environment_.items.Title = LoadText(text_id::kNoProfile);
  ACTION = static_cast<std::int16_t>(StepKind::kExtract);
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : test.SMARTRENAME();
  EXTRACTTYPE = test.EXTRACTTYPE();
  SMARTMAKEDIR = test.SMARTMAKEDIR();
  OPENDIR = test.OPENDIR();
  EXTRACTTO = GetTargetPathByFolder(1, environment_.items.EXTRACTTO());
  MOVETO.clear();
  COPYTO.clear();
  return true;
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
    const std::string to = platform::WithRealFolder(step.to);
    assumed_taken_[to] = ORIGINALPATH;
    assumed_free_.erase(to);
    if (step.kind != StepKind::kMove) continue;
    const std::string from = platform::WithRealFolder(ORIGINALPATH);
    assumed_free_.insert(from);
    assumed_taken_.erase(from);
  }
}

bool clsMover::NameIsTaken(const std::string& path) const {
  if (assumed_taken_.empty() && assumed_free_.empty()) return FileExists(path);  // not in a plan
  if (assumed_taken_.contains(platform::WithRealFolder(path))) return true;
  return !IsAssumedGone(path) && FileExists(path);
}

// With a folder goes all that is below it.
bool clsMover::IsAssumedGone(std::string path) const {
  if (assumed_free_.empty()) return false;
  path = platform::WithRealFolder(path);
  for (; !path.empty(); path = SplitPath(path).folder) {
    if (assumed_free_.contains(path)) return true;
  }
  return false;
}

}  // namespace quendle
