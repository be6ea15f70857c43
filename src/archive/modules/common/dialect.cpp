#include "archive/modules/common/dialect.h"

#include <algorithm>

#include "platform/entries/entry_path.h"

namespace quendle::modules {
namespace {

using Word = DialectWord;

struct Token {
  std::string_view text;
  bool quoted;
};

// Takes the first token off `*line`, which does not begin with a blank.
Token TakeToken(std::string_view* line) {
  const bool quoted = line->front() == '"';
  std::size_t end = quoted ? line->find('"', 1) : line->find(' ');
  while (quoted && end != std::string_view::npos && end + 1 < line->size() && (*line)[end + 1] != ' ') {
    end = line->find('"', end + 1);
  }
  const std::size_t begin = quoted ? 1 : 0;
  const Token token{line->substr(begin, end == std::string_view::npos ? end : end - begin), quoted};
  line->remove_prefix(end == std::string_view::npos ? line->size() : end + 1);
  return token;
}

bool IsSeparator(char c) {
  return c == '/' || (c == '\\' && platform::kHostNames == platform::NameRules::kWindows);
}

std::string WithoutSeparator(std::string_view path) {
  const bool is_drive = path.size() == 3 && path[1] == ':' && IsSeparator('\\');
  if (path.size() > 1 && IsSeparator(path.back()) && !is_drive) path.remove_suffix(1);
  return std::string(path);
}

// Is it a path? Then it is put where it belongs.
bool TakePath(const Dialect& dialect, const Token& token, Request* request) {
  const bool is_folder_switch = dialect.folder_is_switch && token.text.starts_with("-o");
  if (token.quoted && is_folder_switch && request->folder.empty()) {
    request->folder = WithoutSeparator(token.text.substr(2));
    return true;
  }
  if (token.text.starts_with('@') && request->response_file.empty()) {
    request->response_file = token.text.substr(1);
    return true;
  }
  if (!token.quoted && token.text.starts_with('-')) return false;
  if (request->archive.empty()) {
    request->archive = token.text;
    return true;
  }
  if (!request->folder.empty()) return false;
  request->folder = WithoutSeparator(token.text);
  return true;
}

}  // namespace

const Dialect kZipDialect = {{{"-x", Word::kCommand},
                              {"-u", Word::kCommand | Word::kUpdate},
                              {"-s", 0},
                              {"-i", 0},
                              {"-C", 0},
                              {"-j", Word::kNoPaths},
                              {"-o", Word::kQuiet}},
                             false,
                             false,
                             1};
const Dialect kLzhDialect = {{{"x", Word::kCommand},
                              {"-+", 0},
                              {"-a1", 0},
                              {"-jp1", 0},
                              {"-x0", Word::kNoPaths},
                              {"-x1", 0},
                              {"-c0", Word::kUpdate},
                              {"-c1", 0},
                              {"-m0", 0},
                              {"-m1", Word::kQuiet}},
                             true,
                             false,
                             2};
const Dialect kCabDialect = {{{"-x", Word::kCommand},
                              {"-j", Word::kNoPaths},
                              {"-o", Word::kQuiet},
                              {"-n", Word::kQuiet | Word::kUpdate}},
                             true,
                             false,
                             0};
const Dialect kRarDialect = {{{"-x", Word::kCommand},
                              {"-e", Word::kCommand | Word::kNoPaths},
                              {"-o", Word::kQuiet},
                              {"-u", Word::kQuiet | Word::kUpdate}},
                             true,
                             false,
                             1};
const Dialect kSevenZipDialect = {
    {{"x", Word::kCommand}, {"e", Word::kCommand | Word::kNoPaths}, {"-aoa", Word::kQuiet}}, true, true, 0};

bool ParseCommandLine(const Dialect& dialect, std::string_view line, Request* request, Reason* problem) {
  *request = Request();
  unsigned meaning = 0;
  while (!line.empty()) {
    if (line.front() == ' ') {
      line.remove_prefix(1);
      continue;
    }
    const Token token = TakeToken(&line);
    const auto word = std::find_if(dialect.words.begin(), dialect.words.end(), [&](const Word& known) {
      return !token.quoted && known.text == token.text;
    });
    if (word != dialect.words.end()) {
      meaning |= word->meaning;
    } else if (!TakePath(dialect, token, request)) {
      *problem = why::kUnknownWord(std::string(token.text));
      return false;
    }
  }
  if (dialect.needs_command && (meaning & Word::kCommand) == 0) {
    *problem = why::kNoCommand;
  } else if (request->archive.empty() || request->folder.empty()) {
    *problem = why::kIncompleteCommand;
  } else {
    *problem = {};
  }
  request->with_paths = (meaning & Word::kNoPaths) == 0;
  if ((meaning & Word::kQuiet) != 0) {
    request->existing = (meaning & Word::kUpdate) != 0 ? Existing::kUpdate : Existing::kReplace;
  }
  return problem->empty();
}

}  // namespace quendle::modules
