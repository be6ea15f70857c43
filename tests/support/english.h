// Reasons as tests read them: by their English sentence.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "reasons/reason.h"

namespace quendle {

inline std::string English(const Reason& reason) {
  return Sentence(reason, Language::kEnglish);
}

inline bool operator==(const Reason& reason, std::string_view sentence) {
  return English(reason) == sentence;
}

inline std::ostream& operator<<(std::ostream& stream, const Reason& reason) {
  return stream << English(reason);
}

}  // namespace quendle
