// A dispatcher over settings and files of a test.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/clsMover.h"
#include "support/scripted_user.h"
#include "support/settings.h"

namespace quendle::test {

// Answers for the archiver libraries, and records what it was asked to do.
class ScriptedArchiver : public clsArchiver {
 public:
  using clsArchiver::clsArchiver;
  std::int16_t GetArcType() override {
    ++asked_type;
    return type;
  }
  bool mExtractArchive(const std::string& destination) override {
    if (throws) throw std::runtime_error("scripted");
    extracted.push_back(pFileName + " to " + destination);
    report_ = plan;
    if (!succeeds) report_.problems.push_back({"a.txt", Reason("scripted")});
    return succeeds;
  }
  ExtractionReport PlanExtraction(const std::string&, bool) override { return plan; }

  std::int16_t type = 0;
  bool succeeds = true;
  bool throws = false;
  ExtractionReport plan;
  int asked_type = 0;
  std::vector<std::string> extracted;
};

class Run {
 public:
  Run(const std::string& items, const std::string& standard_text, std::vector<std::string> paths)
      : settings(items, standard_text, "[General]\nExtractTo=" + Rooted("/test") + "\n"),
        run_settings(settings.standard.Folders()) {
    paths.insert(paths.begin(), "");
    auto owned = std::make_unique<ScriptedArchiver>(clsArchiver::Environment{user, nullptr, ""});
    archiver = owned.get();
    mover = std::make_unique<clsMover>(clsMover::Environment{file_info, run_settings, user}, std::move(owned),
                                       std::move(paths));
    mover->CMDLINECURRENT = 1;
  }

  Settings settings;
  RunSettings run_settings;
  clsFileInfo file_info;
  ScriptedUser user;
  ScriptedArchiver* archiver;  // the dispatcher's
  std::unique_ptr<clsMover> mover;
};

}  // namespace quendle::test
