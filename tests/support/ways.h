// The ways of an entry from a source folder to a destination folder, as a test with a parameter.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "platform/moving/file_operation.h"
#include "support/file_systems.h"
#include "support/scripted_observer.h"

namespace quendle::test {

struct Way {
  const char* name;
  bool moves;
  bool across;
};

inline constexpr Way kMove{"Move", true, false};
inline constexpr Way kMoveAcross{"MoveAcross", true, true};
inline constexpr Way kCopy{"Copy", false, false};
inline constexpr Way kCopyAcross{"CopyAcross", false, true};

// Otherwise the test's name shows the bytes of the structure.
inline void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

inline std::string NameOfWay(const testing::TestParamInfo<Way>& way) {
  return way.param.name;
}

class WayTest : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    if (GetParam().across && OtherFileSystem().empty()) GTEST_SKIP() << "there is no second file system";
  }

  // "S/x" and "D/x" are x in the source and in the destination folder.
  std::string At(const std::string& path) const {
    const TempFolder& folder = path[0] == 'S' ? source_ : destination_;
    return path.size() == 1 ? folder.path() : folder / path.substr(2);
  }
  platform::Result Run(const std::string& from, const std::string& to) {
    return (GetParam().moves ? platform::MoveEntry : platform::CopyEntry)(At(from), At(to), options_,
                                                                          &observer_);
  }
  bool IsThere(const std::string& path) const { return fs::exists(fs::symlink_status(FsPath(At(path)))); }

  TempFolder source_;
  TempFolder destination_{GetParam().across ? OtherFileSystem() : TextOf(fs::temp_directory_path())};
  ScriptedObserver observer_;
  platform::FileOperationOptions options_;
};

}  // namespace quendle::test
