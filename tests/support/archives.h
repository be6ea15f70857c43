// Archives for a test: made in memory, and read by a family as a module reads them.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/family.h"
#include "platform/text/unicode.h"
#include "platform/text/utf8_locale.h"
#include "support/temp_folder.h"

namespace quendle::test {

// `value` in `width` bytes, lowest first.
inline std::string Number(std::uint64_t value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<char>(i < 8 ? value >> (8 * i) & 0xFF : 0));
  return bytes;
}

// "0aFF" => "\x0A\xFF"
inline std::string FromHex(std::string_view digits) {
  std::string bytes;
  for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
    bytes.push_back(static_cast<char>(std::stoi(std::string(digits.substr(at, 2)), nullptr, 16)));
  }
  return bytes;
}

inline void Patch(std::string* bytes, std::size_t position, std::uint64_t value, int width) {
  bytes->replace(position, static_cast<std::size_t>(width), Number(value, width));
}

struct StoredEntry {
  std::string name;  // raw
  std::string content = {};
  unsigned flags = 0;
  std::string extra = {};      // of the directory
  unsigned made_by = 0;        // 3 << 8: Unix
  std::uint32_t external = 0;  // attributes
  unsigned volume = 0;
  std::size_t volume_start = 0;  // among all bytes
};

// A ZIP archive of stored entries behind `front`, which its positions count when `counts_front`.
inline std::string StoredZip(const std::vector<StoredEntry>& entries, const std::string& front = "",
                             bool counts_front = false, const std::string& comment = "") {
  std::string bytes = front;
  std::string directory;
  const std::size_t skipped = counts_front ? 0 : front.size();
  for (const StoredEntry& entry : entries) {
    const std::string common = Number(entry.flags, 2) + Number(0, 2) + Number(0x5A8F6000, 4) +
                               Number(modules::Crc32(entry.content), 4) + Number(entry.content.size(), 4) +
                               Number(entry.content.size(), 4) + Number(entry.name.size(), 2);
    directory += "PK\1\2" + Number(entry.made_by | 20, 2) + Number(20, 2) + common +
                 Number(entry.extra.size(), 2) + Number(0, 2) + Number(entry.volume, 2) + Number(0, 2) +
                 Number(entry.external, 4) + Number(bytes.size() - skipped - entry.volume_start, 4) +
                 entry.name + entry.extra;
    bytes += "PK\3\4" + Number(20, 2) + common + Number(0, 2) + entry.name + entry.content;
  }
  const std::size_t start = bytes.size() - skipped;
  return bytes + directory + "PK\5\6" + Number(0, 4) + Number(entries.size(), 2) + Number(entries.size(), 2) +
         Number(directory.size(), 4) + Number(start, 4) + Number(comment.size(), 2) + comment;
}

struct PackedEntry {
  std::string name;
  std::string content = {};
  unsigned mode = AE_IFREG | 0644;  // of a link the content is the target
  std::int64_t seconds = 1'600'000'000;
  std::int32_t nanoseconds = 0;
};

// Units of the system's own width; the C library's conversion would ask the locale.
inline std::wstring WideName(std::string_view name) {
  std::wstring wide;
  for (char32_t character; !name.empty();) {
    (void)platform::TakeCodePoint(&name, &character);
    if (sizeof(wchar_t) == 2 && character > 0xFFFF) {
      wide += static_cast<wchar_t>(0xD7C0 + (character >> 10));
      character = 0xDC00 + (character & 0x3FF);
    }
    wide += static_cast<wchar_t>(character);
  }
  return wide;
}

// An archive by libarchive's writer for `format`, such as "zip" or "7zip", with its `options`. Empty when that
// cannot write it.
inline std::string Pack(const char* format, const std::string& options,
                        const std::vector<PackedEntry>& entries, const char* password = nullptr) {
  const platform::Utf8Locale utf8;
  std::string bytes(1U << 22, '\0');
  std::size_t used = 0;
  archive* writer = archive_write_new();
  bool good = archive_write_set_format_by_name(writer, format) == ARCHIVE_OK;
  good = good && archive_write_set_bytes_in_last_block(writer, 1) == ARCHIVE_OK;
  good = good && archive_write_set_options(writer, options.c_str()) == ARCHIVE_OK;
  if (password != nullptr) good = good && archive_write_set_passphrase(writer, password) == ARCHIVE_OK;
  good = good && archive_write_open_memory(writer, bytes.data(), bytes.size(), &used) == ARCHIVE_OK;
  for (const PackedEntry& packed : entries) {
    archive_entry* entry = archive_entry_new();
    archive_entry_copy_pathname_w(entry, WideName(packed.name).c_str());
    archive_entry_set_mode(entry, static_cast<decltype(archive_entry_mode(entry))>(packed.mode));
    archive_entry_set_mtime(entry, packed.seconds, packed.nanoseconds);
    const bool is_link = (packed.mode & AE_IFMT) == AE_IFLNK;
    if (is_link) archive_entry_set_symlink(entry, packed.content.c_str());
    archive_entry_set_size(entry, is_link ? 0 : static_cast<la_int64_t>(packed.content.size()));
    good = good && archive_write_header(writer, entry) == ARCHIVE_OK;
    if (!is_link && !packed.content.empty()) {
      good = good && archive_write_data(writer, packed.content.data(), packed.content.size()) >= 0;
    }
    archive_entry_free(entry);
  }
  good = good && archive_write_close(writer) == ARCHIVE_OK;
  archive_write_free(writer);
  bytes.resize(good ? used : 0);
  return bytes;
}

