#include "platform/process/system_failure.h"
#include "platform/services/running_copy.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>

#include "platform/entries/descriptor_posix.h"
#include "platform/services/known_folders.h"
#include "platform/services/local_socket_posix.h"
#include "platform/text/text_hash.h"

namespace quendle::platform {
namespace {

constexpr std::chrono::milliseconds kPatience{1000};  // with a first copy that is just beginning or ending
constexpr std::chrono::milliseconds kBetweenTries{10};
constexpr int kWaitingRequests = 128;
constexpr std::size_t kSilentConnections = 128;  // that are kept
constexpr std::size_t kMessageSize = 65536;

// Opens a folder that nobody but this user can put anything into.
Result OpenPrivateFolder(const std::string& path, Descriptor* folder) {
  Descriptor opened(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened.ok()) {
    if (errno != ENOTDIR && errno != ELOOP) return LastSystemFailure(path);
    return Failure(Code::kRefused, path, why::kOwnFolderReplaced);
  }
  struct stat status;
  if (fstat(opened.get(), &status) != 0) return LastSystemFailure(path);
  if (status.st_uid != geteuid()) return Failure(Code::kRefused, path, why::kFolderOfOther);
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return Failure(Code::kRefused, path, why::kFolderOpenToOthers);
  }
  *folder = std::move(opened);
  return Success();
}

// A runtime folder that is not this user's alone, as after becoming another user, is none.
Result OpenMeetingFolder(std::string* path, Descriptor* folder) {
  *path = RuntimeFolder();
  if (!path->empty() && OpenPrivateFolder(*path, folder).ok()) return Success();
  *path = TemporaryFolder() + "/quendle-" + std::to_string(geteuid());
  if (mkdir(path->c_str(), S_IRWXU) != 0 && errno != EEXIST) return LastSystemFailure(*path);
  return OpenPrivateFolder(*path, folder);
}

bool IsSameUser(int connection) {
  ucred peer = {};
  socklen_t size = sizeof peer;
  return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

}  // namespace

// Who holds the lock is the first copy. The system lets go of it when that copy ends in whatever way; the
// file stays for good, since a copy that had opened it before it was removed could lock what no later copy
// finds, and there would be two first ones.
struct RunningCopy::State {
  std::string path;  // of the folder, for failures
  std::string name;  // of the entries in it, without their endings
  Descriptor folder;
  Descriptor lock;
  Descriptor socket;
  Descriptor events;                    // readable when the socket or a connection is
  std::vector<Descriptor> connections;  // of copies that have said nothing yet
  LeftPaths left_paths;
  bool is_first = false;

  ~State() {
    if (!is_first) return;
    if (socket.ok()) unlinkat(folder.get(), SocketName().c_str(), 0);
    socket.Close();  // whoever comes now finds no socket and waits for the lock
    // Not left to closing: a child of this process that has not become its program yet has it open, too.
    flock(lock.get(), LOCK_UN);
  }

  std::string SocketName() const { return name + ".socket"; }
  std::string Shown(const char* ending) const { return path + "/" + name + ending; }

