#include "platform/process/undone_at_exit.h"

#include <algorithm>
#include <vector>

namespace quendle::platform {

class AliveObjects {
 public:
  AliveObjects() = default;
  ~AliveObjects() {
    for (auto object = objects_.rbegin(); object != objects_.rend(); ++object) (*object)->UndoAtExit();
  }
  AliveObjects(const AliveObjects&) = delete;
  AliveObjects& operator=(const AliveObjects&) = delete;

  // The program and each library that it loads have their own.
  static AliveObjects& Here() {
    static AliveObjects alive;
    return alive;
  }

  void Add(UndoneAtExit* object) { objects_.push_back(object); }
  void Remove(UndoneAtExit* object) { std::erase(objects_, object); }

 private:
  std::vector<UndoneAtExit*> objects_;
};

UndoneAtExit::UndoneAtExit() {
  AliveObjects::Here().Add(this);
}

UndoneAtExit::~UndoneAtExit() {
  AliveObjects::Here().Remove(this);
}

}  // namespace quendle::platform
