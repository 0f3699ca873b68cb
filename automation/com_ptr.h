// An owning reference to a COM object: one AddRef, one Release, whatever way a scope is left.
#pragma once

#include <concepts>
#include <utility>

#include "automation/win32.h"

namespace quillon::automation {

template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}
  // Shares `object`: takes a reference of its own.
  explicit ComPtr(T* object) noexcept : object_(object) {
    if (object_) object_->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
  ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::convertible_to<U*, T*> ComPtr(const ComPtr<U>& other)
  noexcept : ComPtr(static_cast<T*>(other.get())) {}
  ~ComPtr() { reset(); }

  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  // Takes over the reference that the caller holds.
  static ComPtr adopt(T* object) noexcept {
    ComPtr result;
    result.object_ = object;
    return result;
  }

  void reset() noexcept {
    if (T* object = std::exchange(object_, nullptr)) object->Release();
  }
  // Hands the reference to the caller.
  [[nodiscard]] T* release() noexcept { return std::exchange(object_, nullptr); }
  // The place for a function that gives a reference through a pointer; what was held is released first.
  [[nodiscard]] T** out() noexcept {
    reset();
    return &object_;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

}  // namespace quillon::automation
