#include "reasons/reason.h"

namespace quendle {
namespace {

GTEST_TEST(Reason, IsOneSentenceInEachLanguage) {
  const Reason cut = why::kAbout("a%2.txt", why::kWrongChecksum);
  const struct {
    Reason reason;
    const char *english, *japanese;
  } rows[] = {
      {{}, "", ""},
      {why::kThereAlready, "it is there already", "すでにそこにあります"},
      {Reason("said %1"), "said %1", "said %1"},
      {why::kDiskFull("No space left on device"), "No space left on device", "空き容量がありません"},
      // words are no placeholders, and the order of the arguments is that of the language
      {why::kMore(cut, 3), "a%2.txt: its checksum does not agree (and 3 more)",
       "a%2.txt: チェックサムが一致しません（ほか 3 件）"},
      {why::kFewerBytes(1, 2), "1 bytes came out of 2", "2 バイトのうち 1 バイトしか取り出せませんでした"},
      {why::kAnd(why::kExistAndLeft("c: %1", 2),
                 why::kEntryLeft(1, why::kAbout(why::kIsFolder("Is a directory"), "/d"))),
       "c: %1 (and 2 more) exist already and were left; 1 entry was left: Is a directory: /d",
       "同名のファイルがあるため残しました: c: %1（ほか 2 件）; 残した項目 1 個: フォルダです: /d"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sentence(row.reason, Language::kEnglish), row.english);
    EXPECT_EQ(Sentence(row.reason, Language::kJapanese), row.japanese) << row.english;
    EXPECT_EQ(row.reason.empty(), *row.english == '\0');
    if (NameOf(row.reason).empty()) continue;
    EXPECT_EQ(ReasonNamed(NameOf(row.reason), row.reason.arguments()), row.reason) << row.english;
  }
}

GTEST_TEST(Reason, IsKnownByItsNameAndTheNumberOfItsArguments) {
  EXPECT_EQ(ReasonNamed("kVolumeMissing", {Reason("a.002")}), why::kVolumeMissing("a.002"));
  EXPECT_FALSE(ReasonNamed("kVolumeMissing", {}));
  EXPECT_FALSE(ReasonNamed("kStopped", {Reason("a")}));
  EXPECT_FALSE(ReasonNamed("kNobodyKnows", {}));
  EXPECT_FALSE(ReasonNamed("", {Reason("a")}));
}

}  // namespace
}  // namespace quendle
