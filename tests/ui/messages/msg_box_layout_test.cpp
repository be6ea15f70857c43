#include "ui/messages/msg_box_layout.h"

#include "base/text.h"

namespace quendle {
namespace {

constexpr int kLine = 200;

// gap 100, margins 2 * 100 + 800 = 1000
BoxInput Example(const std::vector<int>& captions, const std::vector<int>& lines, bool has_icon) {
  BoxInput input;
  input.design = {
      6000, 2000, {200, 200, 500, 500}, {800, 300, 0, 0}, {30, 1000, 1200, 400}, {100, 0, 0, 300}};
  input.caption_widths = captions;
  input.line_widths = lines;
  input.has_icon = has_icon;
  input.label_height = [lines](int width) {
    int rows = 0;
    for (const int line : lines) rows += std::max(1, (line + width - 1) / width);
    return rows * kLine;
  };
  input.screen_width = 20000;
  input.screen_height = 12000;
  return input;
}

GTEST_TEST(MsgBoxLayout, MessageBoxes) {
  const struct {
    const char* name;
    std::vector<int> captions, lines;
    bool has_icon;
    int width, button_width;
    std::vector<int> button_lefts;
    TwipRect label;
  } rows[] = {
      // (5000 - 1200) / 2 + 30
      {"a short prompt narrows", {300}, {400}, true, 5000, 1200, {1930}, {800, 300, 4000, 200}},
      {"a line that just fits", {300}, {4000}, true, 5000, 1200, {1930}, {800, 300, 4000, 200}},
      {"a longer one", {300}, {50, 4001}, true, 5001, 1200, {1930}, {800, 300, 4001, 400}},
      {"the widest", {300}, {6000}, true, 7000, 1200, {2930}, {800, 300, 6000, 200}},
      {"wider wraps", {300}, {6001}, true, 7000, 1200, {2930}, {800, 300, 6000, 400}},
      // The margins of the width are those of a label that is still beside an icon.
      {"no icon", {300}, {400}, false, 5000, 1200, {1930}, {100, 300, 4700, 200}},
      // 30 + 2 * 3001 + 100 + 300 = 6432, less 1000; an odd rest is halved downwards
      {"buttons widen first", {2601, 9}, {400}, true, 5432, 3001, {-305, 2796}, {800, 300, 4432, 200}},
      {"three buttons", {800, 801, 1}, {400}, true, 5000, 1201, {628, 1929, 3230}, {800, 300, 4000, 200}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const BoxLayout box = LayOutMessageBox(Example(row.captions, row.lines, row.has_icon));
    EXPECT_EQ(box.width, row.width);
    EXPECT_EQ(box.height, box.label.bottom() + 300 + 400 + 600);
    EXPECT_TRUE(box.label == row.label)
        << box.label.left << " " << box.label.width << " " << box.label.height;
    EXPECT_EQ(box.icon.width, row.has_icon ? 500 : 0);
    ASSERT_EQ(box.buttons.size(), row.button_lefts.size());
    for (std::size_t i = 0; i < box.buttons.size(); ++i) {
      const TwipRect button = {row.button_lefts[i], box.label.bottom() + 300, row.button_width, 400};
      EXPECT_TRUE(box.buttons[i] == button)
          << i << ": " << box.buttons[i].left << " " << box.buttons[i].width;
    }
  }
}

GTEST_TEST(MsgBoxLayout, InputBoxes) {
  const struct {
    const char* name;
    int screen_width;
    std::vector<int> lines;
    int width, label_width, field_top;
  } rows[] = {
      {"below the buttons", 20000, {400}, 6600, 5000, 1200},
      {"below a long prompt", 20000, {400, 400, 400, 20000}, 6600, 5000, 200 + 7 * kLine + 150},
      {"a narrow screen", 5000, {400}, 5000, 3400, 1200},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    BoxInput input = Example({300, 500}, row.lines, false);
    input.screen_width = row.screen_width;
    const BoxLayout box = LayOutInputBox(input);
    EXPECT_EQ(box.width, row.width);
    EXPECT_TRUE((box.buttons[0] == TwipRect{row.width - 1300, 150, 1200, 400}));
    EXPECT_TRUE((box.buttons[1] == TwipRect{row.width - 1300, 650, 1200, 400}));
    EXPECT_EQ(box.label.left, 200);
    EXPECT_EQ(box.label.width, row.label_width);
    EXPECT_TRUE((box.field == TwipRect{100, row.field_top, row.width - 300, 300})) << box.field.top;
    EXPECT_GT(box.height, box.field.bottom());
  }
}

GTEST_TEST(MsgBoxLayout, TheDesignKeepsThreeButtonsInViewForEveryFont) {
  for (const int line_height : {150, 270, 600}) {
    for (const int caption : {100, 800, 1600}) {
      SCOPED_TRACE(testing::Message() << line_height << " " << caption);
      BoxInput input = Example({caption / 2, caption / 3, caption}, {10}, true);
      input.design = DesignForFont(line_height, caption);
      input.label_height = [=](int) { return line_height; };
      const BoxLayout box = LayOutMessageBox(input);
      EXPECT_GE(box.buttons.front().left, 100);
      EXPECT_LE(box.buttons.back().right(), box.width - 100);
      EXPECT_GE(box.buttons.front().top, box.icon.bottom());
      EXPECT_LE(box.buttons.front().bottom(), box.height - 100);
      const BoxLayout asking = LayOutInputBox(input);
      EXPECT_EQ(asking.buttons.front().right(), asking.width - 100);
    }
  }
}

}  // namespace
}  // namespace quendle
