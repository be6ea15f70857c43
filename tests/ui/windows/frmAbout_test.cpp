#include "ui/windows/frmAbout.h"

#include <QtWidgets>
#include <regex>

#include "core/modMain.h"
#include "support/temp_folder.h"
#include "ui/modal.h"
#include "ui/parts/text.h"

namespace quendle {
namespace {

std::vector<std::string> Lines(const std::string& module_folder) {
  const frmAbout form(nullptr, module_folder);
  const auto* lst = form.findChild<QListWidget*>("lst");
  std::vector<std::string> lines;
  lines.reserve(static_cast<std::size_t>(lst->count()));
  for (int i = 0; i < lst->count(); ++i) lines.push_back(FromQt(lst->item(i)->text()));
  return lines;
}

GTEST_TEST(About, NothingIsInstalled) {
  const std::vector<std::string> expected = {
      "UnLHA32.so     *** 未導入 ***", "UnZIP32.so     *** 未導入 ***", "Cab32.so       *** 未導入 ***",
      "unrar32.so     *** 未導入 ***", "UNRAR.so       *** 未導入 ***", "7-zip32.so     *** 未導入 ***"};
  const test::TempFolder folder;
  fs::create_directory(folder / "UnZIP32.so");
  EXPECT_EQ(Lines(folder.path()), expected);
  EXPECT_EQ(Lines(folder / "none"), expected);
  EXPECT_EQ(Lines(""), expected);
}

GTEST_TEST(About, LibrariesOfOthers) {
  const test::TempFolder folder;
  fs::copy_file(QUENDLE_SCRIPTED_MODULES "/scripted_full.so", folder / "UnLHA32.so");
  fs::copy_file(QUENDLE_SCRIPTED_MODULES "/scripted_plain.so", folder / "UnZIP32.so");
  fs::copy_file(QUENDLE_MODULES "/Cab32.so", folder / "UNRAR.so");
  test::WriteFile(folder / "Cab32.so", "no library");
  const std::vector<std::string> lines = Lines(folder.path());
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], "UnLHA32.so     \tunknown     (c) A. Author; " + std::string(600, 'x') + "\\n日本");
  EXPECT_EQ(lines[1], "UnZIP32.so     \tunknown     ");
  const std::string unusable = "Cab32.so       *** 未導入 *** ";
  EXPECT_TRUE(lines[2].starts_with(unusable) && lines[2].size() > unusable.size()) << lines[2];
  EXPECT_EQ(lines[4], "UNRAR.so       \t" QUENDLE_MODULE_VERSION "     ");
}

GTEST_TEST(About, BundledLibrariesTellWhatIsUnderThem) {
  const std::vector<std::string> lines = Lines(QUENDLE_MODULES);
  // In the order of the lines; the fifth one is no library of this program.
  const char* under[] = {"lhasa V",
                         "libarchive V, libdeflate V(, 7-Zip V)?",
                         "libdeflate V, libmspack V",
                         "nettle V, libb2 V",
                         "",
                         "libarchive V(, 7-Zip V)?"};
  ASSERT_EQ(lines.size(), 6U);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (*under[i] == '\0') continue;
    const std::string libraries = std::regex_replace(under[i], std::regex("V"), "[0-9]+(\\.[0-9a-z]+)+");
    const std::regex expected("[^\t]{15}\t" QUENDLE_MODULE_VERSION " {5}\\(c\\) Quendle contributors; " +
                              libraries);
    EXPECT_TRUE(std::regex_match(lines[i], expected)) << lines[i];
  }
}

GTEST_TEST(About, TextAndKeys) {
  const std::function<void(frmAbout&)> ways[] = {
      [](frmAbout& form) { QTest::keyClick(form.focusWidget(), Qt::Key_Return); },
      [](frmAbout& form) { QTest::keyClick(form.focusWidget(), Qt::Key_Escape); },
      [](frmAbout& form) { QTest::keyClick(&form, Qt::Key_W, Qt::ControlModifier); },
      [](frmAbout& form) { QTest::mouseClick(form.findChild<QPushButton*>("cmd"), Qt::LeftButton); },
      [](frmAbout& form) {
        auto* lst = form.findChild<QListWidget*>("lst");
        QTest::mouseClick(lst->viewport(), Qt::LeftButton, {}, lst->visualItemRect(lst->item(2)).center());
        EXPECT_EQ(lst->currentRow(), 2);
        QTest::keyClick(lst, Qt::Key_Enter);
      }};
  for (const auto& close : ways) {
    SCOPED_TRACE(&close - ways);
    const test::WithModal modal([&close](QWidget& window) {
      EXPECT_EQ(window.windowTitle(), "About Quendle");
      const QStringList text = window.findChild<QLabel*>("lblCopyright")->text().split("\r\n");
      ASSERT_EQ(text.size(), 6);
      EXPECT_EQ(
          FromQt(text.mid(0, 5).join("/")),
          "Quendle/" + GetVersionString() + "/Compiled: 2003/11/7//Copyright (C) 1999 Quendle contributors");
      close(dynamic_cast<frmAbout&>(window));
    });
    ShowAbout(nullptr, "");
    EXPECT_EQ(modal.windows(), 1);
  }
}

}  // namespace
}  // namespace quendle
