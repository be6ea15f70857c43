#include "ui/messages/msg_box_layout.h"

#include <algorithm>

#include "base/modSystem.h"
#include "ui/messages/modMsgBox.h"

namespace quendle {
namespace {

constexpr std::array<ButtonSet, 5> kButtonSets = {{
    {kButtonsOk, 1, {TextId::kBoxOk}, 0, 0, {kAnswerOk}},
    {kButtonsOkCancel, 2, {TextId::kBoxOk, TextId::kBoxCancel}, 0, 1, {kAnswerOk, kAnswerCancel}},
    {kButtonsYesNoCancel,
     3,
     {TextId::kBoxYes, TextId::kBoxNo, TextId::kBoxCancel},
     0,
     2,
     {kAnswerYes, kAnswerNo, kAnswerCancel}},
    {kButtonsYesNo, 2, {TextId::kBoxYes, TextId::kBoxNo}, 0, 1, {kAnswerYes, kAnswerNo}},
    {kButtonsRetryCancel, 2, {TextId::kBoxRetry, TextId::kBoxCancel}, 0, 1, {kAnswerRetry, kAnswerCancel}},
}};

constexpr int kButtonPadding = 400;
constexpr int kMinButtonWidth = 1200;
constexpr int kBetweenButtons = 100;
constexpr int kRightOfButtons = 300;
constexpr int kAboveButtons = 300;
constexpr int kMaxMessageWidth = 7000;
constexpr int kInputWidth = 6600;

// Of the design alone.
constexpr int kMargin = 225;
constexpr int kIconSize = 480;
constexpr int kBetweenInputRows = 150;

int ButtonWidth(const std::vector<int>& caption_widths) {
  const int widest = *std::max_element(caption_widths.begin(), caption_widths.end());
  return std::max(widest + kButtonPadding, kMinButtonWidth);
}

int GapOf(const BoxDesign& design) {
  return design.label.left - design.icon.right();
}

int LabelHeight(const BoxInput& input, int width, int height_of_rest) {
  return std::clamp(input.screen_height - height_of_rest, 0, std::max(0, input.label_height(width)));
}

// From the left to the right, beginning where the first button is by design.
std::vector<TwipRect> ButtonRow(const BoxInput& input) {
  TwipRect button = input.design.button;
  button.width = ButtonWidth(input.caption_widths);
  std::vector<TwipRect> row(input.caption_widths.size(), button);
  for (std::size_t i = 1; i < row.size(); ++i) row[i].left = row[i - 1].right() + kBetweenButtons;
  return row;
}

// The margins count twice: once in the width to begin with and once in every comparison. A short prompt so
// makes the box narrower than its design.
int MessageWidth(int width, int margins, const std::vector<int>& line_widths) {
  int candidate = width - margins;
  for (const int line : line_widths) {
    if (candidate - margins < line) candidate = margins + line;
  }
  return std::min(candidate, kMaxMessageWidth);
}

void CentreRow(std::vector<TwipRect>* row, int width) {
  const int offset = (width - (row->back().right() - row->front().left)) / 2;
  for (TwipRect& button : *row) button.left += offset;
}

}  // namespace

const ButtonSet& ButtonsOfStyle(std::int32_t style) {
  const auto found = std::find_if(kButtonSets.begin(), kButtonSets.end(),
                                  [style](const ButtonSet& set) { return set.style == style; });
  if (found == kButtonSets.end()) ProgrammingError("no such set of buttons");
  return *found;
}

BoxDesign DesignForFont(int line_height, int widest_caption) {
  BoxDesign design;
  design.icon = {kMargin, kMargin, kIconSize, kIconSize};
  // The first line stands beside the middle of the icon.
  design.label.left = design.icon.right() + kMargin;
  design.label.top = std::max(kMargin, design.icon.top + (kIconSize - line_height) / 2);
  design.label.height = line_height;
  // At the very left, so that a row that is moved by half of what is left over is in the middle.
  design.button = {0, design.icon.bottom() + kAboveButtons, ButtonWidth({widest_caption}),
                   std::max(375, line_height + 135)};
  design.field = {100, 0, 0, std::max(330, line_height + 120)};
  const int margins = 2 * GapOf(design) + design.label.left;
  const int widest_row = 3 * design.button.width + 2 * kBetweenButtons;
  design.width = margins + widest_row + kRightOfButtons;
  design.label.width = design.width - margins;
  design.height = design.button.bottom() + kMargin;
  return design;
}

BoxLayout LayOutMessageBox(const BoxInput& input) {
  const BoxDesign& design = input.design;
  const int gap = GapOf(design);
  BoxLayout box{design.width, design.height, design.icon, design.label, {}, ButtonRow(input)};
  box.width = std::max(box.width, box.buttons.back().right() + kRightOfButtons);
  box.width = MessageWidth(box.width, 2 * gap + design.label.left, input.line_widths);
  CentreRow(&box.buttons, box.width);

  if (!input.has_icon) {
    box.icon = {};
    box.label.left = gap;
  }
  box.label.width = box.width - (2 * gap + box.label.left);
  const int below_buttons = design.height - design.button.top;
  box.label.height = LabelHeight(input, box.label.width, box.label.top + kAboveButtons + below_buttons);
  for (TwipRect& button : box.buttons) button.top = box.label.bottom() + kAboveButtons;
  box.height = below_buttons + box.buttons.front().top;
  return box;
}

BoxLayout LayOutInputBox(const BoxInput& input) {
  const BoxDesign& design = input.design;
  const int gap = GapOf(design);
  BoxLayout box{std::min(kInputWidth, input.screen_width), 0, {}, design.label, design.field, {}};

  TwipRect button = design.button;
  button.left = box.width - design.button.width - 100;
  button.top = 150;
  button.width = ButtonWidth(input.caption_widths);
  box.buttons.assign(input.caption_widths.size(), button);
  for (std::size_t i = 1; i < box.buttons.size(); ++i) {
    box.buttons[i].top = box.buttons[i - 1].bottom() + kBetweenButtons;
  }

  box.label.left = design.icon.left;
  box.label.top = design.icon.top;
  box.label.width = box.width - (2 * gap + button.width) - box.label.left;
  const int below_label = kBetweenInputRows + design.field.height + kBetweenInputRows;
  box.label.height = LabelHeight(input, box.label.width, box.label.top + below_label);

  box.field.width = box.width - 300;
  box.field.top = std::max(box.label.bottom(), box.buttons.back().bottom()) + kBetweenInputRows;
  box.height = box.field.bottom() + kBetweenInputRows;
  return box;
}

}  // namespace quendle
