// The keys that the editor shows in each of its uses, and what they are called.
#pragma once

#include <string>
#include <vector>

#include "core/edit_mode.h"

namespace quendle {

// The captions of a key, with their mnemonics; identifiers.
struct EditCaption {
  int key;
  int label;
  int tool_tip;
};

// In the order in which they are shown and written.
std::vector<int> KeysOfEditor(EditMode mode);
// A key that the editor never shows is a programming error.
const EditCaption& CaptionOf(int key);

// As messages call it: "解凍先(&X)：" => 解凍先
std::string KeyName(int key);
// A stored value as messages show it: "3" of Action => 解凍+移動
std::string ValueText(int key, const std::string& stored);

}  // namespace quendle
