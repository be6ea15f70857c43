// What an entry of an archive may be called below the folder that it is extracted into. The program and its
// archiver modules both use this one rule.
#pragma once

#include <string>
#include <string_view>

#include "platform/entries/path_names.h"
#include "reasons/result.h"

namespace quendle::platform {

// The end of the name of an entry at which it becomes relative by the rules of every system: without separators, "."
// parts and drives at its beginning. What ".." does there is left to SafeEntryPath.
//   "/a/b" => "a/b"    "//server/x" => "server/x"    "C:\x" => "x"    "C:x" => "x"    "\\?\C:\x" => "x"
//   "/C:/x" => "x"     "C:C:x" => "x"                "/../x" => "../x"    "/" => ""
std::string_view WithoutRoot(std::string_view name);

// Turns the name of an entry, in UTF-8 with "/" or "\" between its parts and, for a folder, at its end, into a
// path relative to the destination, with "/" between the parts and none at the end. Empty parts and "." are
// left out. kRefused, with the reason, for names that lead elsewhere or nowhere: with "..", absolute, with a
// drive, of the network, with a NUL, with nothing left of them, not in UTF-8, with a part or a whole that is
// too long for the system.
//   "a/b.txt" => "a/b.txt"    "a\b\" => "a/b"    "./a//b" => "a/b"
//   "../x", "a/../b", "/x", "\x", "//server/x", "C:x", "C:/x", "", "." => refused
//
// What the system cannot have in a name becomes "_": control characters everywhere; on Windows also
// : * ? " < > |, a blank or dot at the end of a part, and an "_" goes before the name of a device.
//   Windows: "ab:c" => "ab_c"    "a." => "a_"    "con.txt" => "_con.txt"    "COM¹" => "_COM¹"
Result SafeEntryPath(std::string_view name, NameRules rules, std::string* path);

// The same for what is left of such a name without its first parts, which may be nothing. Below a folder a colon
// is no drive: "C:x" => "C:x".
Result SafeRestOfPath(std::string_view rest, NameRules rules, std::string* path);

// Where a link at the safe path `path` may lead: relative, and in the destination for certain, whatever other
// links there are: the only ".." are at its beginning and no more than the link lies deep. kRefused otherwise.
//   ("a/link", "../b") => fine    ("link", "../b"), ("a/link", "b/../c"), ("link", "/etc") => refused
Result CheckLinkTarget(std::string_view path, std::string_view target);

}  // namespace quendle::platform
