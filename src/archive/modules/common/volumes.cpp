#include "archive/modules/common/volumes.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <string_view>
#include <utility>

#include "archive/modules/common/folder_names.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

using platform::InputFile;
using platform::UpperCase;

constexpr unsigned kMostVolumes = 4000;

// How the files of a set are called.
struct Numbering {
  std::function<std::string(unsigned index)> name_of;  // from 0; empty behind the last possible one
  unsigned given = 0;                                  // the index of the file given, or kLast
  std::string last = {};                   // of a set that is opened by its last file, that one's name
  std::vector<std::string> programs = {};  // names that the first file may have instead: it extracts itself
};
constexpr unsigned kLast = std::numeric_limits<unsigned>::max();

std::string Padded(unsigned number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - std::min(width, digits.size()), '0') + digits;
}

// The digits at the end of the text; empty when there are none.
std::string_view DigitsAtEnd(std::string_view text) {
  return text.substr(text.find_last_not_of("0123456789") + 1);
}

// 0 for what is no number, or too high a one.
unsigned NumberOf(std::string_view digits) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() && end == digits.data() + digits.size() && number <= kMostVolumes ? number : 0;
}

// "before" + number + "after", counted from 1.
Numbering Counted(const std::string& before, std::size_t width, const std::string& after, unsigned given) {
  return {[=](unsigned index) { return before + Padded(index + 1, width) + after; }, given};
}

std::vector<std::string> ProgramsOf(const std::string& stem) {
  return {stem + ".exe", stem + ".sfx"};
}

// The name of a file of the set as the folder has it; null: it is not there.
const std::string* FindFile(const Numbering& numbering, unsigned index, const FolderNames& names) {
  const std::string* found = names.Find(numbering.name_of(index));
  if (index > 0) return found;
  for (const std::string& program : numbering.programs) {
    if (found == nullptr) found = names.Find(program);
  }
  return found;
}

// "a.rar" or "a.exe", "a.r00" ... "a.r99", "a.s00" ... "a.z99"
Numbering Lettered(const std::string& stem, bool upper, unsigned given) {
  const auto name_of = [=](unsigned index) -> std::string {
    if (index == 0) return stem + (upper ? ".RAR" : ".rar");
    const unsigned letter = (index - 1) / 100;
    if (letter > 'z' - 'r') return "";
    return stem + '.' + static_cast<char>((upper ? 'R' : 'r') + letter) + Padded((index - 1) % 100, 2);
  };
  return {name_of, given, "", ProgramsOf(stem)};
}

// "a.z01", "a.z02", ... and "a.zip" as the last
Numbering BeforeZip(const std::string& stem, bool upper, unsigned given) {
  Numbering numbering = Counted(stem + (upper ? ".Z" : ".z"), 2, "", given);
  numbering.last = stem + (upper ? ".ZIP" : ".zip");
  return numbering;
}

// "a.part1.rar" (or .exe) with `stem` "a.part1". "part10" may belong to "part1" as well as to "part01".
std::vector<Numbering> PartNumberings(const std::string& stem, const std::string& extension) {
  const std::string digits(DigitsAtEnd(stem));
  const std::string before = stem.substr(0, stem.size() - digits.size());
  std::vector<Numbering> numberings;
  if (NumberOf(digits) == 0 || !UpperCase(before).ends_with(".PART")) return numberings;
  const std::size_t narrowest = digits.front() == '0' ? digits.size() : 1;
  for (std::size_t width = digits.size(); width >= narrowest; --width) {
    numberings.push_back(Counted(before, width, "." + extension, NumberOf(digits) - 1));
    numberings.back().programs = ProgramsOf(before + Padded(1, width));
  }
  return numberings;
}

