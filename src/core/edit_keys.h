// The keys that the editor shows in each of its uses, and what they are called.
#pragma once

#include <string>
#include <vector>

#include "core/edit_mode.h"
#include "resources/string_table.h"

namespace quendle {

// The captions of a key, with their mnemonics.
struct EditCaption {
  TextId key;
  TextId label;
  TextId tool_tip;
};

// In the order in which they are shown and written.
std::vector<TextId> KeysOfEditor(EditMode mode);
// A key that the editor never shows is a programming error.
const EditCaption& CaptionOf(TextId key);

// As messages call it: "解凍先(&X)：" => 解凍先
std::string KeyName(TextId key);
// A stored value as messages show it: "3" of Action => 解凍+移動
std::string ValueText(TextId key, const std::string& stored);

}  // namespace quendle
