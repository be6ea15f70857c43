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
  TextId text;
};

constexpr Row kOwn[] = {
    {"the profile has been changed or removed, or cannot be read any more",
     TextId::kReasonProfileChangedOrGone},
    {"the settings cannot be read", TextId::kReasonSettingsUnreadable},
    {"its section [General] has gone", TextId::kReasonSectionGeneralGone},
    {"its profiles have gone", TextId::kReasonProfilesGone},
    {"%1 looks like UTF-8, but is read as Japanese Windows text (CP932): save the file as UTF-8 with a mark "
     "(BOM)",
     TextId::kReasonUtf8ReadAsCp932},
    {"Include or Exclude of the profile is too long to be read whole", TextId::kReasonFilterTooLong},
    {"%1 is too long to be read whole", TextId::kReasonFolderTooLong},
    {"%1 has a control character in it", TextId::kReasonControlCharacter},
    {"this is not an entry of a folder", TextId::kReasonNoEntryOfAFolder},
    {"a file is where the folder should be", TextId::kReasonFileInPlaceOfFolder},
    {"the name is empty", TextId::kReasonNameEmpty},
    {"the name is not valid UTF-8", TextId::kReasonNameNotUtf8},
    {"an earlier path of this run takes it away", TextId::kReasonEarlierPathTakesIt},
    {"the cabinet is cut off or cannot be read", TextId::kReasonCabinetUnreadable},
    {"the cabinet is cut off", TextId::kReasonCabinetCutOff},
    {"the cabinet is damaged", TextId::kReasonCabinetDamaged},
    {"there is not enough memory", TextId::kReasonNotEnoughMemory},
    {"the system has no files of the name %1", TextId::kReasonNameNotOnSystem},
    {"%1 bytes came out of %2", TextId::kReasonBytesMissing},
    {"something else has this name already", TextId::kReasonNameTaken},
    {"there is no home folder", TextId::kReasonNoHomeFolder},
    {"a line break in the path cannot be written into the entry", TextId::kReasonLineBreakInPath},
    {"there is no folder for the menu", TextId::kReasonNoMenuFolder},
    {"it is made for %1, and this one is made for %2", TextId::kReasonOtherKindOfMachine},
    {"it is damaged or no module", TextId::kReasonDamagedOrNoModule},
    {"a library that it needs is not there", TextId::kReasonNeededLibraryMissing},
    {"a library that it needs is there, but lacks a function", TextId::kReasonNeededLibraryMissing},
    {"it failed while it was being loaded", TextId::kReasonFailedWhileLoading},
    {"the library has no function %1", TextId::kReasonLibraryLacksFunction},
    {"something else has taken its place", TextId::kReasonSomethingElseInItsPlace},
    {"not tried, because the step before it failed", TextId::kReasonStepBeforeFailed},
    {"files in it exist there already, and nothing is overwritten unasked", TextId::kReasonFilesInItExist},
    {"a file of that name exists already, and nothing is overwritten unasked",
     TextId::kReasonNotOverwrittenUnasked},
    {"it exists already, and nothing is overwritten unasked", TextId::kReasonNotOverwrittenUnasked},
    {"it is in that folder already", TextId::kReasonInThatFolderAlready},
    {"a folder is no archive", TextId::kReasonFolderNoArchive},
    {"a pipe or device is no archive", TextId::kReasonPipeOrDeviceNoArchive},
    {"it cannot be opened", TextId::kReasonCannotBeOpened},
    {"its name has no archive's ending, and CheckArchive is 0", TextId::kReasonNoArchiveEnding},
    {"no archiver library for %1 is installed", TextId::kReasonNoLibraryForType},
    {"no archiver library is installed", TextId::kReasonNoLibrary},
    {"the archiver library for %1 cannot be used", TextId::kReasonLibraryForTypeUnusable},
    {"no archiver library takes it for an archive", TextId::kReasonNoLibraryTakesIt},
    {"the pattern %1 of %2 cannot be used", TextId::kReasonPatternUnusable},
    {"match limit exceeded", TextId::kPatternTakesTooLong},
    {"matching depth limit exceeded", TextId::kPatternTakesTooLong},
    {"no destination folder is set", TextId::kNoFolderSet},
    {"the destination folder is not an absolute path", TextId::kFolderNotAbsolute},
    {"the destination folder has \"..\" in it", TextId::kFolderHasParent},
    {"a folder cannot go into itself", TextId::kReasonFolderIntoItself},
    {"it is there already", TextId::kReasonThereAlready},
    {"a folder of that name is in the way", TextId::kReasonFolderInTheWay},
    {"a folder of that name is where the file would go", TextId::kReasonFolderInTheWay},
    {"a file of that name is in the way", TextId::kReasonFileInTheWay},
    {"a file of that name exists already", TextId::kReasonFileInTheWay},
    {"a file of that name is where the folder would go", TextId::kReasonFileInTheWay},
    {"a file or a link is where a folder would be", TextId::kReasonFileWhereFolderWouldBe},
    {"it would replace the archive that it comes from", TextId::kReasonOwnArchive},
    {"this place is kept for a file that Quendle itself needs", TextId::kReasonPlaceOfOwnFile},
    {"the archiver library cannot be used any more", TextId::kReasonLibraryUnusable},
    {"the archiver library reported error %1", TextId::kReasonLibraryError},
    {"the library's encoding cannot hold its name", TextId::kReasonNameNotInEncoding},
    {"the library's encoding cannot hold the path", TextId::kReasonNameNotInEncoding},
    {"its name has line breaks or quotes that the library cannot be told",
     TextId::kReasonNameWithBreaksOrQuotes},
    {"a path with a double quote cannot be given to the library", TextId::kReasonPathWithQuote},
    {"there is no name for %1 of its entries", TextId::kReasonNamelessEntries},
    {"no temporary file can be made", TextId::kReasonNoTemporaryFile},
    {"an unexpected fault", TextId::kReasonUnexpectedFault},
    {"it was stopped", TextId::kReasonStopped},
    {"cancelled", TextId::kReasonCancelled},
    {"something of that name has appeared meanwhile", TextId::kReasonAppearedMeanwhile},
    {"source and destination are the same", TextId::kReasonSourceIsDestination},
    {"the link leads to the destination", TextId::kReasonLinkToDestination},
    {"a link is in the place of the folder", TextId::kReasonLinkInPlaceOfFolder},
    {"another file system is mounted here", TextId::kReasonOtherFileSystemMounted},
    {"entries that appeared meanwhile were left", TextId::kReasonAppearedEntriesLeft},
    {"entries of others cannot be removed from this folder", TextId::kReasonOthersEntriesStay},
    {"devices, sockets and pipes cannot be copied", TextId::kReasonDevicesNotCopied},
    {"the copy has another size than the source", TextId::kReasonCopyHasOtherSize},
    {"%1 exists already and was left", TextId::kReasonLeftAsItExists},
    {"%1 (and %2 more) exist already and were left", TextId::kReasonSeveralLeftAsTheyExist},
    {"%1 entry was left", TextId::kReasonEntriesLeft},
    {"%1 entries were left", TextId::kReasonEntriesLeft},
    {"there is no trash to move this to", TextId::kReasonNoTrash},
    {"this is not a regular file", TextId::kReasonNotRegularFile},
    {"the link leads nowhere", TextId::kReasonLinkLeadsNowhere},
    {"the link may lead out of the folder", TextId::kReasonLinkOutOfFolder},
    {"the name leads out of the folder: %1", TextId::kReasonLinkOutOfFolder},
    {"the name is too long for the system", TextId::kReasonNameTooLong},
    {"a part of the name is too long for the system", TextId::kReasonNameTooLong},
    {"%1 has %2 entries. Extract them?", TextId::kReasonManyEntriesQuestion},
    {"%1 grows to more than %2 times its size. Go on?", TextId::kReasonLargeGrowthQuestion},
    {"there are %1 entries", TextId::kReasonManyEntries},
    {"it grows to more than %1 times its size", TextId::kReasonLargeGrowth},
    {"there is no such entry", TextId::kReasonNoSuchEntry},
    {"it cannot be read", TextId::kReasonUnreadable},
    {"its checksum does not agree", TextId::kReasonChecksumWrong},
    {"a checksum does not agree", TextId::kReasonChecksumWrong},
    {"its packed data is damaged", TextId::kReasonPackedDataDamaged},
    {"the content is damaged, or packed in a way that is not known",
     TextId::kReasonContentDamagedOrPackedUnknown},
    {"it is packed in a way that is not known", TextId::kReasonPackedUnknown},
    {"it is packed as %1, which is not supported", TextId::kReasonPackedAsUnsupported},
    {"the archive is cut off", TextId::kReasonArchiveCutOff},
    {"the archive is cut off: %1", TextId::kReasonArchiveCutOff},
    {"the archive is cut off, or damaged, in a header", TextId::kReasonCutOffOrDamaged},
    {"the central directory is damaged: %1", TextId::kReasonCutOffOrDamaged},
    {"the central directory is missing: the file is truncated or no ZIP archive",
     TextId::kReasonCutOffOrDamaged},
    {"the archive is damaged or made to deceive: its entries share the same bytes",
     TextId::kReasonCutOffOrDamaged},
    {"the volume %1 is missing", TextId::kReasonVolumeMissing},
    {"the volume behind %1 is missing", TextId::kReasonNextVolumeMissing},
    {"the archive has %1 volumes, and not all are there", TextId::kReasonVolumesMissing},
    {"the archive begins in %1", TextId::kReasonArchiveBeginsElsewhere},
    {"this is not the first volume of the archive", TextId::kReasonNotFirstVolume},
    {"the next cabinet, %1, is missing", TextId::kReasonNextCabinetMissing},
    {"it is encrypted and no password was given", TextId::kReasonNoPassword},
    {"no password given opens it", TextId::kReasonWrongPassword},
    {"the password is wrong or the data is damaged: %1", TextId::kReasonWrongPasswordOrDamaged},
    {"it is encrypted, which is not supported for RAR", TextId::kReasonRarEncrypted},
    {"its list of names is encrypted, which is not supported", TextId::kReasonRarEncrypted},
    {"this kind of encryption is not supported: %1", TextId::kReasonEncryptionUnsupported},
    {"it is neither a file nor a folder nor a symbolic link", TextId::kReasonNeitherFileNorFolder},
    {"there are only %1 bytes free, %2 are needed", TextId::kReasonTooFewBytesFree},
    {"the section name ends in \"]\"", TextId::kReasonTitleEndsInBracket},
    {"the section name has blanks at an end", TextId::kReasonTitleBlankAtAnEnd},
    {"the section name contains a line break or NUL", TextId::kHasLineBreak},
    {"the value contains a line break or NUL", TextId::kHasLineBreak},
    {"the file begins like UTF-16 but not with the little-endian mark, so it is not changed",
     TextId::kReasonUtf16NotChanged},
    {"the file begins like UTF-16 but not with the little-endian mark; save it as UTF-8 with its mark (BOM)",
     TextId::kReasonUtf16WithoutMark},
    {"the file ends in half a character; save it anew", TextId::kReasonHalfACharacter},
    {"the file seems to be UTF-8; save it as UTF-8 with its mark (BOM)", TextId::kReasonFileIsUtf8},
    {"the converter for the code page is not installed", TextId::kReasonNoConverter},
    {"line %1: line ends of several kinds at a section header; save the file with one kind of line ends",
     TextId::kReasonLineEndsAtHeader},
    {"line %1: blanks or text around a section header; leave only the brackets and what they enclose",
     TextId::kReasonTextAroundHeader},
    {"line %1: a section header has characters that cannot be read; write it anew",
     TextId::kReasonUnreadableHeader},
    {"line %1: this seems to be UTF-8; save the file as UTF-8 with its mark (BOM)",
     TextId::kReasonLineIsUtf8},
    {"line %1: a NUL character, as in damaged files and UTF-16 without its mark; save the file anew",
     TextId::kReasonLineHasNul},
    {"line %1: bytes that are no text in the file's encoding; write the line anew",
     TextId::kReasonLineIsNoText},
    {"another program holds the settings folder", TextId::kReasonSettingsFolderHeld},
    {"not a regular file", TextId::kReasonNotRegularFile},
    {"it is being changed", TextId::kReasonBeingChanged},
    {"the source changed meanwhile", TextId::kReasonSourceChangedMeanwhile},
    {"the copy was left in place", TextId::kReasonCopyLeft},
    {"it has been changed since", TextId::kReasonChangedSince},
    {"the file that it replaced is gone", TextId::kReasonReplacedFileGone},
    {"the file that was there is in the trash", TextId::kReasonOldFileInTrash},
    {"what was there has the name %1 now", TextId::kReasonOldFileRenamed},
    {"what others have put into it was left", TextId::kReasonOthersEntriesLeft},
    {"the copy is complete, the rest of the source was left", TextId::kReasonRestOfSourceLeft},
    {"another program uses it", TextId::kReasonInUse},
    {"the file is too large", TextId::kReasonFileTooLarge},
    {"xdg-open, which opens files, is not on the search path", TextId::kReasonNoDesktopOpener},
};

