// An extraction into a folder, with something beside it that is to stay as it is.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/extraction/extraction_folder.h"
#include "support/file_systems.h"

namespace quendle::test {

class ExtractionFolderTest : public testing::Test {
 protected:
  using Replace = platform::ExtractionFolder::Replace;
  using Taken = platform::ExtractionFolder::Taken;

  void SetUp() override {
    fs::permissions(destination_.path(), fs::perms::all);  // for tests without privileges
    WriteFile(outside_ / "victim", "safe");
    fs::create_directory(outside_ / "empty");
    ASSERT_TRUE(platform::ExtractionFolder::Open(destination_.path(), &folder_).ok());
  }

  platform::Result Extract(const std::string& path, const std::string& content,
                           Replace replace = Replace::kNothing,
                           const platform::EntryAttributes& attributes = {}) {
    platform::Result result = folder_->BeginFile(path, content.size());
    if (result.ok()) result = folder_->Write(content);
    return result.ok() ? folder_->CommitFile(path, attributes, replace) : result;
  }
  Taken Look(const std::string& path) {
    platform::ExtractionFolder::Occupant occupant;
    EXPECT_TRUE(folder_->Look(path, &occupant).ok());
    return occupant.taken;
  }
  std::string Inside() const { return Listing(destination_.path()); }
  std::string Outside() const { return Listing(outside_.path()); }
  std::string At(const std::string& path) const { return path.empty() ? "" : destination_ / path; }

  TempFolder destination_;
  TempFolder outside_;
  std::unique_ptr<platform::ExtractionFolder> folder_;
};

}  // namespace quendle::test
