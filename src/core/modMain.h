// The objects of a run: who makes them, in which order, and what they start with.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "archive/clsOutput.h"
#include "base/user_interface.h"
#include "core/clsMover.h"
#include "settings/clsPropItem.h"

namespace quendle {

// How many paths a run with windows takes.
inline constexpr int kMostPaths = 10;

// Major, minor and revision joined by ".".
std::string GetVersionString();

// Must each file be confirmed? Always when CONFIRMALWAYS is on; else, when KEYCHECK is on, if the Ctrl key is
// down, which is only asked then.
bool WantsConfirmation(const SettingsValues& standard, const std::function<bool()>& is_ctrl_down);

// The process-wide objects, made and released in the order in which they are declared.
class Globals {
 public:
  // `paths` as the user gave them. `create_files`: make missing settings files (a dry run does not).
  // `module_folder` holds the archiver libraries. `passwords` are tried for archives before the user is asked.
  Globals(const SettingsFolders& folders, bool create_files, UserInterface& user,
          const std::string& module_folder, const std::vector<std::string>& paths,
          std::vector<std::string> passwords = {});
  ~Globals() { EndProgram(); }
  Globals(const Globals&) = delete;
  Globals& operator=(const Globals&) = delete;

  void EndProgram();

  // A run over these paths: makes the dispatcher and the log anew. Without paths there are none of the two.
  void BeginRun(const std::vector<std::string>& paths);
  void EndRun();

  std::unique_ptr<clsFileInfo> g_FileInfo;
  std::unique_ptr<clsPropItem> g_PropItem;        // items.ini
  std::unique_ptr<clsPropDefault> g_PropDefault;  // mover.ini
  std::unique_ptr<clsPropDefault> g_PropTest;     // test.ini
  std::unique_ptr<RunSettings> g_RunSettings;     // what the run has read of all three
  std::unique_ptr<clsMover> g_Mover;
  std::unique_ptr<clsOutput> g_Output;  // the log of an extraction

 private:
  SettingsFolders folders_;
  UserInterface& user_;
  std::string module_folder_;
  std::vector<std::string> passwords_;
};

// A run that ends with this object, also when something throws.
class RunScope {
 public:
  RunScope(Globals& globals, const std::vector<std::string>& paths);
  ~RunScope() { globals_.EndRun(); }
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;

 private:
  explicit RunScope(Globals& globals) : globals_(globals) {}

  Globals& globals_;
};

// Where the archiver libraries and the windows come from: the folder "modules" beside the program, when there is one, else
// ../lib/quendle/modules from there.
std::string FindModuleFolder();

// What the user should know about the settings before the run: files that could not be made, or whose sections cannot be
// told surely, and that there are no profiles. One line each. Files that cannot be read are told at each path.
std::vector<std::string> SettingsWarnings(const Globals& globals);

}  // namespace quendle
