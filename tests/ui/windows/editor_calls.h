// What a window has opened the editor for, for tests that stand in for it.
#pragma once

#include <map>
#include <string>

#include "core/edit_mode.h"

namespace quendle::test {

inline std::string EditorCall(EditMode mode, const std::string& title) {
  static const std::map<EditMode, std::string> names = {{EditMode::kProfile, "profile"},
                                                        {EditMode::kNew, "new"},
                                                        {EditMode::kStandard, "standard"},
                                                        {EditMode::kTest, "test"},
                                                        {EditMode::kGeneral, "general"}};
  return names.at(mode) + "|" + title;
}

}  // namespace quendle::test
