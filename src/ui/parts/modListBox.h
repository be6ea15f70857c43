// Searching lists.
#pragma once

#include <string>

class QAbstractItemModel;
class QListWidget;

namespace quendle {

// The row of the entry that is equal to `text` but for case, searched from behind `start` on to the end and then from the
// beginning; -1 when there is none.
//   "b", "A", "a" with "A" from -1 => 1, from 1 => 2, from 2 => 1
int FindListString(const QListWidget& list, const std::string& text, int start);

// The same in the first column of what a view shows.
int FindListString(const QAbstractItemModel& model, const std::string& text, int start);

}  // namespace quendle