// Behind the first of several reasons.
constexpr Row kMore = {"%1 (and %2 more)", TextId::kReasonAndMore};

// The systems' own words for their errors.
constexpr Row kSystem[] = {
    {"No such file or directory", TextId::kReasonNotFound},
    {"Permission denied", TextId::kReasonPermissionDenied},
    {"Operation not permitted", TextId::kReasonOperationNotPermitted},
    {"No space left on device", TextId::kReasonNoSpaceLeftOnDevice},
    {"Disk quota exceeded", TextId::kReasonDiskQuotaExceeded},
    {"Read-only file system", TextId::kReasonReadOnlyFileSystem},
    {"File exists", TextId::kReasonExistsAlready},
    {"Is a directory", TextId::kReasonIsFolder},
    {"Not a directory", TextId::kReasonNotFolder},
    {"Directory not empty", TextId::kReasonFolderNotEmpty},
    {"File name too long", TextId::kReasonNameTooLong},
    {"File too large", TextId::kReasonFileTooLarge},
    {"Input/output error", TextId::kReasonInputOutputError},
    {"Device or resource busy", TextId::kReasonInUse},
    {"Text file busy", TextId::kReasonInUse},
    {"Too many levels of symbolic links", TextId::kReasonLinkLeadsNowhere},
    {"Cannot allocate memory", TextId::kReasonOutOfMemory},
    {"Stale file handle", TextId::kReasonNotFound},
    {"No such device", TextId::kReasonNoDevice},
    {"No such device or address", TextId::kReasonNoDevice},
    {"Transport endpoint is not connected", TextId::kReasonNoDevice},
    {"Operation not supported", TextId::kReasonUnsupported},
    {"Invalid argument", TextId::kReasonUnsupported},
};

