// Whole text files, in the ANSI code page, UTF-16 little-endian, or UTF-8 with its mark, and names of temporary
// files. All text is UTF-8.
#pragma once

#include <cstdint>
#include <string>

#include "reasons/result.h"

namespace quendle {

// Is the file's first byte that of a UTF-16 mark (FF or FE)? The second is not looked at. Any error is false.
bool IsUnicodeFile(const std::string& path);

// The whole text, empty after an error. The mark of a UTF-16 file stays at its start, except that a file of
// nothing but the mark is empty; a file of a single byte FF or FE is an error. The mark of UTF-8 stays, too, so
// that a file written with the text and the flag that were read is of the encoding it was; what is not valid
// behind it becomes U+FFFD.
std::string ReadTextFile(const std::string& path, bool* is_unicode);

// The text alone is the file's new content.
inline constexpr std::int16_t kReplaceText = 0;
// The same with a line break behind it, in the ANSI code page.
inline constexpr std::int16_t kPrintText = 1;
// Behind what is there: as it is to UTF-16, else with a line break, in the encoding that is there. Half a unit at the end
// of UTF-16 goes.
inline constexpr std::int16_t kAppendText = 2;

// True only when there was nothing to write in mode 0, which leaves an empty file. The mark is written at the
// start of a new UTF-16 file, once also when the text begins with it. Text that begins with it is UTF-8 when it
// is not to be UTF-16, and so is what is appended to UTF-8.
//
// Text that the ANSI code page cannot hold is never written with other characters in its place: the whole
// file becomes UTF-16, which is refused when the system lacks the converter for what is in it. The file is
// replaced as a whole, so that after a failure, which `*why` tells when given, it is as it was. Mode 2 takes
// the platform::FolderLock itself; in the other modes callers that read first hold it.
bool WriteTextFile(const std::string& path, const std::string& text, std::int16_t mode, bool as_unicode,
                   platform::Result* why = nullptr);

// The path of a temporary file in `folder`, or in the system's folder for them when that is empty. With
// `create`, a new empty file, or an empty path when none can be made; otherwise a free name such as
// "/tmp/3f2a.tmp", or an empty path when all names are taken.
std::string GetTempFilePath(bool create, const std::string& folder);

}  // namespace quendle
