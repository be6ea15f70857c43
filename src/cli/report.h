// What became of a path, as a line for people or as a JSON object for programs.
#pragma once

#include <string>
#include <vector>

#include "core/dispatch.h"

namespace quendle {

// One line without its line break, beginning with planned, done, failed, ambiguous, unmatched or missing:
//   done       /in/report.txt [Texts] copy to /backup/report.txt; move to /texts/report_20031107.txt
// An extraction says how many of the entries it takes and which files it replaces, as in "(12 of 14 entries, no
// doubled folder, replacing 2: a.txt, s/b.txt)". A step that was not done carries its result in brackets. Names are
// shown as by ForDisplay.
std::string TextLine(const DispatchReport& report);

// Why each step that was not done was not, one line each with the path and the step; empty when there is
// nothing to say.
std::vector<std::string> ProblemLines(const DispatchReport& report);

// One JSON object without a line break. Keys: path, name, archive, matches, profile, steps (step, to, result
// and, when there is one, error; for an extraction also entries (chosen, all), folders, doubled_folder_avoided
// and replaces (null, or count, perhaps, asked and files)), result, error (when there is one); "escaped": true when
// bytes of a path that are not UTF-8 are written as \xNN and backslashes as \\ in all paths.
std::string JsonLine(const DispatchReport& report);

}  // namespace quendle
