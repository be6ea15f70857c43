// Extracting: the calls over one archive, done in one pass over its entries.
#pragma once

#include <string>
#include <vector>

#include "archive/modules/common/dialect.h"
#include "archive/modules/common/listing.h"
#include "archive/modules/common/session.h"

namespace quendle::modules {

// One call: what it asks for, what became of it. An entry's line goes to the log of the call that asked for it.
struct Call {
  Request request;
  std::vector<std::string> names;  // comparable; empty with an empty request.response_file: every entry
  std::vector<std::string> log;    // lines without line breaks
  bool failed = false;
};

// Extracts what the calls ask for; their archive is `archive` and their folders exist. Once a call failed, the
// calls behind it get no more entries. What one engine cannot read is tried with the next before it fails.
// Refused, damaged, encrypted and missing entries are in the log and reported to the session, and make their
// call fail; entries before and behind them are extracted.
void Extract(const Family& family, const OpenedArchive& archive, Session* session, std::vector<Call>* calls);

}  // namespace quendle::modules
