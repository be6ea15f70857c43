#include "core/clsMover.h"

#include <algorithm>
#include <utility>

#include "base/modString.h"
#include "base/modSystem.h"
#include "base/text.h"
#include "core/profile_match.h"
#include "core/profile_problem.h"
#include "platform/entries/paths.h"
#include "platform/text/unicode.h"
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
  operation_.pExactPath(true);
  operation_.pAllowUndo(false);
  operation_.pConfirmMakeDir(false);
  operation_.pRenameOnCollision(false);
  operation_.pRespondDialog(false);
  operation_.pShowProgress(true);
  operation_.pSimpleProgress(false);
  snapshot_ = std::make_shared<const SettingsSnapshot>(SettingsSnapshot::Files(), "");
  (void)SetItemDataToArray();  // who dispatches asks again, and is told
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
  if (platform::Result read = ReadKind(); !read.ok()) return read;
  if (!IsAssumedGone(ORIGINALPATH)) return platform::Success();
  return Failure(platform::Code::kNotFound, ORIGINALPATH, why::kTakenEarlier);
}

// A link to a folder counts as one, and a link that leads nowhere as a file.
platform::Result clsMover::ReadKind() {
  platform::EntryStatus target = environment_.file_info.Status();
  platform::Result read;
  if (target.is_link()) read = platform::ReadTargetStatus(ORIGINALPATH, &target);
  if (read.code == platform::Code::kNotFound || read.code == platform::Code::kNotFolder)
    read = platform::Success();
  DOESFOLDER = read.ok() && target.is_folder();
  return read;
}

platform::Result clsMover::SetItemDataToArray() {
  const std::shared_ptr<const SettingsSnapshot> before = snapshot_;
  platform::Result read = environment_.settings.Read(&snapshot_);
  if (read.ok() && snapshot_ != before) ReadIndex();
  return read;
}

void clsMover::ReadIndex() {
  ProfileIndex.clear();
  ProfileIndex.reserve(snapshot_->Titles().size());
  for (const std::string& title : snapshot_->Titles()) {
    std::string pattern = snapshot_->Profile(title)->Text(TextId::kPattern);
    Regex expression = ProfileRegex(pattern);
    ProfileIndex.push_back({title, std::move(pattern), std::move(expression)});
  }
}

std::vector<std::string> clsMover::GetAccordantTitles() {
  const std::string subject = MatchSubject(environment_.file_info.pFileNameLong());
  std::vector<std::string> titles = {"", LoadText(TextId::kNoProfile)};
  for (const ProfileIndexEntry& profile : ProfileIndex) {
    if (profile.expression.MatchWhole(subject) == RegexAnswer::kWhole) titles.push_back(profile.Title);
  }
  matches_.assign(titles.begin() + 2, titles.end());
  if (matches_.empty()) {
    for (const ProfileIndexEntry& profile : ProfileIndex) titles.push_back(profile.Title);
  }
  ARCHIVETYPE = DetectArchiveType();
  return titles;
}

std::int16_t clsMover::DetectArchiveType() {
  archiver_->pFileName = ORIGINALPATH;
  is_type_unknown_ = false;
  if (DOESFOLDER) return 0;
  if (!snapshot_->Standard().Flag(TextId::kCheckArchive) &&
      !HasArchiveExtension(environment_.file_info.pFileNameExtension())) {
    return 0;
  }
  const std::int16_t type = archiver_->GetArcType();
  is_type_unknown_ = archiver_->IsTypeUnknown();
  return type;
}

std::optional<std::string> clsMover::FindTitle(const std::string& title) const {
  const std::string wanted = platform::UpperCase(title);
  for (const ProfileIndexEntry& profile : ProfileIndex) {
    if (platform::UpperCase(profile.Title) == wanted) return profile.Title;
  }
  return std::nullopt;
}

bool clsMover::SettingsHold(const std::string& title) const {
  std::shared_ptr<const SettingsSnapshot> now;
  if (!environment_.settings.Read(&now).ok()) return false;
  return now == snapshot_ || SameValues(*snapshot_, *now, title);
}

