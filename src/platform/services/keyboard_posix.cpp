#include "platform/process/process.h"
#include "platform/services/keyboard.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <xcb/xcb.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/entries/descriptor_posix.h"
#include "platform/entries/path_names.h"
#include "platform/services/known_folders.h"
#include "platform/services/local_socket_posix.h"

namespace quendle::platform {
namespace {

struct KeySymbols {
  xcb_keysym_t left;
  xcb_keysym_t right;
};
constexpr KeySymbols kControlSymbols = {0xffe3, 0xffe4};  // XK_Control_L, XK_Control_R
constexpr KeySymbols kAltSymbols = {0xffe9, 0xffea};      // XK_Alt_L, XK_Alt_R

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

// The X server of the session, by a library that is only loaded here: most runs never ask. It stays loaded, since
// whoever asked often opens a window next, for which it would be loaded again.
class Display {
 public:
  Display() : library_(dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL)) {
    if (library_ != nullptr && FindFunctions()) connection_ = connect_(nullptr, nullptr);
  }
  ~Display() {
    if (connection_ != nullptr) disconnect_(connection_);
  }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  bool Answers() const { return connection_ != nullptr && has_error_(connection_) == 0; }

  bool IsAnyDown(const KeySymbols& symbols) const {
    const xcb_setup_t* setup = get_setup_(connection_);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mapping_cookie = get_mapping_(connection_, setup->min_keycode, count);
    const auto keymap_cookie = query_keymap_(connection_);  // both are under way before either is waited for
    const ReplyPointer<xcb_get_keyboard_mapping_reply_t> mapping(
        mapping_reply_(connection_, mapping_cookie, nullptr), &std::free);
    const ReplyPointer<xcb_query_keymap_reply_t> keymap(keymap_reply_(connection_, keymap_cookie, nullptr),
                                                        &std::free);
    if (mapping == nullptr || keymap == nullptr || mapping->keysyms_per_keycode == 0) return false;
    const xcb_keysym_t* found = mapping_symbols_(mapping.get());
    for (int i = 0; i < mapping_length_(mapping.get()); ++i) {
      if (found[i] != symbols.left && found[i] != symbols.right) continue;
      const int code = setup->min_keycode + i / mapping->keysyms_per_keycode;
      if ((keymap->keys[code / 8] & (1U << (code % 8))) != 0) return true;
    }
    return false;
  }

 private:
  template <typename Function>
  bool Find(const char* name, Function* function) {
    *function = reinterpret_cast<Function>(dlsym(library_, name));
    return *function != nullptr;
  }

  bool FindFunctions() {
    return Find("xcb_connect", &connect_) && Find("xcb_disconnect", &disconnect_) &&
           Find("xcb_connection_has_error", &has_error_) && Find("xcb_get_setup", &get_setup_) &&
           Find("xcb_query_keymap", &query_keymap_) && Find("xcb_query_keymap_reply", &keymap_reply_) &&
           Find("xcb_get_keyboard_mapping", &get_mapping_) &&
           Find("xcb_get_keyboard_mapping_reply", &mapping_reply_) &&
           Find("xcb_get_keyboard_mapping_keysyms", &mapping_symbols_) &&
           Find("xcb_get_keyboard_mapping_keysyms_length", &mapping_length_);
  }

  void* library_;
  xcb_connection_t* connection_ = nullptr;
  decltype(&xcb_connect) connect_ = nullptr;
  decltype(&xcb_disconnect) disconnect_ = nullptr;
  decltype(&xcb_connection_has_error) has_error_ = nullptr;
  decltype(&xcb_get_setup) get_setup_ = nullptr;
  decltype(&xcb_query_keymap) query_keymap_ = nullptr;
  decltype(&xcb_query_keymap_reply) keymap_reply_ = nullptr;
  decltype(&xcb_get_keyboard_mapping) get_mapping_ = nullptr;
  decltype(&xcb_get_keyboard_mapping_reply) mapping_reply_ = nullptr;
  decltype(&xcb_get_keyboard_mapping_keysyms) mapping_symbols_ = nullptr;
  decltype(&xcb_get_keyboard_mapping_keysyms_length) mapping_length_ = nullptr;
};

bool AnswersOnX() {
  return EnvironmentVariable("DISPLAY") && Display().Answers();
}

bool AnswersOnWayland() {
  std::string path = EnvironmentVariable("WAYLAND_DISPLAY").value_or("");
  if (path.empty()) return false;
  if (path.front() != '/') {
    const std::string folder = RuntimeFolder();
    if (folder.empty()) return false;
    path.insert(0, folder + "/");
  }
  const Descriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Descriptor connection = MakeLocalSocket(SOCK_STREAM);
  if (!folder.ok() || !connection.ok()) return false;
  const int error = ConnectSocket(connection.get(), folder.get(), NameOf(path));
  return error == 0 || error == EAGAIN;  // a full queue is a busy display
}

}  // namespace

bool IsKeyDown(Key key) {
  if (!EnvironmentVariable("DISPLAY")) return false;
  const Display display;
  return display.Answers() && display.IsAnyDown(key == Key::kControl ? kControlSymbols : kAltSymbols);
}

bool HasDisplay() {
  const std::string place = EnvironmentVariable("QT_QPA_PLATFORM").value_or("");
  if (place == "xcb") return AnswersOnX();
  // Somebody who says where windows go is believed: not every place is a server that could be asked.
  return !place.empty() || AnswersOnWayland() || AnswersOnX();
}

}  // namespace quendle::platform
