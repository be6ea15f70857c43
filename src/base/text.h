// Look-up in the string table.
#pragma once

#include <string>
#include <vector>

#include "resources/string_table.h"

namespace quendle {

//   TextId::kItemsFile => "items.ini"
std::string LoadText(TextId id);

// The same with "%1", "%2" ... replaced. Those without a value stay.
//   TextId::kStepFailed, {"コピー"} => "コピーできませんでした"
std::string LoadText(TextId id, const std::vector<std::string>& values);

}  // namespace quendle