  Result Open(const std::string& key) {
    if (Result opened = OpenMeetingFolder(&path, &folder); !opened.ok()) return opened;
    name = "quendle-" + HashText(key);
    lock = Descriptor(openat(folder.get(), (name + ".lock").c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    return lock.ok() ? Success() : LastSystemFailure(Shown(".lock"));
  }

  Result TryLock() {
    is_first = Retried([&] { return flock(lock.get(), LOCK_EX | LOCK_NB); }) == 0;
    return is_first || errno == EWOULDBLOCK ? Success() : LastSystemFailure(Shown(".lock"));
  }

  // For the holder of the lock: a socket that is there was left behind by a copy that crashed.
  Result Listen() {
    if (unlinkat(folder.get(), SocketName().c_str(), 0) != 0 && errno != ENOENT) {
      return LastSystemFailure(Shown(".socket"));
    }
    Descriptor made = MakeLocalSocket(SOCK_SEQPACKET);
    events = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    if (!made.ok() || !events.ok() || !Watch(made)) return LastSystemFailure(Shown(".socket"));
    if (const int error = BindSocket(made.get(), folder.get(), SocketName()); error != 0) {
      return SystemFailure(error, Shown(".socket"));
    }
    socket = std::move(made);
    return listen(socket.get(), kWaitingRequests) == 0 ? Success() : LastSystemFailure(Shown(".socket"));
  }

  bool Watch(const Descriptor& watched) const {
    epoll_event event = {};
    event.events = EPOLLIN;
    return epoll_ctl(events.get(), EPOLL_CTL_ADD, watched.get(), &event) == 0;
  }

  // The connection itself is the request. Sets `*asked`; not when nobody listens (yet, or any more).
  Result Ask(const std::vector<std::string>& paths, bool* asked) const {
    const Descriptor connection = MakeLocalSocket(SOCK_SEQPACKET);
    if (!connection.ok()) return LastSystemFailure(Shown(".socket"));
    const int error = ConnectSocket(connection.get(), folder.get(), SocketName());
    *asked = error == 0 || error == EAGAIN;  // a full queue: it has been asked, and has not looked yet
    if (error == 0) {
      // One that ends at this moment reads it no more, and brings no window to the front either.
      const std::string message = PackPaths(paths, kMessageSize);
      (void)!send(connection.get(), message.data(), message.size(), MSG_NOSIGNAL);
    }
    if (*asked || error == ENOENT || error == ECONNREFUSED || error == EINTR) return Success();
    return SystemFailure(error, Shown(".socket"));
  }

  // Becomes the first copy or asks it.
  Result Settle(const std::vector<std::string>& paths) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (true) {
      if (Result tried = TryLock(); !tried.ok()) return tried;
      if (is_first) return Listen();
      bool asked = false;
      if (Result result = Ask(paths, &asked); !result.ok() || asked) return result;
      if (std::chrono::steady_clock::now() >= end) break;
      std::this_thread::sleep_for(kBetweenTries);
    }
    return Failure(Code::kFailed, Shown(".socket"), why::kRunningDoesNotListen);
  }

  // True when there was a request of the same user.
  bool Accept() {
    bool is_asked = false;
    while (true) {
      Descriptor request(accept4(socket.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
      if (!request.ok() && errno != EINTR && errno != ECONNABORTED) return is_asked;
      if (!request.ok() || !IsSameUser(request.get())) continue;
      is_asked = true;
      if (connections.size() < kSilentConnections && Watch(request))
        connections.push_back(std::move(request));
    }
  }

  // A copy says one thing, which may come a moment after its request.
  void Hear() {
    std::string message(kMessageSize, '\0');
    std::erase_if(connections, [&](const Descriptor& connection) {
      const ssize_t size = Retried([&] { return recv(connection.get(), message.data(), message.size(), 0); });
      if (size < 0 && errno == EAGAIN) return false;
      if (size > 0) left_paths.Add(UnpackPaths({message.data(), static_cast<std::size_t>(size)}));
      return true;
    });
  }
};

RunningCopy::RunningCopy(std::unique_ptr<State> state) : state_(std::move(state)) {}
RunningCopy::~RunningCopy() = default;

Result RunningCopy::Claim(const std::string& key, const std::vector<std::string>& paths,
                          std::unique_ptr<RunningCopy>* copy) {
  copy->reset();
  auto state = std::make_unique<State>();
  Result result = state->Open(key);
  if (result.ok()) result = state->Settle(paths);
  if (result.ok() && state->is_first) copy->reset(new RunningCopy(std::move(state)));
  return result;
}

std::intptr_t RunningCopy::WaitHandle() const {
  return state_->events.get();
}

bool RunningCopy::TakeRequest() {
  const bool is_asked = state_->Accept();
  state_->Hear();
  return is_asked;
}

LeftPaths RunningCopy::TakeLeftPaths() {
  return std::exchange(state_->left_paths, {});
}

}  // namespace quendle::platform
