// Extracting: the calls over one archive, done in one pass over its entries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archive/modules/common/dialect.h"
#include "archive/modules/common/listing.h"
#include "archive/modules/common/session.h"

namespace quendle::modules {

// One call: what it asks for, what became of it. An entry's line goes to the log of the call that asked for it.
struct Call {
  Request request;
  std::vector<std::string> names;  // comparable; with an empty request.response_file every entry
  std::vector<std::string> log;    // lines without line breaks
  bool failed = false;
};

// Beyond them the user is asked whether the archive is meant to fill the disk.
struct Limits {
  std::size_t entries = 1'000'000;
  std::uint64_t bytes = 1U << 30;  // from here on the ratio counts
  std::uint64_t ratio = 200;       // of what comes out to the size of the archive
};

// Extracts what the calls ask for; their archive is `archive` and their folders exist. What one engine cannot
// read is tried with the next before it fails. Refused, damaged, encrypted and missing entries are in the log
// and reported to the session, and make their call fail; all others are extracted. Only what concerns every
// entry ends the pass: a cancel, and a disk that takes no more.
void Extract(const OpenedArchive& archive, const Limits& limits, Session* session, std::vector<Call>* calls);

}  // namespace quendle::modules
