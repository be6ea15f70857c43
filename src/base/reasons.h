// Why something failed, in the language of the windows. Lower rooms give their reasons in English, which is what the
// terminal shows.
#pragma once

#include <string>
#include <string_view>

namespace quendle {

// The Japanese sentence for an English reason or question, with the names and numbers in it kept. What is not known is
// given back as it is: the system's own words are better than none.
//   "it is there already"                       => "すでにそこにあります"
//   "No space left on device: /media/usb"       => "空き容量がありません: /media/usb"
//   "/in/a.zip has 200000 entries. Extract them?" => "/in/a.zip には 200000 個の項目があります。\r\n解凍しますか？"
std::string InJapanese(std::string_view reason);

}  // namespace quendle
