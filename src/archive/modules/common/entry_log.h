// The lines of the logs of calls, in the order of the entries although some files are still being written.
#pragma once

#include <deque>
#include <string>

#include "archive/modules/common/extraction.h"
#include "archive/modules/common/session.h"
#include "reasons/result.h"

namespace quendle::modules {

class EntryLog {
 public:
  explicit EntryLog(const Session* session) : session_(*session) {}

  // Adds a line to the call's log.
  void Add(Call* call, std::string line);

  // Makes the call failed and tells the session. `entry` is empty for what concerns no single one.
  void Fail(Call* call, const std::string& entry, const Reason& reason);

  // The same as either, once it is known how the writing of that entry has ended. What comes later waits for it.
  void Await(Call* call, const std::string& entry, std::string line);
  // Ends the first that waits.
  void Settle(const platform::Result& written);

  // Of what waits nothing more will be known.
  void Forget() { lines_.clear(); }

 private:
  struct Line {
    Call* call;
    std::string entry;
    std::string text;  // unless there is a reason
    Reason reason;
    bool is_awaited;
  };

  void Tell(Line line);
  void Write(const Line& line) const;

  const Session& session_;
  std::deque<Line> lines_;  // that wait, and those behind them
};

}  // namespace quendle::modules
