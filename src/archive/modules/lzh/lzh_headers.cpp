#include "archive/modules/lzh/lzh_headers.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "archive/modules/common/checksum.h"
#include "archive/modules/common/entry_names.h"
#include "archive/modules/common/entry_times.h"
#include "archive/modules/common/little_endian.h"
#include "platform/text/unicode.h"

namespace quendle::modules {
namespace {

constexpr std::size_t kFirstRead = 1024;      // enough for most headers
constexpr std::size_t kLargest = 1U << 20;    // of a header; more is none
constexpr std::size_t kMostExtensions = 256;  // of one header, for each type one
constexpr std::size_t kLeast = 22;
constexpr std::uint32_t kUtf8CodePage = 65001;

// Such as "-lh5-". Which of them are known is not asked here: an entry by another one is to be told as such.
bool IsMethod(std::string_view method) {
  const auto is_word = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  };
  return method.size() == 5 && method[0] == '-' && method[4] == '-' &&
         std::all_of(method.begin() + 1, method.end() - 1, is_word);
}

// Reads one header from bytes that begin with it and may go on behind it.
class Parser {
 public:
  explicit Parser(std::string_view bytes) : bytes_(bytes) {}

  bool Parse() {
    if (bytes_.size() < kLeast || !IsMethod(bytes_.substr(2, 5))) return false;
    header_.method = bytes_.substr(2, 5);
    header_.packed_size = Number(7, 4);
    header_.size = Number(11, 4);
    const std::uint64_t level = Number(20, 1);
    if (!(level < 2 ? ParseOld(level) : level < 4 && ParseNew(level))) return false;
    if (common_crc_position_ != 0 && !CommonCrcHolds()) return false;
    if (header_.system == kOs9) header_.unix_mode.reset();
    JoinPath();
    header_.content_position = size_;
    return true;
  }
  LzhHeader Take() { return std::move(header_); }
  // Parse() fails without so many bytes; 0: it fails anyway.
  std::size_t Needed() const { return needed_; }

 private:
  static constexpr char kOs9 = 'K';

  bool Need(std::size_t size) {
    if (size > bytes_.size()) needed_ = size;
    return size <= bytes_.size();
  }
  std::uint64_t Number(std::size_t at, std::size_t width) const { return LittleEndian(bytes_, at, width); }

  // Levels 0 and 1: a sum of bytes, the name, the time of DOS.
  bool ParseOld(std::uint64_t level) {
    const auto base = static_cast<std::size_t>(Number(0, 1)) + 2;
    const auto name_size = static_cast<std::size_t>(Number(21, 1));
    const std::size_t crc_at = kLeast + name_size;
    const bool has_crc = base >= crc_at + 2;
    if (base > bytes_.size() || !(has_crc || (level == 0 && base == crc_at))) return false;
    unsigned sum = 0;
    for (const char c : bytes_.substr(2, base - 2)) sum += static_cast<unsigned char>(c);
    if ((sum & 0xFF) != Number(1, 1)) return false;
    name_ = bytes_.substr(kLeast, name_size);
    if (has_crc) header_.crc = static_cast<std::uint16_t>(Number(crc_at, 2));
    if (base > crc_at + 2) header_.system = bytes_[crc_at + 2];
    header_.time = TimeFromDos(static_cast<std::uint32_t>(Number(15, 4)));
    size_ = base;
    if (level == 0) {
      ParseUnixArea(crc_at + 2, base);
      return true;
    }
    if (base < crc_at + 5 || !ParseExtensions(Number(base - 2, 2), 2)) return false;
    // The size of what follows the base header counts the extensions, too.
    if (!has_large_sizes_ && header_.packed_size < size_ - base) return false;
    if (!has_large_sizes_) header_.packed_size -= size_ - base;
    return true;
  }

  // What LHa for UNIX puts behind headers of level 0.
  void ParseUnixArea(std::size_t at, std::size_t end) {
    if (end >= at + 12 && bytes_[at] == 'U') {
      header_.time = {static_cast<std::int64_t>(Number(at + 2, 4)), 0};
      header_.unix_mode = static_cast<std::uint32_t>(Number(at + 6, 2));
    }
  }

