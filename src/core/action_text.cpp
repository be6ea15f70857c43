#include "core/action_text.h"

#include "base/modSystem.h"
#include "base/text.h"
#include "resources/string_table.h"

namespace quendle {

std::string StepName(StepKind kind) {
  switch (kind) {
    case StepKind::kExtract:
      return LoadText(TextId::kExtractStep);
    case StepKind::kMove:
      return LoadText(TextId::kMoveStep);
    case StepKind::kCopy:
      return LoadText(TextId::kCopyStep);
  }
  ProgrammingError("unknown step");
}

std::string ActionText(std::int16_t action, std::string_view between) {
  std::string text;
  for (const StepKind kind : kStepKinds) {
    if (!Includes(action, kind)) continue;
    if (!text.empty()) text += between;
    text += StepName(kind);
  }
  return text;
}

}  // namespace quendle
