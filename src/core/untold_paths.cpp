#include "core/untold_paths.h"

#include <algorithm>

#include "base/display.h"
#include "base/text.h"
#include "core/modMain.h"
#include "resources/string_table.h"

namespace quendle {
namespace {

constexpr std::size_t kMostLines = 10;
constexpr std::size_t kMostInLine = 2;

void AddPart(TextId text, const std::vector<std::string>& names, std::size_t count, std::string* message) {
  if (count == 0) return;
  if (!message->empty()) *message += "\r\n\r\n";
  *message += LoadText(text, {std::to_string(kMostPaths)}) + NameLines(names, count);
}

// What each of them is shown as, and how many more there are.
std::vector<std::string> Shown(const std::vector<std::string>& names, std::size_t count, std::size_t most) {
  std::vector<std::string> shown;
  for (std::size_t i = 0; i < std::min(names.size(), most); ++i) shown.push_back(ForDisplay(names[i]));
  if (shown.size() < count) {
    shown.push_back(LoadText(TextId::kMoreProblems, {std::to_string(count - shown.size())}));
  }
  return shown;
}

}  // namespace

std::string MessageOf(const UntoldPaths& untold) {
  std::string message;
  AddPart(TextId::kUntoldMissing, untold.missing, untold.missing.size(), &message);
  AddPart(TextId::kUntoldSurplus, untold.surplus, untold.surplus.size(), &message);
  AddPart(TextId::kUntoldLeft, untold.left.names, untold.left.count, &message);
  return message;
}

std::string LineOf(const platform::LeftPaths& left) {
  std::string line;
  for (const std::string& name : Shown(left.names, left.count, kMostInLine)) {
    line += (line.empty() ? "" : LoadText(TextId::kBetweenNames)) + name;
  }
  return LoadText(TextId::kUntoldLeftLine, {line});
}

std::string NameLines(const std::vector<std::string>& names, std::size_t count) {
  std::string lines;
  for (const std::string& name : Shown(names, count, kMostLines)) lines += "\r\n" + name;
  return lines;
}

}  // namespace quendle
