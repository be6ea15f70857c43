#include "cli/report.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "base/display.h"
#include "base/modString.h"
#include "base/modSystem.h"
#include "platform/text/unicode.h"

namespace quendle {
namespace {

constexpr std::size_t kMostNamed = 3;  // files in a line for people

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

// => ", replacing 3, perhaps 2: a.txt, s/b.txt, c and 2 more"
std::string ReplacementText(const ExtractionReport& extraction, const std::string& to) {
  if (!extraction.replaces) return ", what it replaces is not known";
  const Replacements& replaces = *extraction.replaces;
  if (replaces.All() == 0) return "";
  std::string text = ", ";
  const auto tell = [&text](const char* word, std::size_t count) {
    if (count > 0) text.append(text.size() > 2 ? ", " : "").append(word).append(std::to_string(count));
  };
  tell("replacing ", replaces.sure);
  tell("perhaps replacing ", replaces.unsure);
  tell("asking about ", replaces.asked);
  const std::string folder = AddBackslash(to);
  const std::size_t named = std::min(replaces.files.size(), kMostNamed);
  for (std::size_t i = 0; i < named; ++i) {
    const std::string& file = replaces.files[i];
    const bool is_below = file.starts_with(folder);
    text.append(i == 0 ? ": " : ", ").append(ForDisplay(is_below ? file.substr(folder.size()) : file));
  }
  if (replaces.All() > named)
    text.append(" and ").append(std::to_string(replaces.All() - named)).append(" more");
  return text;
}

std::string EntriesText(const ExtractionReport& extraction, const std::string& to) {
  std::string text =
      " (" + std::to_string(extraction.chosen) + " of " + std::to_string(extraction.all) + " entries";
  if (extraction.doubled_folder_avoided) text += ", no doubled folder";
  return text + ReplacementText(extraction, to) + ")";
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
    if (!step.extraction->replaces) continue;
    for (const std::string& file : step.extraction->replaces->files) valid = valid && platform::IsUtf8(file);
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
    if (step.extraction) line += EntriesText(*step.extraction, step.to);
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
  const auto list = [&shown](const std::vector<std::string>& paths) {
    auto array = nlohmann::ordered_json::array();
    for (const std::string& path : paths) array.push_back(shown(path));
    return array;
  };
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
      entry["folders"] = list(step.extraction->folders);
      entry["doubled_folder_avoided"] = step.extraction->doubled_folder_avoided;
      entry["replaces"] = nullptr;
      if (const auto& replaces = step.extraction->replaces) {
        entry["replaces"] = {{"count", replaces->sure},
                             {"perhaps", replaces->unsure},
                             {"asked", replaces->asked},
                             {"files", list(replaces->files)}};
      }
    }
    object["steps"].push_back(std::move(entry));
  }
  object["result"] = OutcomeWord(report.outcome);
  if (!report.error.empty()) object["error"] = ErrorText(report.error);
  if (escaped) object["escaped"] = true;
  return WithoutDeception(object.dump());
}

}  // namespace quendle
