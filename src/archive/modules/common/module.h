// A module: the exported functions over a family.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "archive/archiver_abi.h"
#include "archive/modules/common/extraction.h"
#include "archive/modules/common/family.h"
#include "archive/modules/common/listing.h"
#include "archive/modules/common/session.h"

namespace quendle::modules {

// One object per loaded module. The members are the functions of archiver_abi.h; nothing is thrown through
// them.
class Module {
 public:
  explicit Module(const Family& family) : family_(family) {}

  std::int32_t CheckArchive(const char* archive);
  ArchiverHandle OpenArchive(const char* archive);
  std::int32_t FindFirst(ArchiverHandle handle, ArchiverEntry* entry);
  std::int32_t FindNext(ArchiverHandle handle, ArchiverEntry* entry);
  std::int32_t CloseArchive(ArchiverHandle handle);
  std::int32_t Command(const char* command_line, char* output, std::uint32_t size);
  std::int32_t UseUtf8(std::int32_t on);
  std::uint32_t FullName(ArchiverHandle handle, char* name, std::uint32_t size);
  std::int32_t SetSession(const ArchiverSession* session);
  std::uint32_t Credits(char* text, std::uint32_t size) const;
  std::int32_t ExtractCalls(ArchiverCall* calls, std::uint32_t count);

 private:
  using Archive = std::shared_ptr<const OpenedArchive>;
  struct Listed {
    Archive archive;
    std::size_t next = 0;
  };

  std::string FromHost(std::string_view bytes) const;
  std::string ToHost(std::string text) const;
  Archive List(const std::string& path, Reason* reason);
  platform::Result ReadCall(const char* command_line, Call* call) const;
  platform::Result ReadCalls(const ArchiverCall* calls, std::uint32_t count, std::vector<Call>* read) const;
  void WriteOutput(const Call& call, const std::string& head, ArchiverCall* out) const;

  const Family& family_;
  bool utf8_ = false;
  Session session_{nullptr};
  std::map<ArchiverHandle, Listed> open_;
  ArchiverHandle last_handle_ = 0;
  // The last archive that was listed, for as long as its files are unchanged: extractions follow listings.
  Archive last_;
  std::string last_identity_;
};

}  // namespace quendle::modules
