// What the windows say: texts of the string table, and sentences of reasons.
#pragma once

#include <string>
#include <vector>

#include "reasons/reason.h"
#include "resources/string_table.h"

namespace quendle {

//   TextId::kItemsFile => "items.ini"
std::string LoadText(TextId id);

// The same with "%1", "%2" ... replaced. Those without a value stay.
//   TextId::kStepFailed, {"コピー"} => "コピーできませんでした"
std::string LoadText(TextId id, const std::vector<std::string>& values);

// The sentence of a reason, in the language that these texts are in.
//   why::kThereAlready => "すでにそこにあります"
std::string LoadText(const Reason& reason);

}  // namespace quendle
