#include "cli/tell_untold.h"

#include "support/scoped_variable.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace quendle {
namespace {

// Windows in which more happens while the first message is there.
class BusyWindows final : public Windows, private test::ScriptedUser {
 public:
  BusyWindows(std::vector<std::string>* shown, std::function<void()> meanwhile)
      : shown_(shown), meanwhile_(std::move(meanwhile)) {}
  UserInterface& Dialogs() override { return *this; }
  void RunActionWindow(ActionForm&) override {}
  void RunMain() override {}

 private:
  void ShowMessage(MessageKind, const std::string& text) override {
    shown_->push_back(text);
    if (shown_->size() == 1) meanwhile_();
  }

  std::vector<std::string>* shown_;
  std::function<void()> meanwhile_;
};

GTEST_TEST(TellUntold, NamesWhatCopiesLeftBeforeAndMeanwhile) {
  const test::TempFolder folder;
  const test::ScopedVariable runtime("XDG_RUNTIME_DIR", folder.path());
  std::unique_ptr<platform::RunningCopy> copy, other;
  ASSERT_TRUE(platform::RunningCopy::Claim(folder.path(), {}, &copy).ok() && copy);
  const auto start = [&](const char* path) {
    EXPECT_TRUE(platform::RunningCopy::Claim(folder.path(), {path}, &other).ok());
  };
  const auto told = [&](const UntoldPaths& untold, const char* before) {
    std::vector<std::string> shown;
    test::ScriptedUser terminal;
    LazyWindows windows(
        terminal, [&](Reason*) { return std::make_unique<BusyWindows>(&shown, [&] { start("late"); }); });
    if (before != nullptr) start(before);
    TellUntold(untold, copy.get(), &windows);
    EXPECT_TRUE(terminal.messages.empty());
    return shown;
  };
  const UntoldPaths late{{}, {}, {{"late"}, 1}};
  EXPECT_EQ(told({}, nullptr), std::vector<std::string>());
  EXPECT_EQ(told({}, "a"), (std::vector{MessageOf({{}, {}, {{"a"}, 1}}), MessageOf(late)}));
  EXPECT_EQ(told({{"m"}, {"s"}, {}}, nullptr), (std::vector{MessageOf({{"m"}, {"s"}, {}}), MessageOf(late)}));
}

}  // namespace
}  // namespace quendle