constexpr Row kWindows[] = {
    {"The system cannot find the file specified", TextId::kReasonNotFound},
    {"The system cannot find the path specified", TextId::kReasonNotFound},
    {"The network path was not found", TextId::kReasonNotFound},
    {"The network name cannot be found", TextId::kReasonNotFound},
    {"Access is denied", TextId::kReasonPermissionDenied},
    {"A required privilege is not held by the client", TextId::kReasonOperationNotPermitted},
    {"The requested operation requires elevation", TextId::kReasonOperationNotPermitted},
    {"There is not enough space on the disk", TextId::kReasonNoSpaceLeftOnDevice},
    {"The media is write protected", TextId::kReasonReadOnlyFileSystem},
    {"The file exists", TextId::kReasonExistsAlready},
    {"Cannot create a file when that file already exists", TextId::kReasonExistsAlready},
    {"The directory name is invalid", TextId::kReasonNotFolder},
    {"The directory is not empty", TextId::kReasonFolderNotEmpty},
    {"The filename or extension is too long", TextId::kReasonNameTooLong},
    {"Data error (cyclic redundancy check)", TextId::kReasonInputOutputError},
    {"The request could not be performed because of an I/O device error", TextId::kReasonInputOutputError},
    {"The device is not ready", TextId::kReasonNoDevice},
    {"The request is not supported", TextId::kReasonUnsupported},
    {"The parameter is incorrect", TextId::kReasonUnsupported},
    {"The filename, directory name, or volume label syntax is incorrect", TextId::kReasonUnsupported},
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
