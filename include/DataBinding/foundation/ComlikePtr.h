// SPDX-License-Identifier: Apache-2.0
/// An owning pointer to an object that counts its own references, and the base that counts them.
///
/// A comlike_ptr made from a raw pointer takes over one existing reference, which a new object has;
/// Share adds one. The count is atomic, the pointer itself is not. RefCounted calls Traits::Destroy
/// when the last reference goes, on whatever thread that happens.
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

  /// Counts one owner more. Any thread.
  void AddRef() const noexcept { references.fetch_add(1, std::memory_order_relaxed); }
  /// Counts one owner less; the last one to go has the object destroyed, on this thread.
  void Release() const {
    if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      Traits::Destroy(static_cast<const T*>(this));
    }
  }

 protected:
  RefCounted() noexcept = default;
  ~RefCounted() = default;

 private:
  mutable std::atomic<std::uint32_t> references{1};
};

/// Owns one reference, or none. Not to be used by two threads at once; its object's count may be.
template <class T>
class comlike_ptr {
 public:
  comlike_ptr() noexcept = default;
  /// Takes over a reference that the caller has; null makes an empty pointer.
  explicit comlike_ptr(T* adopted) noexcept : object(adopted) {}
  /// Adds a reference.
  comlike_ptr(const comlike_ptr& other) noexcept : object(other.object) {
    if (object != nullptr) object->AddRef();
  }
  /// Takes the other's reference, which is empty then.
  comlike_ptr(comlike_ptr&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
  ~comlike_ptr() {
    if (object != nullptr) object->Release();
  }
  /// Releases the former object after the new one is in place.
  comlike_ptr& operator=(comlike_ptr other) noexcept {
    std::swap(object, other.object);
    return *this;
  }

  /// An owner beside the existing ones.
  [[nodiscard]] static comlike_ptr Share(T* object) noexcept {
    if (object != nullptr) object->AddRef();
    return comlike_ptr(object);
  }
  /// Gives the reference up to the caller.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(object, nullptr); }
  /// The object, which stays owned; null for an empty pointer.
  [[nodiscard]] T* Get() const noexcept { return object; }
  /// For pointers that are not empty.
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
