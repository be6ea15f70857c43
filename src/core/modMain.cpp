#include "core/modMain.h"

#include <algorithm>
#include <utility>

#include "base/modString.h"
#include "platform/ini/profile_document.h"
#include "platform/services/known_folders.h"
#include "platform/text/code_page.h"
#include "resources/version.h"

namespace quendle {
namespace {

std::vector<std::string> Arguments(const std::vector<std::string>& paths) {
  std::vector<std::string> arguments = {""};
  arguments.insert(arguments.end(), paths.begin(), paths.end());
  return arguments;
}

std::string Describe(const platform::Result& failure) {
  return failure.path + ": " + Sentence(failure.reason, Language::kEnglish);
}

}  // namespace

std::string GetVersionString() {
  return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
         std::to_string(kVersionRevision);
}

bool WantsConfirmation(const SettingsValues& standard, const std::function<bool()>& is_ctrl_down) {
  if (standard.Flag(TextId::kConfirmAlways)) return true;
  return standard.Flag(TextId::kKeyCheck) && is_ctrl_down();
}

Globals::Globals(const SettingsFolders& folders, bool create_files, UserInterface& user,
                 const std::string& module_folder, const std::vector<std::string>& paths,
                 std::vector<std::string> passwords)
    : folders_(folders), user_(user), module_folder_(module_folder), passwords_(std::move(passwords)) {
  g_FileInfo = std::make_unique<clsFileInfo>();
  g_PropItem = std::make_unique<clsPropItem>(
      folders.application,
      clsPropItem::Fallbacks{[this]() -> const clsPropDefault& { return *g_PropDefault; },
                             [this]() -> const clsPropDefault& { return *g_PropTest; },
                             [this] { return g_FileInfo->pFileNameNoExt(); }});
  g_PropDefault = std::make_unique<clsPropDefault>(folders, create_files);
  g_PropDefault->SetMode(clsPropDefault::kStandard);
  g_PropTest = std::make_unique<clsPropDefault>(folders, false);  // its file was made with the other
  g_PropTest->SetMode(clsPropDefault::kTestMode);
  if (!paths.empty()) BeginRun(paths);
}

void Globals::BeginRun(const std::vector<std::string>& paths) {
  auto archiver = std::make_unique<clsArchiver>(
      clsArchiver::Environment{user_,
                               [this]() -> clsOutput& { return *g_Output; },
                               module_folder_,
                               {g_PropDefault->FileName(), g_PropItem->FileName(), g_PropTest->FileName(),
                                platform::ExecutablePath(), module_folder_},
                               passwords_});
  g_RunSettings = std::make_unique<RunSettings>(folders_);
  g_Mover = std::make_unique<clsMover>(clsMover::Environment{*g_FileInfo, *g_RunSettings, user_},
                                       std::move(archiver), Arguments(paths));
  g_Output = std::make_unique<clsOutput>(user_);
  g_Output->SHOWRESULT = g_Mover->Settings().Standard().Flag(TextId::kShowResult);
}

void Globals::EndRun() {
  g_Mover.reset();
  g_Output.reset();
  g_RunSettings.reset();
  g_FileInfo->Class_Initialize();  // no file is at hand any more: the editor is to ask for one
}

// Handed on to another constructor, so that a run whose beginning throws ends, too.
RunScope::RunScope(Globals& globals, const std::vector<std::string>& paths) : RunScope(globals) {
  globals_.BeginRun(paths);
}

void Globals::EndProgram() {
  g_FileInfo.reset();
  g_PropItem.reset();
  g_PropDefault.reset();
  g_PropTest.reset();
  g_Mover.reset();
  g_Output.reset();
  g_RunSettings.reset();
}

std::string FindModuleFolder() {
  const std::string program = AddBackslash(platform::ExecutableFolder());
  if (program.empty()) return "";
  if (FolderExists(program + "modules")) return program + "modules";
  const std::string installed = SplitPath(RemoveBackslash(program)).folder;
  return AddBackslash(installed) + "lib" + Separator(kHostStyle) + "quendle" + Separator(kHostStyle) +
         "modules";
}

std::vector<std::string> SettingsWarnings(const Globals& globals) {
  std::vector<std::string> warnings;
  const platform::Result& creation = globals.g_PropDefault->CreationFailure();
  if (!creation.ok()) warnings.push_back(Describe(creation) + ": the settings files could not be made");
  std::shared_ptr<const SettingsSnapshot> settings;
  // A run has read them already, and of ten thousand profiles there should be one snapshot only.
  RunSettings fresh(globals.g_PropDefault->Folders());
  RunSettings& reader = globals.g_RunSettings ? *globals.g_RunSettings : fresh;
  if (!reader.Read(&settings).ok()) return warnings;
  const std::string& items = globals.g_PropItem->FileName();
  if (settings->files().items == nullptr) {
    warnings.push_back(items + ": there is no such file, and so there are no profiles");
  } else if (const Reason& problem = settings->files().items->SectionProblem(); !problem.empty()) {
    warnings.push_back(items + ": " + Sentence(problem, Language::kEnglish));
  } else if (settings->Titles().empty()) {
    warnings.push_back(items + ": there are no profiles in it");
  }
  const std::string charset = settings->Standard().Text(TextId::kArchiveCharset);
  if (!charset.empty() && !platform::TextFromEncoding("", charset)) {
    warnings.push_back(globals.g_PropDefault->FileName() +
                       ": ArchiveCharset is no known encoding: " + charset);
  }
  return warnings;
}

}  // namespace quendle
