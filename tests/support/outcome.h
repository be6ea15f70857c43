// What a Result should be; a test that fails tells what it is instead.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "reasons/result.h"

namespace quendle::test {

inline testing::AssertionResult Succeeds(const platform::Result& result) {
  return testing::AssertionResult(result.ok()) << result.path << ": " << result.reason;
}

// With that code, over that path and with a reason.
inline testing::AssertionResult Fails(const platform::Result& result, platform::Code code,
                                      const std::string& path) {
  return testing::AssertionResult(result.code == code && result.path == path && !result.reason.empty())
         << "code " << static_cast<int>(result.code) << ", " << result.path << ": " << result.reason;
}

}  // namespace quendle::test
