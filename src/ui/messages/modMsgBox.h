// The program's own message and input box.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace quendle {

inline constexpr std::int32_t kIconCritical = 16;
inline constexpr std::int32_t kIconQuestion = 32;
inline constexpr std::int32_t kIconExclamation = 48;
inline constexpr std::int32_t kIconInformation = 64;

inline constexpr std::int32_t kButtonsOk = 0;
inline constexpr std::int32_t kButtonsOkCancel = 1;
inline constexpr std::int32_t kButtonsYesNoCancel = 3;
inline constexpr std::int32_t kButtonsYesNo = 4;
inline constexpr std::int32_t kButtonsRetryCancel = 5;

inline constexpr std::int32_t kAnswerOk = 1;
inline constexpr std::int32_t kAnswerCancel = 2;
inline constexpr std::int32_t kAnswerRetry = 4;
inline constexpr std::int32_t kAnswerYes = 6;
inline constexpr std::int32_t kAnswerNo = 7;

// Shows `prompt` (lines separated by "\r\n") with the icon (any other number: none) and the set of buttons until one of them
// is pressed, and gives its answer. An empty title is the program's name. Another set of buttons is a programming error.
std::int32_t ShowMessage(const std::string& prompt, std::int32_t buttons, std::int32_t icon,
                         const std::string& title);

// Asks for one line of text. Empty when it was cancelled, or nothing was typed.
std::string ShowInput(const std::string& prompt, const std::string& title, const std::string& default_text);

// One of the two, or what stands in for it.
using MessageFunction =
    std::function<std::int32_t(const std::string&, std::int32_t, std::int32_t, const std::string&)>;
using InputFunction = std::function<std::string(const std::string&, const std::string&, const std::string&)>;

// The same as ShowInput with what is typed hidden.
std::string ShowPasswordInput(const std::string& prompt, const std::string& title);

}  // namespace quendle