struct Unpacked {
  modules::Entry entry;
  std::string content;
  Reason problem;  // empty: it is whole
};

struct UnpackedArchive {
  std::vector<Unpacked> entries;  // by the first engine
  Reason problem;                 // empty: these are all

  // "a.txt=hello dir/ link>a.txt bad!its reason" and the problem of the archive in the end
  std::string Text() const {
    std::string text;
    for (const auto& [entry, content, wrong] : entries) {
      text += (text.empty() ? "" : " ") + entry.path;
      if (entry.kind == modules::EntryKind::kFile && wrong.empty()) text.append("=").append(content);
      if (entry.kind == modules::EntryKind::kLink) text.append(">").append(entry.link_target);
      if (!wrong.empty()) text.append("!").append(English(wrong));
    }
    return problem.empty() ? text : text.append("!").append(English(problem));
  }
};

// Notes what a reader unpacks.
class Collector : public modules::EntrySink {
 public:
  explicit Collector(UnpackedArchive* unpacked) : entries_(unpacked->entries) {}

  bool IsLocked() const { return is_locked_; }
  bool Wants(const modules::Entry&) override { return true; }
  bool GoesOn() override { return true; }
  bool Begin(modules::Entry entry, bool) override {
    entries_.push_back({std::move(entry), "", {}});
    return true;
  }
  Wish Content(std::string_view piece) override {
    EXPECT_FALSE(piece.empty());
    entries_.back().content += piece;
    return Wish::kMore;
  }
  bool End(modules::ReadStatus status, const Reason& problem) override {
    EXPECT_EQ(status == modules::ReadStatus::kEnd, problem.empty());
    entries_.back().problem = problem;
    is_locked_ = is_locked_ || status == modules::ReadStatus::kPassword;
    return true;
  }

 private:
  std::vector<Unpacked>& entries_;
  bool is_locked_ = false;
};

inline std::unique_ptr<platform::InputFile> Opened(const std::string& path) {
  std::unique_ptr<platform::InputFile> file;
  EXPECT_TRUE(platform::InputFile::Open(path, &file).ok()) << path;
  return file;
}

// Reads the archive by that engine, with each of the passwords until all of it is open.
inline UnpackedArchive UnpackBy(const modules::Engine& engine, const modules::ArchiveInput& input,
                                const std::string& charset, modules::Passwords* passwords) {
  for (;;) {
    UnpackedArchive unpacked;
    const auto reader =
        engine.open(input, {charset, [passwords] { return passwords->Current(); }}, &unpacked.problem);
    if (!reader) return unpacked;
    Collector collector(&unpacked);
    const modules::ReadStatus status = reader->Unpack(&collector);
    if (status != modules::ReadStatus::kEnd) unpacked.problem = reader->Problem();
    const bool is_locked = collector.IsLocked() || status == modules::ReadStatus::kPassword;
    if (!is_locked || !passwords->Advance()) return unpacked;
  }
}

// Reads the archive at `path`: all entries with all content. `passwords` are tried in turn.
inline UnpackedArchive Unpack(const modules::Family& family, const std::string& path,
                              const std::vector<std::string>& passwords = {},
                              const std::string& charset = "") {
  UnpackedArchive unpacked;
  std::unique_ptr<platform::InputFile> file;
  if (!platform::InputFile::Open(path, &file).ok()) return {{}, Reason("there is no file")};
  const auto input = family.find(std::move(file), &unpacked.problem);
  if (!input && unpacked.problem.empty()) unpacked.problem = Reason("no archive");
  if (!input) return unpacked;
  std::vector<modules::Engine> engines = family.engines(*input);
  if (family.check != nullptr) unpacked.problem = family.check(*input, &engines).reason;
  if (!unpacked.problem.empty()) return unpacked;
  modules::Passwords tried(
      [&passwords, next = std::size_t{0}]() mutable {
        return next < passwords.size() ? std::optional(passwords[next++]) : std::nullopt;
      },
      family.passwords);
  return UnpackBy(engines.front(), *input, charset, &tried);
}

inline UnpackedArchive UnpackBytes(const modules::Family& family, const std::string& bytes,
                                   const std::vector<std::string>& passwords = {},
                                   const std::string& charset = "") {
  const TempFolder folder;
  WriteFile(folder / "a", bytes);
  return Unpack(family, folder / "a", passwords, charset);
}

}  // namespace quendle::test
