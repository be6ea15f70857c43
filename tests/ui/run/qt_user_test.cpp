#include "ui/run/qt_user.h"

#include <QtWidgets>
#include <chrono>
#include <functional>
#include <utility>

#include "support/archiver_bench.h"
#include "support/temp_folder.h"
#include "ui/modal.h"
#include "ui/windows/frmProgress.h"

namespace quendle {
namespace {

using std::chrono::milliseconds, std::chrono::seconds;

constexpr std::uint64_t kMebi = 1 << 20;

bool interrupted = false;

class QtUserTest : public testing::Test {
 protected:
  frmProgress* Window() const {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* window = dynamic_cast<frmProgress*>(widget);
      if (window != nullptr && window->isVisible()) return window;
    }
    return nullptr;
  }

  // The text of the only label that has such a part, and of none else.
  QString LabelWith(const QString& part) const {
    QStringList found;
    for (const QLabel* label : Window()->findChildren<QLabel*>()) {
      if (!label->isHidden() && label->text().contains(part)) found.append(label->text());
    }
    return found.size() == 1 ? found.front() : QString("%1 labels").arg(found.size());
  }

  bool Report(std::uint64_t done, std::uint64_t total = 100 * kMebi, bool simple = false) {
    return user_->ShowProgress({"/in/a <b>b<p>.txt", done, total}, simple);
  }

  void Open() {
    Report(0);
    now_ += seconds(1);
    Report(10 * kMebi);
    ASSERT_NE(Window(), nullptr);
  }

  std::unique_ptr<UserInterface> MakeUser() {
    interrupted = false;
    return MakeQtUser({globals_, nullptr, [] { return interrupted; }, -1, {}}, [this] { return now_; });
  }

  std::chrono::steady_clock::time_point now_{std::chrono::hours(1)};
  test::TempFolder folder_;
  test::ScriptedUser nobody_;
  Globals globals_{{folder_.path(), "/standard"}, false, nobody_, "", {}};
  std::unique_ptr<UserInterface> user_ = MakeUser();
};

// Counts what the pointer does to it, which comes by way of the queue of the user's input.
class Counter : public QWidget {
 public:
  Counter() {
    setMouseTracking(true);
    setGeometry(0, 0, 200, 200);
    show();
    QTest::qWait(1);
  }
  void MovePointer() { QCursor::setPos(mapToGlobal(QPoint(100, 20 + ++turn_))); }
  int moves = 0;

 protected:
  void mouseMoveEvent(QMouseEvent*) override { ++moves; }

