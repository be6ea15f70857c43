// Unpacking the blocks of a 7Z archive on several threads. A block is what was packed as one stream: the files in it come
// one behind the other, and each only after those before it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "archive/modules/common/content_pool.h"
#include "archive/modules/common/entry_reader.h"
#include "archive/modules/common/sevenzip_archive.h"

namespace quendle::modules {

// The contents of small blocks, unpacked ahead of who takes them. The others are left to who streams them.
class SevenZipBlocks {
 public:
  // Both outlive this object.
  SevenZipBlocks(const ArchiveInput& input, const SevenZipArchive& archive)
      : input_(input), archive_(archive) {}

  // To be told of each entry in their order.
  void Add(std::uint32_t index, bool is_wanted);

  // Begins, if it pays. `goes_on` is asked on any thread.
  void Start(std::function<bool()> goes_on);

  // Is it the first wanted one of a block that is unpacked here?
  bool BeginsAt(std::uint32_t index) const;

  // The whole content of that entry, for which it waits; to be asked for each wanted one in their order. Nothing when
  // something is wrong with it or, in its block, with one before it: who streams it finds out.
  std::optional<ContentBuffer> Take(std::uint32_t index);

 private:
  void EndBlock();

  const ArchiveInput& input_;
  const SevenZipArchive& archive_;
  std::optional<std::uint64_t> block_;  // that Add is at
  std::uint64_t block_size_ = 0;        // so far
  std::uint64_t needed_ = 0;            // of that, up to the last wanted entry
  std::vector<ContentPool::Job> block_jobs_;
  std::size_t blocks_ = 0;    // of which something is wanted
  std::uint64_t pooled_ = 0;  // bytes of the jobs
  std::vector<ContentPool::Job> jobs_;
  std::size_t taken_ = 0;  // of the jobs
  bool is_wrong_ = false;  // something in the block of the last of these
  std::unique_ptr<ContentPool> pool_;
};

}  // namespace quendle::modules
