#include <iconv.h>

#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/text/code_page.h"
#include "platform/text/unicode.h"

namespace quendle::platform {
namespace {

bool IsAscii(char byte) {
  return static_cast<unsigned char>(byte) < 0x80;
}

// The length of the ASCII characters that `text` begins with.
std::size_t AsciiLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && IsAscii(text[length])) ++length;
  return length;
}

// One direction of the conversion. Opening loads a module from disk, so a thread that needs it opens it once.
class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  ~Converter() {
    if (is_open()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // False on systems that keep the module in a package of its own which is not installed.
  bool is_open() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  // Forgets the shift state that earlier text ended in.
  void Reset() { iconv(handle_, nullptr, nullptr, nullptr, nullptr); }

  // Appends the conversion of as much of `*input` as can be converted and takes that off it.
  void Convert(std::string_view* input, std::string* output) {
    char* from = const_cast<char*>(input->data());  // iconv does not write there
    std::size_t left = input->size();
    int error = E2BIG;
    while (left > 0 && error == E2BIG) {
      char room[4096];
      char* to = room;
      std::size_t space = sizeof room;
      error = iconv(handle_, &from, &left, &to, &space) == std::size_t(-1) ? errno : 0;
      output->append(room, static_cast<std::size_t>(to - room));
    }
    input->remove_prefix(input->size() - left);
  }

 private:
  iconv_t handle_;
};

Converter& Decoder() {
  thread_local Converter converter("UTF-8", "CP932");
  return converter;
}

Converter& Encoder() {
  thread_local Converter converter("CP932", "UTF-8");
  return converter;
}

// The system's own Shift_JIS lacks the Microsoft extensions and has a yen sign in place of the backslash. A slash
// would add instructions for the converter to the name.
std::string ConverterName(const std::string& encoding) {
  if (encoding.empty() || encoding.find('/') != std::string::npos) return "none";
  std::string name = UpperCase(encoding);
  for (const char* alias : {"WINDOWS-31J", "SHIFT_JIS", "SHIFT-JIS", "SJIS", "MS_KANJI", "MS932", "932"}) {
    if (name == alias) return "CP932";
  }
  return name;
}

}  // namespace

std::string TextFromAnsi(std::string_view bytes) {
  const std::size_t plain = AsciiLength(bytes);
  std::string text(bytes.substr(0, plain));
  bytes.remove_prefix(plain);
  while (!bytes.empty()) {
    if (Decoder().is_open()) {
      Decoder().Convert(&bytes, &text);
    }
    if (!bytes.empty()) {
      const auto byte = static_cast<unsigned char>(bytes.front());
      AppendCodePoint(byte < 0x80 ? byte : kFirstUndecodableByte + (byte - 0x80U), &text);
      bytes.remove_prefix(1);
    }
  }
  return text;
}

std::optional<std::string> AnsiFromText(std::string_view text) {
  const std::size_t plain = AsciiLength(text);
  std::string bytes(text.substr(0, plain));
  std::string_view rest = text.substr(plain);
  if (rest.empty()) return bytes;
  while (!rest.empty()) {
    if (Encoder().is_open()) {
      Encoder().Convert(&rest, &bytes);
      if (rest.empty()) break;
    }
    char32_t code_point = 0;
    if (!TakeCodePoint(&rest, &code_point)) return std::nullopt;
    if (code_point >= 0x80 && !IsUndecodableByte(code_point)) return std::nullopt;
    bytes.push_back(
        static_cast<char>(code_point < 0x80 ? code_point : code_point - kFirstUndecodableByte + 0x80));
  }
  // Some characters encode to bytes that decode to others, U+00A5 to those of the backslash, and bytes that
  // stand for themselves can form a character with what follows them.
  if (TextFromAnsi(bytes) != text) return std::nullopt;
  return bytes;
}

std::size_t AnsiWidth(char32_t code_point) {
  const bool is_half_width_katakana = code_point >= 0xFF61 && code_point <= 0xFF9F;
  return code_point < 0x80 || is_half_width_katakana || IsUndecodableByte(code_point) ? 1 : 2;
}

std::optional<std::string> TextFromEncoding(std::string_view bytes, const std::string& encoding) {
  // The names of an archive all have one encoding, and opening a converter for each would take most of the time.
  thread_local std::string opened;
  thread_local std::unique_ptr<Converter> converter;
  if (converter == nullptr || opened != encoding) {
    converter = std::make_unique<Converter>("UTF-8", ConverterName(encoding).c_str());
    opened = encoding;
  }
  if (!converter->is_open()) return std::nullopt;
  converter->Reset();
  std::string text;
  converter->Convert(&bytes, &text);
  if (!bytes.empty()) return std::nullopt;
  return text;
}

Result CheckDecoded(std::string_view text) {
  if (Decoder().is_open()) return Success();
  while (!text.empty()) {
    char32_t code_point = 0;
    if (TakeCodePoint(&text, &code_point) && IsUndecodableByte(code_point)) {
      return Failure(Code::kRefused, "", why::kNoConverter);
    }
  }
  return Success();
}

}  // namespace quendle::platform
