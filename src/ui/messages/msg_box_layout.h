// The arithmetic of the message and input box, in twips, without widgets.
//
// A window has a frame around what it can draw on. Widths and heights of boxes are those inside it everywhere,
// since the frame belongs to the desktop and is not known before the window is shown.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "resources/string_table.h"

namespace quendle {

struct TwipRect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  int right() const { return left + width; }
  int bottom() const { return top + height; }
  bool operator==(const TwipRect&) const = default;
};

// What a number for a set of buttons stands for.
struct ButtonSet {
  std::int32_t style;
  std::size_t count;
  std::array<TextId, 3> captions;
  std::size_t default_button;
  std::size_t cancel_button;  // pressed by the close box, and by Esc unless it is the only one
  std::array<std::int32_t, 3> answers;
};

// Styles other than 0, 1, 3, 4 and 5 are programming errors.
const ButtonSet& ButtonsOfStyle(std::int32_t style);

// The box before it knows what it is to show.
struct BoxDesign {
  int width = 0;
  int height = 0;
  TwipRect icon;
  TwipRect label;
  TwipRect button;  // the first one
  TwipRect field;   // where one line is typed
};

// A design on which three buttons with texts up to `widest_caption` stay in view in a narrowed box, for a font
// whose lines are `line_height` high.
BoxDesign DesignForFont(int line_height, int widest_caption);

struct BoxInput {
  BoxDesign design;
  std::vector<int> caption_widths;  // of the texts of the buttons; one at least
  std::vector<int> line_widths;     // of the lines of the prompt, not wrapped
  bool has_icon = false;
  std::function<int(int width)> label_height;  // of the prompt wrapped at that width
  int screen_width = 0;                        // what a box may take at most
  int screen_height = 0;
};

struct BoxLayout {
  int width = 0;
  int height = 0;
  TwipRect icon;
  TwipRect label;  // lower than the prompt when that is higher than the screen
  TwipRect field;
  std::vector<TwipRect> buttons;
};

BoxLayout LayOutMessageBox(const BoxInput& input);
BoxLayout LayOutInputBox(const BoxInput& input);

}  // namespace quendle
