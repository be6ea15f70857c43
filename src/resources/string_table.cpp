#include "resources/string_table.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace quendle {
namespace {

struct Row {
  TextId id;
  const char* text;
};

constexpr Row kJapanese[] = {
#define QUENDLE_TEXT(name, number, japanese) {TextId::name, japanese},
#include "resources/string_table.inc"
#undef QUENDLE_TEXT
};
static_assert(std::ranges::adjacent_find(kJapanese, std::ranges::greater_equal{}, &Row::id) ==
                  std::end(kJapanese),
              "the numbers ascend");

}  // namespace

// The one place that would choose among languages.
const char* TextOf(TextId id) {
  const Row* found = std::ranges::lower_bound(kJapanese, id, {}, &Row::id);
  return found != std::end(kJapanese) && found->id == id ? found->text : nullptr;
}

}  // namespace quendle
