// What Windows tells of open entries, as the rest of the room knows it.
#pragma once

#include "platform/entries/entry_status.h"
#include "platform/text/wide_win32.h"

namespace quendle::platform {

inline HANDLE HandleFrom(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

// 0 or an error as GetLastError has them.
DWORD StatusOfOpen(HANDLE entry, EntryStatus* status);

EntryTime TimeFrom(const LARGE_INTEGER& ticks);

// Since 1601 in units of 100 ns; 0, which leaves a time as it is, for one that Windows cannot have.
LARGE_INTEGER SystemTime(const EntryTime& time);

}  // namespace quendle::platform
