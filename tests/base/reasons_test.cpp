#include "base/reasons.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <regex>

#include "base/modString.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

GTEST_TEST(Reasons, AreTranslatedWithTheirNamesAndNumbers) {
  const std::pair<const char*, const char*> rows[] = {
      {"it is there already", "すでにそこにあります"},
      {"No space left on device: /media/usb", "空き容量がありません: /media/usb"},
      {"/in/a: b.zip: Permission denied", "/in/a: b.zip: アクセス権がありません"},
      {"/in/a.zip has 200000 entries. Extract them?",
       "/in/a.zip には 200000 個の項目があります。\r\n解凍しますか？"},
      {"/it has 2 entries has 3 entries. Extract them?",
       "/it has 2 entries には 3 個の項目があります。\r\n解凍しますか？"},
      {"there is no trash to move this to: Read-only file system",
       "移動できるごみ箱がありません: 読み取り専用です"},
      {"a/b.txt: its checksum does not agree (and 3 more)",
       "a/b.txt: チェックサムが一致しません（ほか 3 件）"},
      {"c/a.txt (and 2 more) exist already and were left; 1 entry was left: Is a directory: /d/x",
       "同名のファイルがあるため残しました: c/a.txt（ほか 2 件）; 残した項目 1 個: フォルダです: /d/x"},
      {"a: b.zip: it would replace the archive that it comes from: /in/a: b.zip (and 2 more)",
       "a: b.zip: 解凍元のアーカイブ自身を上書きすることになります: /in/a: b.zip（ほか 2 件）"},
      {"the pattern a: ( of Include cannot be used: match limit exceeded",
       "Include のパターン a: ( は使えません: 照合に時間がかかりすぎます"},
      {"the archive is cut off: its end is missing", "アーカイブが途中で切れています"},
      {"the volume /in/%2.7z.002 is missing", "分割ファイル /in/%2.7z.002 がありません"},
      {"/a; b.ini: line 12: this seems to be UTF-8; save the file as UTF-8 with its mark (BOM)",
       "/a; b.ini: 12 行目：UTF-8 の文字のようです。ファイルを BOM 付きの UTF-8 で保存し直してください"},
      {"the volume  is missing", "the volume  is missing"},
      {"something nobody ever said: /x", "something nobody ever said: /x"},
      {"", ""},
  };
  for (const auto& [english, japanese] : rows) EXPECT_EQ(InJapanese(english), japanese);
}

// The sources without the breaks inside a literal.
std::string Sources(const std::string& but) {
  std::string all;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(QUENDLE_SOURCES)) {
    if (entry.is_regular_file() && entry.path().filename() != but) {
      all += test::ReadFile(test::TextOf(entry.path()));
    }
  }
  return std::regex_replace(all, std::regex("\"\\s*\\n\\s*\""), "");
}

// A reason that is said otherwise now would silently be shown in English.
GTEST_TEST(Reasons, RowsAreStillSaidByTheProgramOrTheSystem) {
  const std::string table = test::ReadFile(std::string(QUENDLE_SOURCES) + "/base/reasons.cpp");
  const std::string sources = Sources("reasons.cpp");
  const std::size_t system = table.find("kSystem[]");
  const std::size_t windows = table.find("kWindows[]");
  ASSERT_NE(system, std::string::npos);
  ASSERT_NE(windows, std::string::npos);
  std::string system_words = "\n";
  for (int error = 1; error < 134; ++error) system_words.append(std::strerror(error)).append("\n");
  const std::regex row("\\{\"((?:[^\"\\\\]|\\\\.)+)\",\\s*6\\d\\d\\d\\}");
  int rows = 0;
  for (std::sregex_iterator it(table.begin(), table.end(), row), end; it != end; ++it, ++rows) {
    const std::string english = (*it)[1];
    // The words of Windows depend on its version.
    if (static_cast<std::size_t>(it->position()) > windows) continue;
    if (static_cast<std::size_t>(it->position()) > system) {
      if (kHostStyle == PathStyle::kWindows) continue;
      EXPECT_NE(system_words.find("\n" + english + "\n"), std::string::npos) << english;
      continue;
    }
    const std::regex placeholder("%\\d");
    for (std::sregex_token_iterator part(english.begin(), english.end(), placeholder, -1), none; part != none;
         ++part) {
      EXPECT_NE(sources.find(part->str()), std::string::npos) << english << ": " << *part;
    }
  }
  EXPECT_GT(rows, 100);
}

}  // namespace
}  // namespace quendle
