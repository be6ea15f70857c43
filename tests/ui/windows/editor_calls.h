// What stands in for the editor and for the question for a title in tests of the windows that open them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/edit_mode.h"
#include "ui/messages/modMsgBox.h"

namespace quendle::test {

inline std::string EditorCall(EditMode mode, const std::string& title) {
  static const std::map<EditMode, std::string> names = {{EditMode::kProfile, "profile"},
                                                        {EditMode::kNew, "new"},
                                                        {EditMode::kStandard, "standard"},
                                                        {EditMode::kTest, "test"},
                                                        {EditMode::kGeneral, "general"}};
  return names.at(mode) + "|" + title;
}

struct TypedTitles {
  std::vector<std::string> typed;  // in turn; nothing afterwards
  std::vector<std::string> proposed;

  InputFunction Answering() {
    return [this](const std::string&, const std::string&, const std::string& text) {
      proposed.push_back(text);
      if (typed.empty()) return std::string();
      std::string next = typed.front();
      typed.erase(typed.begin());
      return next;
    };
  }
};

}  // namespace quendle::test
