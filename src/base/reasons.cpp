#include "base/reasons.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "base/text.h"

namespace quendle {
namespace {

// %1 and %2 stand for names, numbers and what a library said.
struct Row {
  std::string_view english;
  int text;
};

constexpr Row kOwn[] = {
    {"the profile has been changed or removed, or cannot be read any more", 6010},
    {"the settings cannot be read", 6011},
    {"its section [General] has gone", 6850},
    {"its profiles have gone", 6853},
    {"%1 looks like UTF-8, but is read as Japanese Windows text (CP932): save the file as UTF-8 with a mark "
     "(BOM)",
     6852},
    {"Include or Exclude of the profile is too long to be read whole", 6013},
    {"%1 is too long to be read whole", 6012},
    {"%1 has a control character in it", 6851},
    {"this is not an entry of a folder", 6014},
    {"a file is where the folder should be", 6800},
    {"the name is empty", 6801},
    {"the name is not valid UTF-8", 6802},
    {"an earlier path of this run takes it away", 6803},
    {"the cabinet is cut off or cannot be read", 6804},
    {"the cabinet is cut off", 6805},
    {"the cabinet is damaged", 6806},
    {"there is not enough memory", 6807},
    {"the system has no files of the name %1", 6808},
    {"%1 bytes came out of %2", 6810},
    {"something else has this name already", 6811},
    {"there is no home folder", 6812},
    {"a line break in the path cannot be written into the entry", 6813},
    {"there is no folder for the menu", 6814},
    {"it is made for %1, and this one is made for %2", 6815},
    {"it is damaged or no module", 6816},
    {"a library that it needs is not there", 6817},
    {"a library that it needs is there, but lacks a function", 6817},
    {"it failed while it was being loaded", 6818},
    {"the library has no function %1", 6819},
    {"something else has taken its place", 6015},
    {"not tried, because the step before it failed", 6016},
    {"files in it exist there already, and nothing is overwritten unasked", 6017},
    {"a file of that name exists already, and nothing is overwritten unasked", 6018},
    {"it exists already, and nothing is overwritten unasked", 6018},
    {"it is in that folder already", 6019},
    {"a folder is no archive", 6922},
    {"a pipe or device is no archive", 6923},
    {"it cannot be opened", 6924},
    {"its name has no archive's ending, and CheckArchive is 0", 6925},
    {"no archiver library for %1 is installed", 6926},
    {"no archiver library is installed", 6927},
    {"the archiver library for %1 cannot be used", 6928},
    {"no archiver library takes it for an archive", 6929},
    {"the pattern %1 of %2 cannot be used", 6930},
    {"match limit exceeded", 6707},
    {"matching depth limit exceeded", 6707},
    {"no destination folder is set", 6021},
    {"the destination folder is not an absolute path", 6022},
    {"the destination folder has \"..\" in it", 6023},
    {"a folder cannot go into itself", 6024},
    {"it is there already", 6025},
    {"a folder of that name is in the way", 6026},
    {"a folder of that name is where the file would go", 6026},
    {"a file of that name is in the way", 6027},
    {"a file of that name exists already", 6027},
    {"a file of that name is where the folder would go", 6027},
    {"a file or a link is where a folder would be", 6028},
    {"it would replace the archive that it comes from", 6920},
    {"this place is kept for a file that Quendle itself needs", 6921},
    {"the archiver library cannot be used any more", 6030},
    {"the archiver library reported error %1", 6031},
    {"the library's encoding cannot hold its name", 6032},
    {"the library's encoding cannot hold the path", 6032},
    {"its name has line breaks or quotes that the library cannot be told", 6033},
    {"a path with a double quote cannot be given to the library", 6034},
    {"there is no name for %1 of its entries", 6035},
    {"no temporary file can be made", 6036},
    {"an unexpected fault", 6037},
    {"it was stopped", 6038},
    {"cancelled", 6039},
    {"something of that name has appeared meanwhile", 6040},
    {"source and destination are the same", 6041},
    {"the link leads to the destination", 6042},
    {"a link is in the place of the folder", 6043},
    {"another file system is mounted here", 6044},
    {"entries that appeared meanwhile were left", 6045},
    {"entries of others cannot be removed from this folder", 6046},
    {"devices, sockets and pipes cannot be copied", 6047},
    {"the copy has another size than the source", 6048},
    {"%1 exists already and was left", 6049},
    {"%1 (and %2 more) exist already and were left", 6050},
    {"%1 entry was left", 6051},
    {"%1 entries were left", 6051},
    {"there is no trash to move this to", 6052},
    {"this is not a regular file", 6053},
    {"the link leads nowhere", 6054},
    {"the link may lead out of the folder", 6055},
    {"the name leads out of the folder: %1", 6055},
    {"the name is too long for the system", 6056},
    {"a part of the name is too long for the system", 6056},
    {"%1 has %2 entries. Extract them?", 6057},
    {"%1 grows to more than %2 times its size. Go on?", 6058},
    {"there are %1 entries", 6059},
    {"it grows to more than %1 times its size", 6060},
    {"there is no such entry", 6061},
    {"it cannot be read", 6062},
    {"its checksum does not agree", 6063},
    {"a checksum does not agree", 6063},
    {"its packed data is damaged", 6064},
    {"the content is damaged, or packed in a way that is not known", 6065},
    {"it is packed in a way that is not known", 6066},
    {"it is packed as %1, which is not supported", 6067},
    {"the archive is cut off", 6068},
    {"the archive is cut off: %1", 6068},
    {"the archive is cut off, or damaged, in a header", 6069},
    {"the central directory is damaged: %1", 6069},
    {"the central directory is missing: the file is truncated or no ZIP archive", 6069},
    {"the archive is damaged or made to deceive: its entries share the same bytes", 6069},
    {"the volume %1 is missing", 6070},
    {"the volume behind %1 is missing", 6071},
    {"the archive has %1 volumes, and not all are there", 6072},
    {"the archive begins in %1", 6073},
    {"this is not the first volume of the archive", 6074},
    {"the next cabinet, %1, is missing", 6075},
    {"it is encrypted and no password was given", 6076},
    {"no password given opens it", 6077},
    {"the password is wrong or the data is damaged: %1", 6078},
    {"it is encrypted, which is not supported for RAR", 6079},
    {"its list of names is encrypted, which is not supported", 6079},
    {"this kind of encryption is not supported: %1", 6080},
    {"it is neither a file nor a folder nor a symbolic link", 6081},
    {"there are only %1 bytes free, %2 are needed", 6082},
    {"the section name ends in \"]\"", 6621},
    {"the section name has blanks at an end", 6901},
    {"the section name contains a line break or NUL", 6674},
    {"the value contains a line break or NUL", 6674},
    {"the file begins like UTF-16 but not with the little-endian mark, so it is not changed", 6623},
    {"the file begins like UTF-16 but not with the little-endian mark; save it as UTF-8 with its mark (BOM)",
     6902},
    {"the file ends in half a character; save it anew", 6903},
    {"the file seems to be UTF-8; save it as UTF-8 with its mark (BOM)", 6911},
    {"the converter for the code page is not installed", 6904},
    {"line %1: line ends of several kinds at a section header; save the file with one kind of line ends",
     6905},
    {"line %1: blanks or text around a section header; leave only the brackets and what they enclose", 6906},
    {"line %1: a section header has characters that cannot be read; write it anew", 6907},
    {"line %1: this seems to be UTF-8; save the file as UTF-8 with its mark (BOM)", 6908},
    {"line %1: a NUL character, as in damaged files and UTF-16 without its mark; save the file anew", 6909},
    {"line %1: bytes that are no text in the file's encoding; write the line anew", 6910},
    {"another program holds the settings folder", 6699},
    {"not a regular file", 6053},
    {"it is being changed", 6950},
    {"the source changed meanwhile", 6951},
    {"the copy was left in place", 6952},
    {"it has been changed since", 6953},
    {"the file that it replaced is gone", 6954},
    {"the file that was there is in the trash", 6955},
    {"what was there has the name %1 now", 6956},
    {"what others have put into it was left", 6958},
    {"the copy is complete, the rest of the source was left", 6957},
    {"another program uses it", 6096},
    {"the file is too large", 6094},
    {"xdg-open, which opens files, is not on the search path", 6083},
};

// Behind the first of several reasons.
constexpr Row kMore = {"%1 (and %2 more)", 6029};

// The systems' own words for their errors.
constexpr Row kSystem[] = {
    {"No such file or directory", 6084},
    {"Permission denied", 6085},
    {"Operation not permitted", 6086},
    {"No space left on device", 6087},
    {"Disk quota exceeded", 6088},
    {"Read-only file system", 6089},
    {"File exists", 6090},
    {"Is a directory", 6091},
    {"Not a directory", 6092},
    {"Directory not empty", 6093},
    {"File name too long", 6056},
    {"File too large", 6094},
    {"Input/output error", 6095},
    {"Device or resource busy", 6096},
    {"Text file busy", 6096},
    {"Too many levels of symbolic links", 6054},
    {"Cannot allocate memory", 6097},
    {"Stale file handle", 6084},
    {"No such device", 6098},
    {"No such device or address", 6098},
    {"Transport endpoint is not connected", 6098},
    {"Operation not supported", 6099},
    {"Invalid argument", 6099},
};

constexpr Row kWindows[] = {
    {"The system cannot find the file specified", 6084},
    {"The system cannot find the path specified", 6084},
    {"The network path was not found", 6084},
    {"The network name cannot be found", 6084},
    {"Access is denied", 6085},
    {"A required privilege is not held by the client", 6086},
    {"The requested operation requires elevation", 6086},
    {"There is not enough space on the disk", 6087},
    {"The media is write protected", 6089},
    {"The file exists", 6090},
    {"Cannot create a file when that file already exists", 6090},
    {"The directory name is invalid", 6092},
    {"The directory is not empty", 6093},
    {"The filename or extension is too long", 6056},
    {"Data error (cyclic redundancy check)", 6095},
    {"The request could not be performed because of an I/O device error", 6095},
    {"The device is not ready", 6098},
    {"The request is not supported", 6099},
    {"The parameter is incorrect", 6099},
    {"The filename, directory name, or volume label syntax is incorrect", 6099},
};

// What stands at the placeholders of `form` in `text`, whose literal parts are looked for from the end: names
// come first and may hold anything. Nothing when the text does not have that form.
std::optional<std::vector<std::string>> Values(std::string_view form, std::string_view text) {
  std::vector<std::string> values;
  bool is_at_end = true;
  for (std::size_t mark; (mark = form.rfind('%')) != std::string_view::npos; is_at_end = false) {
    const std::string_view literal = form.substr(mark + 2);
    const std::size_t at = text.rfind(literal);
    if (at == std::string_view::npos || (is_at_end && at + literal.size() != text.size()))
      return std::nullopt;
    if (!is_at_end) values.insert(values.begin(), std::string(text.substr(at + literal.size())));
    text = text.substr(0, at);
    form = form.substr(0, mark);
  }
  if (is_at_end) return text == form ? std::optional(values) : std::nullopt;
  if (!text.starts_with(form)) return std::nullopt;
  values.insert(values.begin(), std::string(text.substr(form.size())));
  const bool all_there = std::find(values.begin(), values.end(), "") == values.end();
  return all_there ? std::optional(values) : std::nullopt;
}

std::optional<std::string> Whole(std::string_view reason) {
  for (const auto rows : {std::span<const Row>(kSystem), std::span<const Row>(kWindows)}) {
    for (const Row& row : rows) {
      if (row.english == reason) return LoadText(row.text);
    }
  }
  for (const Row& row : kOwn) {
    if (const auto values = Values(row.english, reason)) return LoadText(row.text, *values);
  }
  return std::nullopt;
}

// A reason before or behind a path or another reason.
std::optional<std::string> InParts(std::string_view reason, std::string_view separator) {
  for (std::size_t at = 0; (at = reason.find(separator, at)) != std::string_view::npos; ++at) {
    const std::string_view front = reason.substr(0, at);
    const std::string_view rest = reason.substr(at + separator.size());
    const auto front_text = Whole(front);
    if (!front_text && !Whole(rest)) continue;
    return front_text.value_or(std::string(front)).append(separator).append(InJapanese(rest));
  }
  return std::nullopt;
}

// A reason between the name of an entry and a path.
std::optional<std::string> InTheMiddle(std::string_view reason) {
  constexpr std::string_view kSeparator = ": ";
  for (std::size_t at = 0; (at = reason.find(kSeparator, at)) != std::string_view::npos; ++at) {
    const std::size_t begin = at + kSeparator.size();
    for (std::size_t end = begin; (end = reason.find(kSeparator, end)) != std::string_view::npos; ++end) {
      const auto text = Whole(reason.substr(begin, end - begin));
      if (text) return std::string(reason.substr(0, begin)).append(*text).append(reason.substr(end));
    }
  }
  return std::nullopt;
}

}  // namespace

std::string InJapanese(std::string_view reason) {
  if (const auto more = Values(kMore.english, reason)) {
    return LoadText(kMore.text, {InJapanese(more->front()), more->back()});
  }
  auto text = InParts(reason, "; ");
  if (!text) text = Whole(reason);
  if (!text) text = InParts(reason, ": ");
  if (!text) text = InTheMiddle(reason);
  return text.value_or(std::string(reason));
}

}  // namespace quendle
