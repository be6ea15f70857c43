#include "platform/extraction/unfinished_file.h"

#include <utility>

namespace quendle::platform {

EntryTime ValidTime(const EntryTime& time) {
  const bool valid = time.nanoseconds >= 0 && time.nanoseconds < 1'000'000'000;
  return {time.seconds, valid ? time.nanoseconds : 0};
}

Result UnfinishedFile::Make(FolderHandle folder, const std::string& temporary_name, std::string shown,
                            std::unique_ptr<UnfinishedFile>* made) {
  SystemHandle file;
  Result result = folder->MakeFile(temporary_name, {.is_private = false, .is_hidden = true}, &file);
  if (result.ok()) {
    made->reset(new UnfinishedFile(std::move(folder), temporary_name, std::move(shown), std::move(file)));
  } else {
    result.path = std::move(shown);
  }
  return result;
}

UnfinishedFile::UnfinishedFile(FolderHandle folder, std::string temporary_name, std::string shown,
                               SystemHandle file)
    : folder_(std::move(folder)),
      temporary_name_(std::move(temporary_name)),
      shown_(std::move(shown)),
      file_(std::move(file)) {}

UnfinishedFile::~UnfinishedFile() {
  file_.Close();  // the first, since an open file may keep its name
  if (!has_its_name_) (void)folder_->Remove(temporary_name_);
}

}  // namespace quendle::platform
