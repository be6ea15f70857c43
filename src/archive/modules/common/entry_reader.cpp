#include "archive/modules/common/entry_reader.h"

#include <utility>

namespace quendle::modules {

bool GiveWhole(Entry entry, ContentBuffer content, EntrySink* sink) {
  if (!sink->Begin(std::move(entry), true)) return false;
  const auto wish = sink->Whole(std::move(content));
  if (wish != EntrySink::Wish::kMore) return wish == EntrySink::Wish::kSkip;
  return sink->End(ReadStatus::kEnd, {});
}

bool EntryReader::GiveCurrent(Entry entry, bool is_wanted, EntrySink* sink) {
  if (!sink->Begin(std::move(entry), is_wanted)) return false;
  if (!is_wanted) return true;
  std::string_view piece;
  ReadStatus status = ReadStatus::kOk;
  while ((status = ReadContent(&piece)) == ReadStatus::kOk) {
    const EntrySink::Wish wish = sink->Content(piece);
    if (wish != EntrySink::Wish::kMore) return wish == EntrySink::Wish::kSkip;
  }
  return sink->End(status, status == ReadStatus::kEnd ? Reason() : Problem());
}

ReadStatus EntryReader::Unpack(EntrySink* sink) {
  Entry entry;
  ReadStatus status = ReadStatus::kOk;
  while ((status = NextEntry(&entry)) == ReadStatus::kOk) {
    const bool is_wanted = sink->Wants(entry);
    if (!GiveCurrent(std::move(entry), is_wanted, sink)) return ReadStatus::kEnd;
  }
  return status;
}

}  // namespace quendle::modules
