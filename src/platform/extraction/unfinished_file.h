// A file that is being written under a temporary name.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/entries/system_handle.h"
#include "platform/extraction/extraction_folder.h"
#include "platform/extraction/open_folders.h"
#include "reasons/result.h"

namespace quendle::platform {

// Archives hold anything; a wrong fraction would have the system refuse the whole time.
EntryTime ValidTime(const EntryTime& time);

// Removed when the object goes, unless it has got its own name by then.
class UnfinishedFile {
 public:
  // `shown` is the path that failures name.
  static Result Make(FolderHandle folder, const std::string& temporary_name, std::string shown,
                     std::unique_ptr<UnfinishedFile>* made);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  // Fails when it is certain that there is no room for that many bytes.
  Result SetAside(std::uint64_t size);

  Result Write(std::string_view bytes);

  // Does all but the name. Nothing can be written afterwards; to be called once more does nothing.
  Result Complete(const EntryAttributes& attributes);

  const OpenFolder& folder() const { return *folder_; }
  const std::string& temporary_name() const { return temporary_name_; }
  const EntryId& id() const { return id_; }  // once it is complete
  void HasItsName() { has_its_name_ = true; }

 private:
  UnfinishedFile(FolderHandle folder, std::string temporary_name, std::string shown, SystemHandle file);

  FolderHandle folder_;
  std::string temporary_name_;
  std::string shown_;
  SystemHandle file_;
  EntryId id_;
  std::uint64_t written_ = 0;
  std::uint64_t set_aside_ = 0;
  bool has_its_name_ = false;
};

}  // namespace quendle::platform