  // Levels 2 and 3: the size of the whole, the time of Unix, everything else in extensions.
  bool ParseNew(std::uint64_t level) {
    const bool is_wide = level == 3;
    const auto whole = static_cast<std::size_t>(is_wide ? Number(24, 4) : Number(0, 2));
    const std::size_t first = is_wide ? 28 : 24;
    const std::size_t width = is_wide ? 4 : 2;
    if (is_wide && Number(0, 2) != width) return false;
    if (whole > kLargest || whole < first + width || !Need(whole)) return false;
    header_.time = {static_cast<std::int64_t>(Number(15, 4)), 0};
    header_.crc = static_cast<std::uint16_t>(Number(21, 2));
    header_.system = bytes_[23];
    // Packers for OS-9 do not count the two bytes of the size itself.
    const std::size_t uncounted = !is_wide && header_.system == kOs9 ? 2 : 0;
    bytes_ = bytes_.substr(0, whole + uncounted);
    size_ = first + width;
    if (!ParseExtensions(Number(first, width), width)) return false;
    // A byte may follow so that the size does not look like an end.
    size_ = size_ > whole ? whole + uncounted : whole;
    return Need(size_);
  }

  // Each extension ends with the size of the next one.
  bool ParseExtensions(std::uint64_t next, std::size_t width) {
    for (std::size_t count = 0; next != 0; ++count) {
      if (count == kMostExtensions) return false;
      const auto size = static_cast<std::size_t>(next);
      if (size < width + 1 || size > kLargest || !Need(size_ + size)) return false;
      ParseExtension(static_cast<std::uint8_t>(bytes_[size_]), size_ + 1,
                     bytes_.substr(size_ + 1, size - width - 1));
      next = Number(size_ + size - width, width);
      size_ += size;
    }
    return size_ <= kLargest;
  }

  void ParseExtension(std::uint8_t type, std::size_t at, std::string_view data) {
    const auto number = [&data](std::size_t position, std::size_t width) {
      return LittleEndian(data, position, width);
    };
    if (type == 0x00 && data.size() >= 2) {
      common_crc_position_ = at;
    } else if (type == 0x01) {
      name_ = data;
    } else if (type == 0x02) {
      folder_ = data;
    } else if (type == 0x41 && data.size() >= 16) {
      if (!has_unix_time_) header_.time = TimeFromNtfs(number(8, 8));
    } else if (type == 0x42 && data.size() >= 16) {
      has_large_sizes_ = true;
      header_.packed_size = number(0, 8);
      header_.size = number(8, 8);
    } else if (type == 0x44) {
      wide_name_ = data;
    } else if (type == 0x45) {
      wide_folder_ = data;
    } else if (type == 0x46 && data.size() >= 4) {
      code_page_ = static_cast<std::uint32_t>(number(0, 4));
    } else if (type == 0x50 && data.size() >= 2) {
      header_.unix_mode = static_cast<std::uint32_t>(number(0, 2));
    } else if (type == 0x54 && data.size() >= 4) {
      has_unix_time_ = true;
      header_.time = {static_cast<std::int64_t>(number(0, 4)), 0};
    }
  }

  // The checksum over the header with itself being zero.
  bool CommonCrcHolds() const {
    Crc16Sum crc;
    crc.Add(bytes_.substr(0, common_crc_position_));
    crc.Add(std::string_view("\0\0", 2));
    crc.Add(bytes_.substr(common_crc_position_ + 2, size_ - common_crc_position_ - 2));
    return crc.Value() == Number(common_crc_position_, 2);
  }

