// A folder with all it holds, as it was at one moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/entries/open_folder.h"
#include "platform/moving/transfer.h"

namespace quendle::platform {

struct TreeEntry {
  std::string name;        // the whole path for the top
  std::size_t folder = 0;  // index of the folder that holds it
  EntryStatus status;
  std::size_t children_begin = 0;  // of a folder: the range of its entries
  std::size_t children_end = 0;
};

class SourceTree {
 public:
  // Reads the tree. Refuses what cannot be copied or, for a move, could not be removed afterwards.
  Result Scan(Transfer& transfer, const std::string& top, const EntryStatus& status);

  // The top has been renamed to `top`, which changes what is known of it. Fails when it is not there.
  Result Follow(const std::string& top);

  // Fails when anything was added, removed or changed since.
  Result CheckUnchanged(Transfer& transfer) const;

  // Removes what is still as it was, reporting but not to be cancelled. `*removed_any` tells whether anything
  // has been removed.
  Result Remove(Transfer& transfer, bool* removed_any) const;

  // The top is the first; every folder comes before what it holds.
  const std::vector<TreeEntry>& entries() const { return entries_; }

  // Sum of the sizes of its files, hard links counted once for each name.
  std::uint64_t bytes() const { return bytes_; }

  // The entry's path with another path in place of the top's.
  std::string PathBelow(const std::string& top, std::size_t index) const;
  std::string Path(std::size_t index) const { return PathBelow(entries_.front().name, index); }

  // Opens the folder, unless another has taken its name since.
  Result Enter(std::size_t index, OpenFolder* folder) const;

 private:
  Result ScanFolder(const Transfer& transfer, std::size_t index);
  Result AddChild(const Transfer& transfer, const OpenFolder& folder, std::size_t index, std::string name);
  Result CheckFolder(std::size_t index) const;
  Result RemoveChildren(Transfer& transfer, std::size_t index, bool* removed_any) const;

  std::vector<TreeEntry> entries_;
  std::uint64_t bytes_ = 0;
};

// Refuses devices, sockets and pipes: their content is not theirs to copy.
Result CheckCopyable(const EntryStatus& status, const std::string& path);

}  // namespace quendle::platform
