#include "platform/ini/profile_edit.h"

#include <algorithm>
#include <map>
#include <random>

#include "platform/ini/profile_document.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

using namespace std::string_literals;

// What key reads see: the first section and the first key of a name; a section itself is its key "".
using Seen = std::map<std::pair<std::string, std::string>, std::string>;

Seen SeenIn(const std::string& bytes) {
  Seen seen;
  ProfileDocument(bytes).VisitSections([&seen](std::string_view name, const ProfileKeys& keys) {
    const std::string section = UpperCase(name);
    if (!seen.try_emplace({section, ""}, "").second) return;
    for (const auto& [key, value] : keys) seen.try_emplace({section, UpperCase(key)}, value);
  });
  return seen;
}

Seen Without(Seen seen, const std::string& section) {
  std::erase_if(seen, [&section](const auto& entry) { return entry.first.first == section; });
  return seen;
}

std::string RandomFile(std::mt19937* random) {
  constexpr const char* kParts[] = {"[",  "]",    "a",   "=",    " ",    "\r",
                                    "\n", "\r\n", "[a]", "[a]]", "[aa]", "a=a"};
  std::string text;
  for (std::size_t i = (*random)() % 12; i > 0; --i) text += kParts[(*random)() % std::size(kParts)];
  const std::string encoded[] = {std::string(kUtf16LeMark) + ToUtf16Le(text), std::string(kMark) + text,
                                 text};
  return encoded[(*random)() % 3];
}

Reason SectionProblemIn(const std::string& bytes) {
  return ProfileDocument(bytes).SectionProblem();
}

GTEST_TEST(EditProfile, RewritingSectionsKeepsEveryKeyOrIsRefused) {
  const struct {
    const char* name;
    Result (*edit)(std::string*);
    Seen (*expected)(const Seen& before);
  } edits[] = {
      {"arrange",
       [](std::string* bytes) {
         return ArrangeSections([](auto names) { return std::vector(names.rbegin(), names.rend()); }, bytes);
       },
       [](const Seen& before) { return before; }},
      {"remove",
       [](std::string* bytes) {
         return RemoveSections({"A", "n"}, bytes);
       },
       [](const Seen& before) { return Without(before, "A"); }},
      {"replace the body", [](std::string* bytes) { return SetBody("a", "n=1", bytes); },
       [](const Seen& before) {
         Seen after = Without(before, "A");
         after[{"A", ""}] = "", after[{"A", "N"}] = "1";
         return after;
       }},
      {"rename, and remove others of the name",
       [](std::string* bytes) {
         const Result renamed = RenameFirstSection("A", "n", bytes);
         return renamed.ok() ? RemoveSections({"a"}, bytes) : renamed;
       },
       [](const Seen& before) {
         Seen after = Without(before, "A");
         for (const auto& [names, value] : before)
           if (names.first == "A") after[{"N", names.second}] = value;
         return after;
       }},
  };
  std::mt19937 random(20240229);
  int done = 0;
  int refused = 0;
  for (int round = 0; round < 2000 && !testing::Test::HasFailure(); ++round) {
    const std::string file = RandomFile(&random);
    if (file.find_first_of("\r\n") == std::string::npos) continue;  // some leave it alone
    const Reason problem = SectionProblemIn(file);
    for (const auto& row : edits) {
      SCOPED_TRACE(row.name + (": " + testing::PrintToString(file)));
      std::string edited = file;
      const Result result = row.edit(&edited);
      EXPECT_EQ(result.reason, problem);
      if (result.ok()) {
        EXPECT_EQ(SeenIn(edited), row.expected(SeenIn(file)));
        EXPECT_EQ(SectionProblemIn(edited), "");
      } else {
        EXPECT_EQ(edited, file);
      }
      ++(result.ok() ? done : refused);
    }
  }
  EXPECT_GT(done, 1000);
  EXPECT_GT(refused, 1000);
}