 private:
  int turn_ = 0;
};

TEST_F(QtUserTest, OpensAfterOneSecondAndNothingElseTakesInput) {
  Counter other;
  other.MovePointer();
  QTest::qWait(1);
  ASSERT_EQ(std::exchange(other.moves, 0), 1);
  const struct {
    milliseconds later;
    bool repaints, is_open;
  } rows[] = {
      {milliseconds(0), true, false},   {milliseconds(10), false, false},  // too soon to be worth the time
      {milliseconds(989), true, false}, {milliseconds(16), true, true},   {milliseconds(60), true, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.later.count());
    now_ += row.later;
    other.MovePointer();
    bool processed = false;
    QTimer::singleShot(0, [&processed] { processed = true; });
    EXPECT_TRUE(Report(1));
    EXPECT_EQ(processed, row.repaints);
    EXPECT_EQ(other.moves, 0);
    EXPECT_EQ(Window() != nullptr, row.is_open);
  }
  user_->EndProgress();
  EXPECT_EQ(Window(), nullptr);
  other.MovePointer();
  QTest::qWait(1);
  EXPECT_GT(other.moves, 0);
  EXPECT_TRUE(Report(1));
  EXPECT_EQ(Window(), nullptr) << "each operation has a second of its own";
}

TEST_F(QtUserTest, ShowsHowFarItIs) {
  Open();
  EXPECT_EQ(LabelWith(".txt"), "a <b>b<p>.txt");
  EXPECT_EQ(LabelWith(" / "), "10.0 MiB / 100.0 MiB");
  EXPECT_EQ(LabelWith("秒"), "10.0 MiB/秒\u3000残り 約 10 秒");
  EXPECT_EQ(Window()->findChild<QProgressBar*>()->text(), "10%");
  now_ += milliseconds(40);
  Report(20 * kMebi);
  EXPECT_EQ(LabelWith(" / "), "10.0 MiB / 100.0 MiB") << "no more than twenty times a second";
  now_ += milliseconds(960);
  // The user answers after an hour, which does not slow the operation down.
  {
    const test::WithModal modal([this](QWidget& question) {
      EXPECT_EQ(question.parentWidget(), Window());
      now_ += std::chrono::hours(1);
      QTest::keyClick(&question, Qt::Key_Escape);
    });
    EXPECT_EQ(user_->AskOverwrite({}, {}), UserInterface::OverwriteAnswer::kCancel);
  }
  Report(20 * kMebi);
  EXPECT_EQ(LabelWith("秒"), "10.0 MiB/秒\u3000残り 約 9 秒");
  now_ += seconds(60);
  Report(20 * kMebi);
  now_ += seconds(1);
  Report(25 * kMebi, 0, true);
  EXPECT_EQ(LabelWith(".txt"), "0 labels");
  EXPECT_EQ(LabelWith("MiB/秒"), "5.0 MiB/秒") << "what was long ago does not count";
  EXPECT_EQ(Window()->findChild<QProgressBar*>()->maximum(), 0);
  user_->EndProgress();
}

TEST_F(QtUserTest, CancelHoldsUntilTheEnd) {
  const std::pair<const char*, std::function<void(frmProgress&)>> rows[] = {
      {"mouse", [](frmProgress& window) { test::Click(window, "キャンセル"); }},
      {"Esc", [](frmProgress& window) { QTest::keyClick(&window, Qt::Key_Escape); }},
      {"close box", [](frmProgress& window) { window.close(); }},
  };
  for (const auto& [how, cancel] : rows) {
    SCOPED_TRACE(how);
    Open();
    QTest::keyClick(Window(), Qt::Key_Space);  // typed for another window
    QTest::keyClick(Window(), Qt::Key_Return);
    EXPECT_TRUE(Report(11 * kMebi));
    cancel(*Window());
    EXPECT_FALSE(Report(12 * kMebi));
    now_ += seconds(1);
    EXPECT_FALSE(Report(13 * kMebi));
    ASSERT_NE(test::FindButton(*Window(), "キャンセルしています…"), nullptr);
    EXPECT_FALSE(test::FindButton(*Window(), "キャンセルしています…")->isEnabled());
    user_->EndProgress();
    EXPECT_TRUE(Report(0));
    interrupted = true;
    EXPECT_FALSE(Report(0));
    interrupted = false;
    user_->EndProgress();
  }
}

// Whatever is typed reaches the library as it is, which asks while it lists and while it extracts.
TEST_F(QtUserTest, PasswordsOfAnArchive) {
  const std::string strange = "パス\xF0\x9F\x94\x91 é";
  test::InstallModule(folder_ / "modules", "7-zip32", "full");
  for (const char* name : {"a.7z", "b.7z"})
    test::WriteFile(folder_ / name,
                    "accept SevenZip\nentry a\nlocked " + strange + name + "\npassword " + strange + name);
  clsOutput output(*user_);
  clsArchiver archiver({*user_, [&]() -> clsOutput& { return output; }, folder_ / "modules"});
  QStringList typed;
  QStringList prompts;
  const test::WithModal modal([&](QWidget& window) {
    prompts.append("");
    for (const QLabel* label : window.findChildren<QLabel*>()) prompts.back() += label->text();
    auto* box = window.findChild<QLineEdit*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->echoMode(), QLineEdit::Password);
    box->insert(typed.takeFirst());
    QTest::keyClick(box, Qt::Key_Return);
  });
  const auto extract = [&](const char* name, const QStringList& answers) {
    typed = answers;
    prompts.clear();
    archiver.pFileName = folder_ / name;
    EXPECT_EQ(archiver.GetArcType(), 5);
    EXPECT_TRUE(archiver.PlanExtraction(folder_ / "d", true).asks_for_password);
    EXPECT_TRUE(prompts.isEmpty()) << "by a plan";
    const bool extracted = archiver.mExtractArchive(folder_ / "d");
    EXPECT_TRUE(typed.isEmpty());
    for (const QString& prompt : prompts) {
      EXPECT_EQ(prompt.contains("違います"), &prompt != &prompts.front());
      EXPECT_TRUE(prompt.contains(name)) << prompt.toStdString();
    }
    return extracted;
  };
  EXPECT_FALSE(extract("a.7z", {"wrong", ""})) << "who has none leaves it";
  EXPECT_FALSE(std::filesystem::exists(folder_ / "d"));
  EXPECT_TRUE(extract("a.7z", {"wrong", QString::fromStdString(strange + "a.7z")}));
  EXPECT_FALSE(extract("b.7z", {"1", "2", "3"}));
}

TEST_F(QtUserTest, BusyIsLiftedForQuestionsAndBalanced) {
  const test::WithModal modal([](QWidget& window) {
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    window.close();
  });
  user_->SetBusy(true);
  user_->SetBusy(true);
  user_->AskOverwrite({}, {});
  user_->AskMakeFolder("/x");
  user_->AskPassword("/x.zip", false);
  user_->ShowExtractionLog("log");
  user_->ShowMessage(UserInterface::MessageKind::kCritical, "text");
  EXPECT_EQ(modal.windows(), 5);
  user_->SetBusy(false);
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
  user_->SetBusy(false);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(QtUserTest, QuestionsAndMessagesNameWhatTheyAreAbout) {
  const std::string path = "/x/a\n<b>b</b>";
  const std::string shown = "/x/a\\n<b>b</b>";
  const test::ScopedVariable no_programs("PATH", "");
  const struct {
    const char* what;
    std::function<bool()> ask;
    const char* press;
    bool answer;
    std::string part;
  } rows[] = {
      {"folder, yes", [&] { return user_->AskMakeFolder(path); }, "Yes", true, shown},
      {"folder, no", [&] { return user_->AskMakeFolder(path); }, "No", false, shown},
      {"delete, yes", [&] { return user_->AskDelete(path); }, "Yes", true, shown},
      {"delete, no", [&] { return user_->AskDelete(path); }, "No", false, shown},
      {"proceed, yes", [&] { return user_->AskProceed(why::kAskEntries(path, 3)); }, "Yes", true, shown},
      {"proceed, no", [&] { return user_->AskProceed(Reason("?")); }, "No", false, "?"},
      {"message",
       [&] { return user_->ShowMessage(UserInterface::MessageKind::kInformation, "a\r\nb\\n"), true; }, "Ok",
       true, "a\r\nb\\n"},
      {"file", [&] { return user_->OpenFile(path, "/x"), true; }, "Ok", true, shown},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::string text;
    const test::WithModal modal([&](QWidget& window) {
      for (const QLabel* label : window.findChildren<QLabel*>()) text += label->text().toStdString();
      ASSERT_NE(test::FindButton(window, row.press), nullptr);
      test::Click(window, row.press);
    });
    EXPECT_EQ(row.ask(), row.answer);
    EXPECT_NE(text.find(row.part), std::string::npos) << text;
    EXPECT_EQ(modal.windows(), 1);
  }
}

}  // namespace
}  // namespace quendle
