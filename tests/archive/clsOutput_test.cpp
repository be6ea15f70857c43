#include "archive/clsOutput.h"

#include "support/scripted_user.h"

namespace quendle {
namespace {

using namespace std::string_literals;

GTEST_TEST(ClsOutput, Logs) {
  const struct {
    std::int16_t type;
    std::vector<std::string> outputs;
    std::string shown;
  } rows[] = {
      {2, {"h1\r\nh2\r\nbody\r\n\0garbage"s}, "h1\r\nh2\r\nbody\r\n"},
      {1, {"a\nb\0"s}, "a\r\nb"},
      {1, {"cut\xE8\xA1"}, "cut\r\n...more"},
      {1, {"cut表"}, "cut表\r\n...more"},
      {1, {""}, "\r\n...more"},
      {2,
       {"h1\r\nh2\r\none\r\n\0"s, "h1\r\nh2\r\ntwo\0"s, "h1\r\nh2\r\nthree"s},
       "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\n\r\nPhase 2:\r\ntwo\r\nPhase 3:\r\nthree\r\n...more"},
      {1, {"h\r\none\0"s, "one line\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\nPhase 2:\r\n"},
      {3, {"one\0"s, "two\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\none\r\nPhase 2:\r\ntwo"},
      {4, {"h\r\n\0"s, "h\r\ntwo\0"s}, "Extracted from /a:\r\n\r\nPhase 1:\r\n\r\nPhase 2:\r\ntwo"},
  };
  test::ScriptedUser user;
  clsOutput output(user);  // one for all: each run begins anew
  for (const auto& row : rows) {
    output.BeginRun();
    output.ARCTYPE = row.type;
    output.FILENAME = "/a";
    output.RESFILECOUNT(static_cast<std::int32_t>(row.outputs.size()) - 1);
    for (const std::string& text : row.outputs) output.SetOutputText(text);
    output.ShowOutputWindow();
    EXPECT_EQ(user.logs.back(), row.shown);
  }
}

}  // namespace
}  // namespace quendle
