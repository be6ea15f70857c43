#include "platform/services/running_copy.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>

#include "platform/entries/descriptor_posix.h"
#include "platform/services/local_socket_posix.h"
#include "support/scoped_variable.h"
#include "support/temp_folder.h"

namespace {

bool g_peer_is_another_user = false;

}  // namespace

// In a program it comes before that of the C library.
extern "C" int getsockopt(int socket, int level, int name, void* value, socklen_t* size) noexcept {
  static const auto next = reinterpret_cast<decltype(&getsockopt)>(dlsym(RTLD_NEXT, "getsockopt"));
  const int outcome = next(socket, level, name, value, size);
  if (g_peer_is_another_user && name == SO_PEERCRED) ++static_cast<ucred*>(value)->uid;
  return outcome;
}

namespace quendle::platform {
namespace {

using test::ScopedVariable;

// "first", "asked another" or why nobody can tell.
std::string Claimed(const std::string& key, std::unique_ptr<RunningCopy>* copy) {
  const Result result = RunningCopy::Claim(key, {}, copy);
  EXPECT_TRUE(result.ok() || (*copy == nullptr && !result.path.empty()));
  if (!result.ok()) return English(result.reason);
  return *copy == nullptr ? "asked another" : "first";
}

std::string Claimed(const std::string& key) {
  std::unique_ptr<RunningCopy> copy;
  return Claimed(key, &copy);
}

// A process that has claimed the key. `is_first` tells how that went; it then stays until it is killed.
class OtherProcess {
 public:
  explicit OtherProcess(const std::string& key) {
    int channel[2];
    if (pipe(channel) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      std::unique_ptr<RunningCopy> copy;
      const char answer = Claimed(key, &copy) == "first" ? 'f' : 'o';
      if (write(channel[1], &answer, 1) == 1) pause();
      _exit(0);
    }
    close(channel[1]);
    char answer = '\0';
    is_first = read(channel[0], &answer, 1) == 1 && answer == 'f';
    close(channel[0]);
  }
  ~OtherProcess() { Kill(); }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  void Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
  }

  bool is_first = false;

 private:
  pid_t process_ = 0;
};

bool IsReadable(const RunningCopy& copy) {
  pollfd waiting = {static_cast<int>(copy.WaitHandle()), POLLIN, 0};
  return poll(&waiting, 1, 0) == 1;
}

GTEST_TEST(RunningCopyPosix, WhatACrashLeavesBehindDoesNotCount) {
  const test::TempFolder folder;
  // Far deeper than the address of a socket can say.
  const std::string deep = folder / std::string(200, 'd');
  fs::create_directory(deep);
  fs::permissions(deep, fs::perms::owner_all);
  const ScopedVariable variable("XDG_RUNTIME_DIR", deep);
  OtherProcess other("key");
  ASSERT_TRUE(other.is_first);
  EXPECT_EQ(Claimed("key"), "asked another");
  other.Kill();
  std::unique_ptr<RunningCopy> copy;
  ASSERT_EQ(Claimed("key", &copy), "first");
  EXPECT_FALSE(OtherProcess("key").is_first);
  EXPECT_TRUE(copy->TakeRequest());
}

// Somebody who knows where the socket is, and speaks when the test says so.
class Stranger {
 public:
  explicit Stranger(const std::string& folder) {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (!entry.is_socket()) continue;
      sockaddr_un address = {};
      address.sun_family = AF_UNIX;
      entry.path().string().copy(address.sun_path, sizeof address.sun_path - 1);
      const auto* generic = reinterpret_cast<const sockaddr*>(&address);
      is_connected = connect(socket_.get(), generic, sizeof address) == 0;
    }
  }
  void Say(std::string_view message) const {
    EXPECT_EQ(send(socket_.get(), message.data(), message.size(), 0), std::ssize(message));
  }
  void Leave() { socket_.Close(); }

  bool is_connected = false;

 private:
  Descriptor socket_ = MakeLocalSocket(SOCK_SEQPACKET);
};

