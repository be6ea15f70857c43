#include "cli/report.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "base/display.h"
#include "base/modSystem.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

const char* StepWord(StepKind kind) {
  switch (kind) {
    case StepKind::kExtract:
      return "extract";
    case StepKind::kMove:
      return "move";
    case StepKind::kCopy:
      return "copy";
  }
  ProgrammingError("unknown step");
}

const char* ResultWord(StepResult result) {
  switch (result) {
    case StepResult::kPlanned:
      return "planned";
    case StepResult::kDone:
      return "done";
    case StepResult::kFailed:
      return "failed";
    case StepResult::kSkipped:
      return "skipped";
  }
  ProgrammingError("unknown result");
}

const char* OutcomeWord(Outcome outcome) {
  switch (outcome) {
    case Outcome::kPlanned:
      return "planned";
    case Outcome::kDone:
      return "done";
    case Outcome::kFailed:
      return "failed";
    case Outcome::kAmbiguous:
      return "ambiguous";
    case Outcome::kUnmatched:
      return "unmatched";
    case Outcome::kMissing:
      return "missing";
  }
  ProgrammingError("unknown outcome");
}

bool IsUndone(const ActionStep& step) {
  return step.result == StepResult::kFailed || step.result == StepResult::kSkipped;
}

std::string Describe(const ActionStep& step) {
  return std::string(StepWord(step.kind)) + " to " + ForDisplay(step.to);
}

std::string EntriesText(const ExtractionReport& extraction) {
  std::string text =
      " (" + std::to_string(extraction.chosen) + " of " + std::to_string(extraction.all) + " entries";
  if (extraction.doubled_folder_avoided) text += ", no doubled folder";
  return text + ")";
}

std::string Shown(const Reason& error) {
  return ForDisplay(Sentence(error, Language::kEnglish));
}

// An error may quote a path, whose bytes are anything.
std::string ErrorText(const Reason& error) {
  return platform::WithReplacementCharacters(Sentence(error, Language::kEnglish));
}

// Such characters stand in strings only, where their numbers mean the same.
std::string WithoutDeception(std::string_view json) {
  std::string text;
  while (!json.empty()) {
    const std::string_view rest = json;
    char32_t character = 0;
    if (platform::TakeCodePoint(&json, &character) && IsDeceptive(character)) {
      char number[16];
      std::snprintf(number, sizeof number, "\\u%04x", static_cast<unsigned>(character));
      text += number;
    } else {
      text += rest.substr(0, rest.size() - json.size());
    }
  }
  return text;
}

bool HasRawBytes(const DispatchReport& report) {
  bool valid = platform::IsUtf8(report.path) && platform::IsUtf8(report.name);
  for (const ActionStep& step : report.steps) {
    valid = valid && platform::IsUtf8(step.to);
    if (!step.extraction) continue;
    for (const std::string& folder : step.extraction->folders) valid = valid && platform::IsUtf8(folder);
  }
  return !valid;
}

}  // namespace

std::string TextLine(const DispatchReport& report) {
  std::string line = OutcomeWord(report.outcome);
  line.resize(11, ' ');
  line += ForDisplay(report.path);
  if (report.profile) line += " [" + ForDisplay(*report.profile) + "]";
  std::string separator = " ";
  for (const ActionStep& step : report.steps) {
    line += separator + Describe(step);
    if (step.extraction) line += EntriesText(*step.extraction);
    if (IsUndone(step)) line += std::string(" (") + ResultWord(step.result) + ")";
    separator = "; ";
  }
  if (report.profile && report.steps.empty() && report.error.empty()) line += " nothing to do";
  return line;
}

std::vector<std::string> ProblemLines(const DispatchReport& report) {
  std::vector<std::string> lines;
  const std::string path = ForDisplay(report.path);
  for (const ActionStep& step : report.steps) {
    if (IsUndone(step)) lines.push_back(path + ": " + Describe(step) + ": " + Shown(step.error));
  }
  if (lines.empty() && !report.error.empty()) lines.push_back(path + ": " + Shown(report.error));
  return lines;
}

std::string JsonLine(const DispatchReport& report) {
  // One rule for the whole object, so that a reader can undo it.
  const bool escaped = HasRawBytes(report);
  const auto shown = [escaped](const std::string& path) { return escaped ? WithEscapedBytes(path) : path; };
  nlohmann::ordered_json object;
  object["path"] = shown(report.path);
  object["name"] = shown(report.name);
  object["archive"] = nullptr;
  if (report.archive_type != 0) object["archive"] = ArchiveTypeName(report.archive_type);
  object["matches"] = report.matches;
  object["profile"] = nullptr;
  if (report.profile) object["profile"] = *report.profile;
  object["steps"] = nlohmann::ordered_json::array();
  for (const ActionStep& step : report.steps) {
    nlohmann::ordered_json entry;
    entry["step"] = StepWord(step.kind);
    entry["to"] = shown(step.to);
    entry["result"] = ResultWord(step.result);
    if (!step.error.empty()) entry["error"] = ErrorText(step.error);
    if (step.extraction) {
      entry["entries"] = {{"chosen", step.extraction->chosen}, {"all", step.extraction->all}};
      entry["folders"] = nlohmann::ordered_json::array();
      for (const std::string& folder : step.extraction->folders) entry["folders"].push_back(shown(folder));
      entry["doubled_folder_avoided"] = step.extraction->doubled_folder_avoided;
    }
    object["steps"].push_back(std::move(entry));
  }
  object["result"] = OutcomeWord(report.outcome);
  if (!report.error.empty()) object["error"] = ErrorText(report.error);
  if (escaped) object["escaped"] = true;
  return WithoutDeception(object.dump());
}

}  // namespace quendle
