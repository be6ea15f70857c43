// A platform observer with preset answers that records what it was asked.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/moving/file_operation.h"

namespace quendle::test {

class ScriptedObserver : public platform::FileOperationObserver {
 public:
  // Given in turn; the last one holds on. Without any the answer is no.
  std::vector<Answer> answers;
  bool must_stay_responsive = false;
  // Called with each report, when set; false cancels.
  std::function<bool(const platform::FileProgress&)> on_progress;

  std::vector<std::string> asked;  // the existing files
  platform::FileSide incoming;     // of the last question
  platform::FileProgress last;
  std::size_t reports = 0;

  bool MustStayResponsive() const override { return must_stay_responsive; }
  bool OnProgress(const platform::FileProgress& progress) override {
    ++reports;
    last = progress;
    return !on_progress || on_progress(progress);
  }

  Answer OnOverwrite(const platform::FileSide& existing, const platform::FileSide& arriving) override {
    asked.push_back(existing.path);
    incoming = arriving;
    if (answers.empty()) return Answer::kNo;
    return asked.size() <= answers.size() ? answers[asked.size() - 1] : answers.back();
  }
};

}  // namespace quendle::test