GTEST_TEST(RunningCopyPosix, NobodyIsWaitedForOrBelieved) {
  const test::TempFolder folder;
  const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path());
  std::unique_ptr<RunningCopy> copy;
  ASSERT_EQ(Claimed("key", &copy), "first");
  const Stranger another_user(folder.path());
  another_user.Say({"1\0a\0\0", 5});
  g_peer_is_another_user = true;
  EXPECT_FALSE(copy->TakeRequest());
  g_peer_is_another_user = false;
  EXPECT_FALSE(IsReadable(*copy));
  EXPECT_EQ(copy->TakeLeftPaths().count, 0U);
  const struct {
    std::string message;
    std::vector<std::string> names;
    std::size_t count;
  } rows[] = {
      {{"2\0a\0\0", 5}, {"a"}, 2},        {"", {}, 0},
      {{"1\0a\0b", 5}, {"a", "b"}, 2},    {"x", {}, 0},
      {"99999999999999999999999", {}, 0}, {std::string(3, '\0'), {}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.message);
    Stranger other(folder.path());
    ASSERT_TRUE(other.is_connected);
    EXPECT_TRUE(copy->TakeRequest());
    EXPECT_FALSE(IsReadable(*copy)) << "it has not spoken yet";
    other.Say(row.message);
    other.Leave();
    EXPECT_TRUE(IsReadable(*copy));
    EXPECT_FALSE(copy->TakeRequest()) << "it has asked once";
    EXPECT_FALSE(IsReadable(*copy));
    const LeftPaths left = copy->TakeLeftPaths();
    EXPECT_EQ(left.names, row.names);
    EXPECT_EQ(left.count, row.count);
  }
}

GTEST_TEST(RunningCopyPosix, AFirstOneThatDoesNotListenIsNotWaitedForLong) {
  const test::TempFolder folder;
  const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path());
  ASSERT_EQ(Claimed("key"), "first");  // leaves its lock file
  const std::string path = fs::directory_iterator(folder.path())->path();
  Descriptor lock(open(path.c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0) << path;
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Claimed("key"), "another copy is running, but does not listen");
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  lock.Close();
  EXPECT_EQ(Claimed("key"), "first");
}

GTEST_TEST(RunningCopyPosix, WithoutARuntimeFolderMeetsInOneOfTheUsersOwn) {
  const char* const kRefused = "a link or a file is in the place of the user's own folder";
  const auto make_folder = [](fs::perms rights) {
    return [rights](const std::string& path) {
      fs::create_directory(path);
      fs::permissions(path, rights);
    };
  };
  const struct {
    const char* what;
    std::function<void(const std::string&)> prepare;
    const char* expected;
  } rows[] = {
      {"nothing there", [](const std::string&) {}, "first"},
      {"the user's", make_folder(fs::perms::owner_all), "first"},
      {"writable by all", make_folder(fs::perms::all), "the folder is open to other users"},
      {"a file", [](const std::string& path) { test::WriteFile(path, ""); }, kRefused},
      {"a link",
       [](const std::string& path) { fs::create_directory_symlink(fs::path(path).parent_path(), path); },
       kRefused},
  };
  for (const auto& row : rows) {
    for (const bool has_open_runtime_folder : {false, true}) {
      SCOPED_TRACE(std::string(row.what) + (has_open_runtime_folder ? ", open runtime folder" : ""));
      const test::TempFolder folder;
      fs::create_directory(folder / "run");
      fs::permissions(folder / "run", fs::perms::all);
      const ScopedVariable runtime("XDG_RUNTIME_DIR", has_open_runtime_folder ? folder / "run" : "");
      const ScopedVariable temporary("TMPDIR", folder.path());
      const std::string own = folder / "quendle-" + std::to_string(geteuid());
      row.prepare(own);
      EXPECT_EQ(Claimed("key"), row.expected);
      EXPECT_TRUE(fs::is_empty(folder / "run"));
      if (row.expected == std::string("first")) {
        EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);
      }
    }
  }
}

}  // namespace
}  // namespace quendle::platform
