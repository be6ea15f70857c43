// Starts a program on an X server without a window manager and prints the milliseconds until something is painted in a window
// of its own: first_paint PROGRAM [ARGUMENT...]
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

// Children of the root are told as they are made; each is watched for painting from then on.
bool WaitForPaint(xcb_connection_t* display, std::uint8_t damage_event) {
  while (Reply<xcb_generic_event_t> event{xcb_wait_for_event(display)}) {
    const int type = event->response_type & 0x7F;
    if (type == XCB_CREATE_NOTIFY) {
      const auto* made = reinterpret_cast<const xcb_create_notify_event_t*>(event.get());
      const xcb_damage_damage_t damage = xcb_generate_id(display);
      // Input-only helper windows cannot be painted, and one pixel is no window for people.
      if (made->width > 1) {
        xcb_damage_create(display, damage, made->window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        xcb_flush(display);
      }
    } else if (type == damage_event) {
      const auto* painted = reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
      if (painted->area.width > 50) return true;
    }
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  xcb_connection_t* display = xcb_connect(nullptr, nullptr);
  if (argc < 2 || xcb_connection_has_error(display) != 0) return 2;
  const xcb_query_extension_reply_t* damage = xcb_get_extension_data(display, &xcb_damage_id);
  Reply<xcb_damage_query_version_reply_t> version{
      xcb_damage_query_version_reply(display, xcb_damage_query_version(display, 1, 1), nullptr)};
  if (damage == nullptr || damage->present == 0 || !version) return 2;
  const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(display)).data;
  xcb_change_window_attributes(display, screen->root, XCB_CW_EVENT_MASK, &mask);
  xcb_flush(display);

  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    execvp(argv[1], argv + 1);
    _exit(127);
  }
  alarm(20);
  const bool painted =
      WaitForPaint(display, static_cast<std::uint8_t>(damage->first_event + XCB_DAMAGE_NOTIFY));
  const std::chrono::duration<double, std::milli> passed = std::chrono::steady_clock::now() - begin;
  kill(child, SIGTERM);
  waitpid(child, nullptr, 0);
  std::printf("%.1f\n", passed.count());
  return painted ? 0 : 1;
}