// What sets the name may belong to.
std::vector<Numbering> NumberingsOf(const std::string& name, bool is_program) {
  const std::size_t dot = name.rfind('.');
  if (dot == name.npos || dot + 1 == name.size()) return {};
  const std::string stem = name.substr(0, dot);
  const std::string extension = name.substr(dot + 1);
  const std::string upper = UpperCase(extension);
  const bool is_upper = extension.front() == upper.front();

  if (upper == "RAR" || is_program) {
    std::vector<Numbering> parts = PartNumberings(stem, is_program ? (is_upper ? "RAR" : "rar") : extension);
    return parts.empty() ? std::vector{Lettered(stem, is_upper, 0)} : parts;
  }
  if (upper == "ZIP") return {BeforeZip(stem, is_upper, kLast)};
  const std::string upper_stem = UpperCase(stem);
  if (upper_stem.ends_with(".7Z") || upper_stem.ends_with(".ZIP")) {
    if (upper.size() < 3 || NumberOf(upper) == 0) return {};
    return {Counted(stem + ".", 3, "", NumberOf(upper) - 1)};
  }
  const std::string digits = upper.substr(1);
  if (digits.size() < 2 || DigitsAtEnd(digits) != digits) return {};
  if (upper[0] == 'Z' && NumberOf(digits) > 0) return {BeforeZip(stem, is_upper, NumberOf(digits) - 1)};
  if (upper[0] >= 'R' && upper[0] < 'Z' && digits.size() == 2)
    return {Lettered(stem, is_upper, static_cast<unsigned>(upper[0] - 'R') * 100 + NumberOf(digits) + 1)};
  return {};
}

// The one that finds more files from its first one on.
const Numbering& BestOf(const std::vector<Numbering>& numberings, const FolderNames& names) {
  const auto found = [&](const Numbering& numbering) {
    unsigned index = 0;
    while (index < kMostVolumes && FindFile(numbering, index, names) != nullptr) ++index;
    return index;
  };
  return *std::max_element(numberings.begin(), numberings.end(),
                           [&](const auto& a, const auto& b) { return found(a) < found(b); });
}

// Puts the set's files together.
class Collector {
 public:
  Collector(std::shared_ptr<const InputFile> given, std::string folder, const FolderNames& names)
      : given_(std::move(given)), folder_(std::move(folder)), names_(names) {}

  VolumeSet Collect(const Numbering& numbering) {
    for (unsigned index = 0; index < kMostVolumes; ++index) {
      const std::string name = numbering.name_of(index);
      if (name.empty()) break;
      if (!Add(FindFile(numbering, index, names_), index == numbering.given)) {
        set_.missing_path = folder_ + name;
        break;
      }
    }
    const bool last_opens = !numbering.last.empty();
    const std::string* opening = last_opens ? names_.Find(numbering.last) : FindFile(numbering, 0, names_);
    if (last_opens && !Add(opening, numbering.given == kLast)) set_.missing_path = folder_ + numbering.last;
    set_.is_first = numbering.given == (last_opens ? kLast : 0);
    if (!set_.is_first)
      set_.first_path = folder_ + (opening != nullptr ? *opening
                                   : last_opens       ? numbering.last
                                                      : numbering.name_of(0));
    if (set_.files.empty()) set_.files.push_back(given_);
    return std::move(set_);
  }

 private:
  bool Add(const std::string* found, bool is_given) {
    if (is_given) {
      set_.files.push_back(given_);
      return true;
    }
    std::unique_ptr<InputFile> file;
    if (found == nullptr || !InputFile::Open(folder_ + *found, &file).ok()) return false;
    set_.files.push_back(std::move(file));
    return true;
  }

  std::shared_ptr<const InputFile> given_;
  std::string folder_;
  const FolderNames& names_;
  VolumeSet set_;
};

}  // namespace

VolumeSet FindVolumes(std::shared_ptr<const InputFile> file, bool is_program) {
  const std::string& path = file->Path();
  const std::size_t cut = FolderSize(path);
  const std::string name = path.substr(cut);
  const std::vector<Numbering> numberings = NumberingsOf(name, is_program);
  if (numberings.empty()) {
    VolumeSet alone;
    alone.files.push_back(std::move(file));
    return alone;
  }
  const std::string folder = path.substr(0, cut);
  // The names of a set are the same up to the first dot at least.
  const FolderNames names(folder, name.substr(0, name.find('.')));
  return Collector(std::move(file), folder, names).Collect(BestOf(numberings, names));
}

}  // namespace quendle::modules