bool clsMover::FillFromProfile(const std::string& title, Reason* why) {
  const std::optional<ProfileValues> profile = snapshot_->Profile(title);
  *why = profile ? ProfileProblem(title, *snapshot_) : why::kProfileGone;
  if (!why->empty()) return false;
  FillFrom(*profile);
  return true;
}

void clsMover::FillFrom(const ProfileValues& profile) {
  ACTION = profile.Number(TextId::kAction);
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : profile.Number(TextId::kSmartRename);
  EXTRACTTYPE = profile.Number(TextId::kExtractType);
  SMARTMAKEDIR = profile.Flag(TextId::kSmartMakeDir);
  OPENDIR = profile.Flag(TextId::kOpenDir);
  INCLUDE = profile.Text(TextId::kInclude);
  EXCLUDE = profile.Text(TextId::kExclude);
  OPENFILE = profile.Text(TextId::kOpenFile);
  MOVEINTO = profile.Text(TextId::kMoveTo);
  COPYINTO = profile.Text(TextId::kCopyTo);
  EXTRACTTO = GetTargetPathByFolder(StepKind::kExtract, profile.Text(TextId::kExtractTo));
  MOVETO = GetTargetPathByFolder(StepKind::kMove, MOVEINTO);
  COPYTO = GetTargetPathByFolder(StepKind::kCopy, COPYINTO);
}

bool clsMover::FillFromTestSettings(Reason* why) {
  const SettingsValues& test = snapshot_->Test();
  *why = FolderProblem(why::kFolderOfTest, test.Text(TextId::kExtractTo), snapshot_->files().test);
  if (!why->empty()) return false;
  SetDefaultItemData();
  ACTION = WithStep(kNoSteps, StepKind::kExtract);
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : test.Number(TextId::kSmartRename);
  EXTRACTTYPE = test.Number(TextId::kExtractType);
  SMARTMAKEDIR = test.Flag(TextId::kSmartMakeDir);
  OPENDIR = test.Flag(TextId::kOpenDir);
  const std::string folder =
      AddBackslash(test.Text(TextId::kExtractTo)) + environment_.file_info.pFileNameNoExt();
  EXTRACTTO = GetTargetPathByFolder(StepKind::kExtract, folder.empty() ? EXTRACTTO : folder);
  for (std::string* path : {&MOVETO, &COPYTO, &MOVEINTO, &COPYINTO}) path->clear();
  return true;
}

void clsMover::SetDefaultItemData() {
  const SettingsValues& standard = snapshot_->Standard();
  ACTION = standard.Number(TextId::kAction);
  EXTRACTTO = standard.Text(TextId::kExtractTo);
  MOVETO = MOVEINTO = standard.Text(TextId::kMoveTo);
  COPYTO = COPYINTO = standard.Text(TextId::kCopyTo);
  EXTRACTTYPE = standard.Number(TextId::kExtractType);
  SMARTRENAME = DOESFOLDER ? std::int16_t{1} : standard.Number(TextId::kSmartRename);
  for (std::string* patterns : {&INCLUDE, &EXCLUDE, &OPENFILE}) patterns->clear();
}

std::vector<std::string> clsMover::ProfileProblems(bool also_idle) const {
  std::vector<std::string> problems;
  for (const ProfileIndexEntry& entry : ProfileIndex) {
    const auto tell = [&](const Reason& problem) {
      if (problem.empty()) return;
      problems.push_back(Sentence(why::kInProfile(entry.Title, problem), Language::kEnglish));
    };
    if (const Reason error = entry.expression.Error(); !error.empty()) tell(why::kPatternUnusable(error));
    const ProfileValues profile = *snapshot_->Profile(entry.Title);
    const Reason refusal = ProfileProblem(entry.Title, *snapshot_);
    const auto told = told_.find(entry.Title);
    if (told == told_.end() || told->second != refusal) tell(refusal);
    tell(EntryPatternProblem(profile));
    if (also_idle) tell(IdleKeys(profile));
  }
  for (const std::string& title : snapshot_->RepeatedTitles()) {
    problems.push_back("profile " + title + ": there are several of that name, and only the first is used");
  }
  return problems;
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
