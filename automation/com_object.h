// The reference count that every automation object has.
#pragma once

#include <atomic>
#include <new>
#include <utility>

#include "automation/com_ptr.h"
#include "automation/live_count.h"

namespace quillon::automation {

// The interfaces that COM's headers declare have no virtual destructor; an object is only ever deleted by its own
// Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Counts references for an object that is made with makeObject and implements the interfaces `Interfaces`.
template <class... Interfaces>
class ComObject : public Interfaces... {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references_); }
  STDMETHODIMP_(ULONG) Release() override {
    const long left = --references_;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

 protected:
  ComObject() = default;
  virtual ~ComObject() = default;

 private:
  std::atomic<long> references_ = 1;
  LiveCount alive_;
};

#pragma GCC diagnostic pop

// A new object with its one reference.
template <class T, class... Arguments>
ComPtr<T> makeObject(Arguments&&... arguments) {
  return ComPtr<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace quillon::automation
