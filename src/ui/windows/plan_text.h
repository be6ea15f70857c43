// The line of the action window that says what OK will do.
#pragma once

#include <string>
#include <vector>

#include "core/clsMover.h"

namespace quendle {

// A line in the parts of which it consists, in this order; the path in the middle is the one to be shortened
// where there is too little room.
struct PlanLine {
  std::string lead;
  std::string path;
  std::string note;
  bool fails = false;  // what it says would not be done
  std::vector<std::string> replaced =
      {};  // the first files that it would replace, and how many more there are

  std::string Whole() const { return lead + path + note; }
};

// One line for each step, or one that says that nothing is to be done, in the language of the windows; names
// as by ForDisplay.
//   => "移動 → /texts/report_20031107.txt"
std::vector<PlanLine> PlanLines(const std::vector<ActionStep>& steps);

// A reason in the language of the windows, which may be of several lines, as one of a plan.
std::string ReasonInOneLine(std::string reason);

}  // namespace quendle