  // Names in UTF-16 count more than those in some code page.
  void JoinPath() {
    if (wide_name_.empty()) {
      header_.path = folder_;
      if (!folder_.empty() && !folder_.ends_with('\xFF') && !folder_.ends_with('/')) header_.path += '/';
      header_.path += name_.substr(0, name_.find('\0'));
      std::replace(header_.path.begin(), header_.path.end(), '\xFF', '/');
      header_.is_utf8 = code_page_ == kUtf8CodePage;
      const std::string charset = std::string("CP").append(std::to_string(code_page_));
      if (code_page_ != 0 && !header_.is_utf8 && IsKnownCharset(charset)) header_.charset = charset;
      return;
    }
    std::string wide(wide_folder_);
    for (std::size_t at = 0; at + 1 < wide.size(); at += 2) {
      if (wide[at] == '\xFF' && wide[at + 1] == '\xFF') wide.replace(at, 2, "/\0", 2);
    }
    header_.path = platform::FromUtf16Le(wide.append(wide_name_));
    header_.is_utf8 = true;
  }

  std::string_view bytes_;
  std::size_t size_ = 0;  // of the header so far
  std::size_t needed_ = 0;
  LzhHeader header_;
  std::string_view folder_;
  std::string_view name_;
  std::string_view wide_folder_;
  std::string_view wide_name_;
  std::uint32_t code_page_ = 0;
  std::size_t common_crc_position_ = 0;
  bool has_unix_time_ = false;
  bool has_large_sizes_ = false;
};

}  // namespace

std::optional<LzhHeader> ParseLzhHeader(std::string_view bytes, std::size_t* needed) {
  Parser parser(bytes);
  if (parser.Parse()) return parser.Take();
  if (needed != nullptr) *needed = parser.Needed();
  return std::nullopt;
}

bool HasLzhMethod(std::string_view bytes) {
  for (std::size_t at = bytes.find('-', 2); at != bytes.npos; at = bytes.find('-', at + 1)) {
    const std::string_view family = bytes.substr(at, 3);
    const bool is_known = family == "-lh" || family == "-lz" || family == "-pm";
    if (is_known && IsMethod(bytes.substr(at, 5))) return true;
  }
  return false;
}

std::optional<LzhHeader> ReadLzhHeader(const ArchiveInput& input, std::uint64_t position) {
  std::string bytes;
  for (std::size_t size = kFirstRead;;) {
    bytes.resize(size);
    std::size_t got = 0;
    if (!input.ReadAt(position, bytes.data(), size, &got).ok()) return std::nullopt;
    std::size_t needed = 0;
    if (auto header = ParseLzhHeader(std::string_view(bytes).substr(0, got), &needed)) {
      header->content_position += position;
      return header;
    }
    if (got < size || needed == 0 || needed > kLargest) return std::nullopt;
    size = std::min(kLargest, std::max(needed, 4 * size));
  }
}

Entry ToEntry(const LzhHeader& header, const std::string& charset) {
  constexpr std::uint32_t kKindOfMode = 0170000;
  constexpr std::uint32_t kLinkMode = 0120000;
  const auto decode = [&](std::string_view bytes) {
    return DecodeName(bytes, header.is_utf8, header.charset.empty() ? charset : header.charset);
  };
  const std::uint32_t mode = header.unix_mode.value_or(0);
  Entry entry;
  const std::size_t bar = header.path.find('|');
  if (header.method != "-lhd-") {
    entry.path = decode(header.path);
    entry.size = header.size;
    entry.attributes.executable = (mode & 0111) != 0;
  } else if ((mode & kKindOfMode) == kLinkMode && bar != header.path.npos) {
    entry.kind = EntryKind::kLink;
    entry.path = decode(std::string_view(header.path).substr(0, bar));
    entry.link_target = decode(std::string_view(header.path).substr(bar + 1));
  } else {
    entry.kind = EntryKind::kFolder;
    entry.path = decode(header.path);
    if (!entry.path.ends_with('/')) entry.path += '/';
  }
  entry.packed_size = header.packed_size;
  entry.crc = header.crc.value_or(0);
  entry.method = header.method;
  entry.attributes.write_time = header.time;
  return entry;
}

}  // namespace quendle::modules
