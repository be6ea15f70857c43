#include "cli/options.h"

#include <functional>
#include <string_view>

namespace quendle {
namespace {

struct OptionRule {
  std::string_view name;
  std::string_view value;  // what the value is called; empty: the option takes none
  std::string_view help;
  std::function<void(Options*, const std::string&)> apply;
  std::string_view short_name = {};
};

const std::vector<OptionRule>& Rules() {
  static const std::vector<OptionRule> rules = {
      {"--batch", "", "open no window: act where the choice is clear, one line per path",
       [](Options* o, const std::string&) { o->batch = true; }},
      {"--dry-run", "", "show what --batch would do, touch nothing",
       [](Options* o, const std::string&) { o->dry_run = true; }},
      {"--json", "", "one JSON object per line instead of text (with --batch or --dry-run)",
       [](Options* o, const std::string&) { o->json = true; }},
      {"--profile", "TITLE", "use this profile for every path",
       [](Options* o, const std::string& value) { o->profile = value; }},
      {"--settings", "DIR", "folder of mover.ini, items.ini and test.ini",
       [](Options* o, const std::string& value) { o->settings = value; }},
      {"--password-file", "FILE", "passwords for archives, one in each line of FILE",
       [](Options* o, const std::string& value) { o->password_file = value; }},
      {"--confirm", "", "ask before acting, like holding Ctrl (windowed)",
       [](Options* o, const std::string&) { o->confirm = true; }},
      {"--help", "", "show this text", [](Options* o, const std::string&) { o->help = true; }, "-h"},
      {"--version", "", "show the version", [](Options* o, const std::string&) { o->version = true; }},
  };
  return rules;
}

const OptionRule* FindRule(std::string_view name) {
  for (const OptionRule& rule : Rules()) {
    if (name == rule.name || (!rule.short_name.empty() && name == rule.short_name)) return &rule;
  }
  return nullptr;
}

// Reads the option at `*index` and moves it to the last argument that belongs to the option. Empty when it is
// right.
std::string ReadOption(const std::vector<std::string>& arguments, std::size_t* index, Options* options) {
  const std::string& argument = arguments[*index];
  const std::size_t equals = argument.find('=');
  const std::string name = argument.substr(0, equals);
  const OptionRule* rule = FindRule(name);
  if (rule == nullptr) return "unknown option " + name;
  if (rule->value.empty()) {
    if (equals != std::string::npos) return name + " takes no value";
    rule->apply(options, "");
    return "";
  }
  std::string value;
  if (equals != std::string::npos) {
    value = argument.substr(equals + 1);
  } else if (*index + 1 < arguments.size()) {
    value = arguments[++*index];
  }
  if (value.empty()) return name + " needs a value: " + std::string(rule->value);
  rule->apply(options, value);
  return "";
}

}  // namespace

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments, std::string* problem) {
  Options options;
  bool only_paths = false;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (only_paths || argument.size() < 2 || argument.front() != '-') {
      options.paths.push_back(argument);
    } else if (argument == "--") {
      only_paths = true;
    } else if (*problem = ReadOption(arguments, &i, &options); !problem->empty()) {
      return std::nullopt;
    }
  }
  if (options.help || options.version) return options;
  if (options.json && !options.batch && !options.dry_run) {
    *problem = "--json goes with --batch or --dry-run";
    return std::nullopt;
  }
  if (options.paths.empty() && (options.batch || options.dry_run)) {
    *problem = "no path given";
    return std::nullopt;
  }
  return options;
}

std::string UsageText() {
  std::string text = "usage: quendle [OPTION...] [PATH...]\n";
  for (const OptionRule& rule : Rules()) {
    std::string left = std::string("  ").append(rule.name);
    if (!rule.short_name.empty()) left.append(", ").append(rule.short_name);
    if (!rule.value.empty()) left.append(" ").append(rule.value);
    left.resize(24, ' ');
    text += left + std::string(rule.help) + "\n";
  }
  return text;
}

}  // namespace quendle
