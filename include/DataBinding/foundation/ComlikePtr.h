// SPDX-License-Identifier: Apache-2.0
/// A comlike_ptr is an owning pointer to an object that counts its own references. RefCounted is
/// the base class that counts them.
///
/// A new object has one reference. A comlike_ptr that is made from a raw pointer takes over an
/// existing reference; Share adds one. The count is atomic, but one comlike_ptr object must not be
/// used by two threads at once. RefCounted calls Traits::Destroy when the last reference is
/// released, on the thread that releases it.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace VtrUtils {

template <class T, class Traits>
class RefCounted {
 public:
  RefCounted(const RefCounted&) = delete;
  RefCounted& operator=(const RefCounted&) = delete;

  /// Adds a reference. May be called on any thread.
  void AddRef() const noexcept { references.fetch_add(1, std::memory_order_relaxed); }
  /// Releases a reference. The last release destroys the object, on the calling thread.
  void Release() const {
    // Nobody else can add to the only reference, so it need not be counted down.
    if (references.load(std::memory_order_acquire) == 1 ||
        references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      Traits::Destroy(static_cast<const T*>(this));
    }
  }

 protected:
  RefCounted() noexcept = default;
  ~RefCounted() = default;

 private:
  mutable std::atomic<std::uint32_t> references{1};
};

/// Owns one reference, or none.
template <class T>
class comlike_ptr {
 public:
  comlike_ptr() noexcept = default;
  /// Takes over a reference that the caller owns. Null makes an empty pointer.
  explicit comlike_ptr(T* adopted) noexcept : object(adopted) {}
  /// Adds a reference.
  comlike_ptr(const comlike_ptr& other) noexcept : object(other.object) {
    if (object != nullptr) object->AddRef();
  }
  /// Takes the reference over and leaves the other pointer empty.
  comlike_ptr(comlike_ptr&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
  ~comlike_ptr() {
    if (object != nullptr) object->Release();
  }
  /// Releases the former object after the new one is in place.
  comlike_ptr& operator=(comlike_ptr other) noexcept {
    std::swap(object, other.object);
    return *this;
  }

  /// Adds a reference to an object and owns that. Null gives an empty pointer.
  [[nodiscard]] static comlike_ptr Share(T* object) noexcept {
    if (object != nullptr) object->AddRef();
    return comlike_ptr(object);
  }
  /// Hands the reference over to the caller, who has to release it.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(object, nullptr); }
  /// Returns the object, which this pointer goes on owning, or null for an empty pointer.
  [[nodiscard]] T* Get() const noexcept { return object; }
  /// These must not be used on an empty pointer.
  ///@{
  T* operator->() const noexcept { return object; }
  T& operator*() const noexcept { return *object; }
  ///@}
  /// False for an empty pointer.
  explicit operator bool() const noexcept { return object != nullptr; }

 private:
  T* object = nullptr;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::comlike_ptr;
using VtrUtils::RefCounted;
}  // namespace DataBinding
