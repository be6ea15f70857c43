// Files of RAR 5 that have the content of an earlier one: hard links, and what was packed once only.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/rar/rar_content.h"
#include "archive/modules/rar/rar_headers.h"

namespace quendle::modules {

// The files in the order in which they can be had: first those that have their own content, then the copies in the order
// of their sources, so that one more way through the archive gives most of them.
class RarCopies {
 public:
  // The files outlive this object, as do the others below.
  RarCopies(const ArchiveInput& input, RarKeys* keys, const std::vector<RarFile>& files);

  const std::vector<std::size_t>& Order() const { return order_; }

  // The file whose content a copy has; null when there is none of that name in front of it.
  const RarFile* SourceOf(std::size_t copy) const;

  // Gives the copy as that entry. False: `sink` ends the reading.
  bool Give(std::size_t copy, Entry entry, EntrySink* sink);

 private:
  bool GoTo(std::size_t source, EntrySink* sink);
  bool Refuse(Entry entry, const Reason& reason, EntrySink* sink) const;

  const ArchiveInput& input_;
  RarKeys* const keys_;
  const std::vector<RarFile>& files_;
  std::vector<std::size_t> order_;
  std::vector<std::size_t> sources_;  // beside the files; their number: none
  std::optional<RarContent> content_;
  std::size_t next_ = 0;  // file of it
  unsigned passes_ = 0;   // through the archive
  std::string kept_;      // the content of the last source, when it is not large
  std::optional<std::size_t> kept_of_;
};

}  // namespace quendle::modules
