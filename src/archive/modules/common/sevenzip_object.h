// Objects that 7-Zip's library calls.
#pragma once

#include <exception>
#include <new>

#include "archive/modules/common/sevenzip_api.h"

namespace quendle::modules::sevenzip {

// Calls that come from the library must not throw through it.
template <typename Function>
HResult Guarded(const Function& function) {
  try {
    return function();
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  } catch (const std::exception&) {
    return kFail;
  }
}

// An object that this program owns; the library's references to it are not counted, as it is gone before.
template <typename... Interfaces>
class Object : public Interfaces... {
 public:
  virtual ~Object() = default;
  HResult QueryInterface(const Guid& id, void** object) override {
    *object = nullptr;
    if (!(Offer<Interfaces>(id, object) || ...)) return kNoInterface;
    AddRef();
    return kOk;
  }
  std::uint32_t AddRef() override { return 1; }
  std::uint32_t Release() override { return 1; }

 private:
  template <typename Interface>
  bool Offer(const Guid& id, void** object) {
    if (id != Interface::kId && id != kUnknownId) return false;
    *object = static_cast<Interface*>(this);
    return true;
  }
};

}  // namespace quendle::modules::sevenzip
