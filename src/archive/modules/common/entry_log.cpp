#include "archive/modules/common/entry_log.h"

#include <utility>

#include "archive/modules/common/response_file.h"

namespace quendle::modules {

void EntryLog::Add(Call* call, std::string line) {
  Tell({call, "", std::move(line), {}, false});
}

void EntryLog::Fail(Call* call, const std::string& entry, const Reason& reason) {
  Tell({call, entry, "", reason, false});
}

void EntryLog::Await(Call* call, const std::string& entry, std::string line) {
  lines_.push_back({call, entry, std::move(line), {}, true});
}

void EntryLog::Settle(const platform::Result& written) {
  lines_.front().is_awaited = false;
  lines_.front().reason = written.reason;
  for (; !lines_.empty() && !lines_.front().is_awaited; lines_.pop_front()) Write(lines_.front());
}

void EntryLog::Tell(Line line) {
  if (lines_.empty()) return Write(line);
  lines_.push_back(std::move(line));
}

void EntryLog::Write(const Line& line) const {
  if (line.reason.empty()) {
    line.call->log.push_back(line.text);
    return;
  }
  const std::string entry = line.entry.empty() ? "" : ListedName(line.entry);
  line.call->failed = true;
  line.call->log.push_back("failed     " + (entry.empty() ? "" : entry + ": ") +
                           Sentence(line.reason, Language::kEnglish));
  session_.Problem(entry, line.reason);
}

}  // namespace quendle::modules
