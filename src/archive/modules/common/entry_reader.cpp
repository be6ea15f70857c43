#include "archive/modules/common/entry_reader.h"

#include <utility>

namespace quendle::modules {

ReadStatus EntryReader::Unpack(EntrySink* sink) {
  Entry entry;
  ReadStatus status;
  while ((status = NextEntry(&entry)) == ReadStatus::kOk) {
    const bool is_wanted = sink->Wants(entry);
    if (!sink->Begin(std::move(entry), is_wanted)) return ReadStatus::kEnd;
    auto wish = is_wanted ? EntrySink::Wish::kMore : EntrySink::Wish::kSkip;
    std::string_view piece;
    while (wish == EntrySink::Wish::kMore && (status = ReadContent(&piece)) == ReadStatus::kOk) {
      wish = sink->Content(piece);
    }
    if (wish == EntrySink::Wish::kStop) return ReadStatus::kEnd;
    const bool is_whole = status == ReadStatus::kEnd;
    if (wish == EntrySink::Wish::kMore && !sink->End(status, is_whole ? Reason() : Problem()))
      return ReadStatus::kEnd;
  }
  return status;
}

}  // namespace quendle::modules
