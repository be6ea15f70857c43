// Profile (INI) functions as Windows documents them, on any system.
//
// A file is text in the ANSI code page, UTF-16 little-endian when its first bytes are the mark FF FE, or UTF-8
// when they are the mark EF BB BF. Lines and section headers are those of platform/ini/profile_lines.h: those of
// keys for what reads and writes single keys, both for what changes whole sections, which is refused, with the
// line and what to do, where the two readings see different sections. A key line is a body line with "=" in it
// whose first character, blanks aside, is not ";". Blanks (space and tab) around key and value do not count,
// and one pair of quotes (" or ') that encloses the whole value is not part of it. Names of sections and keys
// are compared without regard to case; the first section and the first key of a name win.
//
// Reads see the file as it is now: the last parse of a file is kept and used again only while the file's
// device, inode, mode, size and times of change stay the same. For ReadProfileString a missing or unreadable file is an
// empty one; ReadProfile tells the two apart.
//
// Writes replace the file as a whole (platform/entries/durable_file.h) under the lock that every copy of this program
// takes, so two processes that write different keys at the same time lose nothing, and a failed write leaves
// the old bytes. Lines that a write does not concern keep their bytes, and new lines end like the one before
// them. UTF-8 stays UTF-8. Text that the code page cannot hold turns a file in it into UTF-16 little-endian with
// its mark followed by a line break, so that the first header starts a line of its own; that is refused when the
// system lacks the converter which the old text needs, or when that seems to be UTF-8 without the mark. Every
// change to a file is refused that begins with FF or FE but not with the mark FF FE.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reasons/result.h"

namespace quendle::platform {

// The value of a key, or `fallback` without the blanks at its end when section or key are missing; either is
// cut to `buffer_bytes` - 1 bytes of the ANSI code page and at its first NUL. An empty value is an empty
// string.
std::string ReadProfileString(const std::string& file, const std::string& section, const std::string& key,
                              const std::string& fallback, std::size_t buffer_bytes);

// The whole file as it is now, by one parse: the same object as before while the file has the same content. Null, and
// a success, only when nothing is at that path. What is there and cannot be read whole is a failure: a link that leads
// nowhere, a folder, a file without the right to read it or that is being changed all the time.
class ProfileDocument;
using ProfileParse = std::shared_ptr<const ProfileDocument>;
Result ReadProfile(const std::string& file, ProfileParse* parse);

// Sets one key: in place when it is there, after the last line of its section that is not blank otherwise; a
// missing section is appended at the end of the file, a missing file is made. A value that reading would
// strip (blanks at an end, or a pair of enclosing quotes) is written in double quotes.
//
// Refused (kRefused, file untouched), since it would come back as something else: a line break or NUL in
// section, key or value; text that is not UTF-8; an empty section or key; a new section that ends in "]" or has
// blanks at an end; a key with "=", with blanks at an end, or that begins with ";"; a key and value that
// together read as a header line.
Result WriteProfileString(const std::string& file, const std::string& section, const std::string& key,
                          const std::string& value);

// Sets keys of one section, all at once or, after a failure, none of them; each is written and refused as
// WriteProfileString does. `choose` answers which, and is asked under the lock: what it reads is what will be
// changed. It must not write itself. No keys leave the file alone.
using KeysAndValues = std::vector<std::pair<std::string, std::string>>;
Result WriteProfileStrings(const std::string& file, const std::string& section,
                           const std::function<KeysAndValues()>& choose);

// Makes a file of one section with these keys and values, each written and refused as WriteProfileString
// does. A file that is there already is left as it is, also one that another process has just made.
Result CreateProfile(const std::string& file, const std::string& section, const KeysAndValues& keys);

// Removes every section of these names, header and body, all at once. A missing file or section is a success.
Result DeleteProfileSections(const std::string& file, const std::vector<std::string>& sections);
Result DeleteProfileSection(const std::string& file, const std::string& section);

// Replaces the whole body of the first section of that name, or appends the section. `body` is lines joined
// by "\r\n", written as they are, each ended by the file's separator; a "\r\n" at its end adds no blank line.
// Refused: a bad section name as above, text that is not UTF-8, a NUL, a body line that is a header, and a lone
// line break in a file whose lines are separated by such.
Result WriteProfileSection(const std::string& file, const std::string& section, const std::string& body);

// The following two leave a file without separators as it is: it has no sections then.

// Changes the first header of the old name; separators become "\r\n". A missing section is a success.
// Refused: a bad new name as above.
Result RenameProfileSection(const std::string& file, const std::string& old_name,
                            const std::string& new_name);

// Rewrites the file with nothing in it but its sections, in the order of the names that `order` answers when
// it is given all the file's names: each name once with the body of its first section, no empty lines, "\r\n"
// behind every line. UTF-16 becomes the code page where that holds the text. No names leave the file alone.
using SectionOrder = std::function<std::vector<std::string>(std::vector<std::string>)>;
Result ArrangeProfile(const std::string& file, const SectionOrder& order);

}  // namespace quendle::platform