// In every section that reads find, and in one that is new.
GTEST_TEST(EditProfile, SettingAKeyChangesNothingElse) {
  std::mt19937 random(19991231);
  for (int round = 0; round < 2000 && !testing::Test::HasFailure(); ++round) {
    const std::string file = RandomFile(&random);
    Seen names = SeenIn(file);
    names[{"n", ""}] = "";
    for (const auto& [name, ignored] : names) {
      if (name.first.empty() || !name.second.empty()) continue;
      for (const char* key : {"a", "n"}) {
        SCOPED_TRACE(testing::PrintToString(file) + name.first + key);
        Seen expected = SeenIn(file);
        expected[{UpperCase(name.first), ""}] = "", expected[{UpperCase(name.first), UpperCase(key)}] = "1";
        std::string edited = file;
        EXPECT_TRUE(SetKey(name.first, key, "1", &edited).ok());
        EXPECT_EQ(SeenIn(edited), expected);
        EXPECT_TRUE(!SectionProblemIn(file).empty() || SectionProblemIn(edited).empty());
      }
    }
  }
}

// What a write leaves behind. "Set" is section, key, value; bodies and deletions name no key.
GTEST_TEST(EditProfile, ChangesOnlyItsLines) {
  const char* const kDelete = "<delete>";
  const char* const kBody = "<body>";
  const struct {
    std::string before, section, key, value, after;
  } rows[] = {
      {"", "a", "k", "v", "[a]\r\nk=v\r\n"},
      {"[a]\r\nk=1\r\n", "A", "K", "2", "[a]\r\nK=2\r\n"},
      {"[a]\r\nk=1\r\n\r\n \r\n[b]\r\nk=1\r\n", "a", "n", "2",
       "[a]\r\nk=1\r\nn=2\r\n\r\n \r\n[b]\r\nk=1\r\n"},
      {"[a]\r\n\r\n[b]\r\n", "a", "k", "v", "[a]\r\nk=v\r\n\r\n[b]\r\n"},
      {"[a]\rk=1", "a", "n", "2", "[a]\rk=1\rn=2\r"},
      {"[a]\nk=1", "a", "k", "2", "[a]\nk=2\n"},
      {"[a]", "a", "k", "v", "[a]\r\nk=v\r\n"},
      {"junk", "a", "k", "v", "junk\r\n[a]\r\nk=v\r\n"},
      // a title that ends in "]", headers that only key reads see, line ends of several kinds
      {"[x]]\r\nk=1\r\n", "x]", "k", "2", "[x]]\r\nk=2\r\n"},
      {"[a]\r\n [b] x\r\nk=1\r\n", "b", "n", "2", "[a]\r\n [b] x\r\nk=1\r\nn=2\r\n"},
      {"[a]\r\nk=1\nj=2\r\n", "a", "k", "3", "[a]\r\nk=3\nj=2\r\n"},
      {"[a]\rk=1\n\n\r[b]\r", "a", "n", "2", "[a]\rk=1\nn=2\n\n\r[b]\r"},  // with "\r\n" [b] would be lost
      {"[a]\rk=1\n", "b", "k", "2", "[a]\rk=1\n\r[b]\rk=2\r"},
      {"[a]\r\nk=1\nj=2\r\n[b]\r\n", "b", kDelete, "", "[a]\r\nk=1\nj=2\r\n"},
      // UTF-8 stays what it is
      {"\xEF\xBB\xBF[\xC3\xA9]\nx\xFF\nk=1\n", "é", "k", "한",
       "\xEF\xBB\xBF[\xC3\xA9]\nx\xFF\nk=\xED\x95\x9C\n"},
      {"\xEF\xBB\xBF", "表", "k", "é", "\xEF\xBB\xBF[\xE8\xA1\xA8]\r\nk=\xC3\xA9\r\n"},
      {"\xEF\xBB\xBF[a]\nk=1\n", "a", kBody, "é=1", "\xEF\xBB\xBF[a]\n\xC3\xA9=1\n"},
      {"[a]\r\nk=1\r\nk=2\r\n[A]\r\nk=3\r\n", "a", "k", "4", "[a]\r\nk=4\r\nk=2\r\n[A]\r\nk=3\r\n"},
      // odd bytes, a lone LF, a NUL, the second spelling of a character, blanks
      {"x\xFF\r\n[a]\r\n;\x95\r\n\xFD\ny\0 \r\n\xED\x40 =\r\nk = 1\r\n"s, "a", "k", "表",
       "x\xFF\r\n[a]\r\n;\x95\r\n\xFD\ny\0 \r\n\xED\x40 =\r\nk=\x95\x5C\r\n"s},
      {"[a]\r\n\x81\x5B=1\r\n\x81\x5D=2\r\n", "a", "‐", "3", "[a]\r\n\x81\x5B=1\r\n\x81\x5D=3\r\n"},
      // what the code page cannot hold
      {"[a]\r\n\xFF", "a", "k", "é",
       "\xFF\xFE\r\0\n\0[\0a\0]\0\r\0\n\0\xFF\xEF\r\0\n\0k\0=\0\xE9\0\r\0\n\0"s},
      {"[a]", "a", "k", "é", "\xFF\xFE\r\0\n\0[\0a\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0"s},
      {"[a]\n", "é", "k", "", "\xFF\xFE\n\0[\0a\0]\0\n\0[\0\xE9\0]\0\n\0k\0=\0\n\0"s},
      // UTF-16 keeps its units, half of one at the end excepted
      {"\xFF\xFE[\0a\0]\0\n\0\x00\xDC\n\0k\0=\0\x31"s, "a", "k", "2",
       "\xFF\xFE[\0a\0]\0\n\0\x00\xDC\n\0k\0=\0\x32\0\n\0"s},
      {"\xFF\xFE"s, "a", "k", "", "\xFF\xFE[\0a\0]\0\r\0\n\0k\0=\0\r\0\n\0"s},
      // the bytes of a line feed across two units are none
      {"\xFF\xFE[\0a\0]\0\n\0\x41\x0A\0\x42\n\0"s, "a", "k", "",
       "\xFF\xFE[\0a\0]\0\n\0\x41\x0A\0\x42\n\0k\0=\0\n\0"s},
      {"x\r\n[a]\r\nk=1\r\n[b]\r\n\xFF\r\n[A]\r\n", "a", kDelete, "", "x\r\n[b]\r\n\xFF\r\n"},
      {"\xFF\xFE[\0a\0]\0"s, "A", kDelete, "", "\xFF\xFE"s},
      {"[a]\r\nk=1\r\n\r\n[b]\r\nk=2\r\n", "A", kBody, "x=1\r\n\r\n;y",
       "[a]\r\nx=1\r\n\r\n;y\r\n[b]\r\nk=2\r\n"},
      {"[a]\nk=1", "a", kBody, "x=1\r\ny=2\r\n", "[a]\nx=1\ny=2\n"},
      {"[a]\r\nk=1\r\n", "b", kBody, "x\ny", "[a]\r\nk=1\r\n[b]\r\nx\ny\r\n"},
      {"", "é", kBody, "k=v", "\xFF\xFE\r\0\n\0[\0\xE9\0]\0\r\0\n\0k\0=\0v\0\r\0\n\0"s},
  };
  for (const auto& row : rows) {
    std::string bytes = row.before;
    const Result result = row.key == kDelete ? RemoveSections({row.section}, &bytes)
                          : row.key == kBody ? SetBody(row.section, row.value, &bytes)
                                             : SetKey(row.section, row.key, row.value, &bytes);
    EXPECT_TRUE(result.ok()) << row.before << ": " << result.reason;
    EXPECT_EQ(bytes, row.after) << row.before;
  }
}

GTEST_TEST(EditProfile, SurvivesRandomBytes) {
  std::mt19937 random(20240229);
  const std::string alphabet = "[]=;\r\n\"ak \x81\x5C\xFF\xFE\xEF\xBB\xBF\0"s;
  for (int round = 0; round < 3000; ++round) {
    std::string bytes;
    for (std::size_t i = random() % 60; i > 0; --i) {
      bytes += random() % 4 == 0 ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
    }
    const std::string before = bytes;
    const bool is_set = SetKey("a", "new", "v", &bytes).ok();
    const ProfileDocument document(bytes);
    EXPECT_EQ(document.FindValue("a", "new").value_or("<none>"), is_set ? "v" : "<none>")
        << testing::PrintToString(before);
    EXPECT_TRUE(is_set || bytes == before) << testing::PrintToString(before);
  }
}

}  // namespace
}  // namespace quendle::platform
