// A program that writes down what it was started with.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "support/temp_folder.h"

namespace quendle::test {

class Recorder {
 public:
  // A program at `path`, whose record lies beside it.
  explicit Recorder(const std::string& path) : record_(path + ".record") {
#ifdef _WIN32
    fs::create_directories(FsPath(path).parent_path());
    fs::copy_file(QUENDLE_RECORDER, FsPath(path));
#else
    WriteFile(path, "#!/bin/sh\n{ echo \"$#\"; printf '%s\\n' \"$@\"; } >'" + record_ + ".part' && mv '" +
                        record_ + ".part' '" + record_ + "'\n");
    fs::permissions(FsPath(path), fs::perms::owner_all);
#endif
  }

  // The number of arguments and each of them on a line; "not started" when nothing comes for `patience`. What was
  // started comes when the machine and its disk have the time, and then no test waits any longer.
  std::string Take(std::chrono::milliseconds patience = std::chrono::seconds(100)) {
    const auto end = std::chrono::steady_clock::now() + patience;
    std::string record;
    while ((record = ReadFile(record_)).empty()) {  // not there, or in the hands of whoever renames it
      if (std::chrono::steady_clock::now() >= end) return "not started";
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    fs::remove(FsPath(record_));
    return record;
  }

 private:
  std::string record_;
};

}  // namespace quendle::test
