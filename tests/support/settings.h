// Settings files for a test, and the settings objects over them.
#pragma once

#include <string>

#include "settings/clsPropDefault.h"
#include "settings/clsPropItem.h"
#include "support/temp_folder.h"

namespace quendle::test {

class Settings {
 public:
  // The texts are what items.ini, mover.ini and test.ini hold ("\n" between lines); empty means no such file.
  explicit Settings(const std::string& items, const std::string& standard_text = "",
                    const std::string& test_text = "")
      : standard(Write("mover.ini", standard_text), false),
        test(Write("test.ini", test_text), false),
        profiles(Write("items.ini", items).application,
                 {[this]() -> const clsPropDefault& { return standard; },
                  [this]() -> const clsPropDefault& { return test; }, [] { return std::string("data"); }}) {
    test.SetMode(clsPropDefault::kTestMode);
  }

  TempFolder folder;
  clsPropDefault standard;
  clsPropDefault test;
  clsPropItem profiles;

 private:
  SettingsFolders Write(const std::string& name, const std::string& text) const {
    if (!text.empty()) WriteFile(folder / name, text);
    return {folder.path(), "/standard"};
  }
};

}  // namespace quendle::test
