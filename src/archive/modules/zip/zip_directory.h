// The central directory of a ZIP archive: what is in it and where.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "archive/modules/common/archive_input.h"
#include "archive/modules/zip/zip_bytes.h"
#include "archive/modules/zip/zip_entry.h"
#include "reasons/result.h"

namespace quendle::modules {

struct ZipDirectory {
  std::uint64_t position = 0;     // contents end here at the latest
  std::vector<ZipEntry> entries;  // by the positions of their local headers
  Reason problem;                 // why there may be more than the entries; empty: these are all
};

// Reads the directory of an archive that begins where the input does, or whose positions count as if it did.
// Where there is none, or it contradicts the archive, the local headers are gone through (zip_recovery.h).
//
// Fails with the path of the archive: kRefused when entries share bytes with each other or with the directory,
// since such an archive unpacks to more than it can hold; else when nothing of it can be read.
platform::Result ReadZipDirectory(const ArchiveInput& input, ZipDirectory* directory);

// Is each entry described alike by its local header, and in the place that the directory says?
bool LocalHeadersAgree(const ArchiveInput& input, const ZipDirectory& directory);

// Why `local`, which begins where the local header of `entry` should, is not that: there is none, it has another
// checksum, or no checksum holds and it has another method. Nothing when it may be.
std::optional<Reason> WhyNotHeaderOf(const ZipEntry& entry, std::string_view local);
bool HasMethodOf(const ZipEntry& entry, std::string_view local);

// Fails for that. `*content` is where the content begins.
platform::Result CheckLocalHeader(const ArchiveInput& input, const ZipEntry& entry, std::uint64_t* content);

// Appends the entries whose headers stand one behind the other from `begin` on and before `end`; `*behind` is the
// first byte behind them. Positions are as if the archive began where the input does.
platform::Result ReadZipHeaders(const ArchiveInput& input, std::uint64_t begin, std::uint64_t end,
                                std::vector<ZipEntry>* entries, std::uint64_t* behind);

// How much memory the entries of one archive may take, and what this one takes: beyond it a directory is refused.
inline constexpr std::uint64_t kMostZipMemory = 512U << 20;
std::uint64_t MemoryOf(const ZipEntry& entry);

}  // namespace quendle::modules
