// The keys that the editor shows in each of its uses, and what they are called.
#pragma once

#include <string>
#include <vector>

#include "core/edit_mode.h"

namespace quendle {

struct EditKey {
  enum class Kind { kText, kFolder, kFlag, kNumber };
  int key;  // identifier of its name in the string table
  Kind kind;
  int label;     // identifier of the caption, with its mnemonic
  int tool_tip;  // likewise
  int lowest = 0;
  int highest = 0;
  int missing_in_profile = 0;  // what a number or flag that is not there reads as
  int missing_in_settings = 0;
  bool is_behaviour = false;  // a profile without settings of its own inherits it
};

// In the order in which they are shown and written. A key that the editor never shows is a programming error.
const std::vector<int>& KeysOfEditor(EditMode mode);
const EditKey& RuleOf(int key);

// As messages call it: "解凍先(&X)：" => 解凍先
std::string KeyName(int key);
// A stored value as messages show it: "3" of Action => 解凍+移動
std::string ValueText(int key, const std::string& stored);

}  // namespace quendle
