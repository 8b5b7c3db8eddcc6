// SPDX-License-Identifier: Apache-2.0
/// Weak pointers: they look at an object without keeping it, and know when it is gone.
///
/// An object owns a WeakReferenceOwner, most easily through SupportsWeakPtr<T> or a WeakPtrFactory;
/// every reference taken from it turns invalid when the owner dies. The small shared flag is
/// allocated when the first reference is taken. References may be copied, asked and dropped on any
/// thread; using the object behind one is only safe on the thread that ends the object.
///
///   class View : public SupportsWeakPtr<View> { ... };
///   RepeatingCallback<void()> redraw = BindWeak(view.AsWeakPtr(), &View::Redraw);
#pragma once

#include <atomic>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/ComlikePtr.h"

namespace VtrUtils {

namespace details {

/// Shared by an owner and its references: says whether the owner lives.
class WeakFlag;

struct WeakFlagRefCountTraits {
  DATABINDING_API static void Destroy(const WeakFlag* flag) noexcept;
};

class WeakFlag : public RefCounted<WeakFlag, WeakFlagRefCountTraits> {
 public:
  [[nodiscard]] bool IsAlive() const noexcept { return alive.load(std::memory_order_acquire); }
  void End() noexcept { alive.store(false, std::memory_order_release); }

 private:
  std::atomic<bool> alive{true};
};

class WeakReference {
 public:
  WeakReference() noexcept = default;
  explicit WeakReference(comlike_ptr<WeakFlag> shared) noexcept : flag(std::move(shared)) {}
  /// True while the owner lives; false for a reference that never had one.
  [[nodiscard]] bool IsValid() const noexcept { return flag && flag->IsAlive(); }

 private:
  comlike_ptr<WeakFlag> flag;
};

class DATABINDING_API WeakReferenceOwner {
 public:
  WeakReferenceOwner() noexcept = default;
  /// Copies of an owning object have references of their own.
  WeakReferenceOwner(const WeakReferenceOwner&) noexcept {}
  WeakReferenceOwner& operator=(const WeakReferenceOwner&) noexcept { return *this; }
  ~WeakReferenceOwner() { Invalidate(); }

  [[nodiscard]] WeakReference GetRef() const;
  /// Ends all references taken so far; later ones are valid again.
  void Invalidate() noexcept;

 private:
  mutable std::atomic<WeakFlag*> flag{nullptr};
};

class WeakPtrBase {
 public:
  WeakPtrBase() noexcept = default;
  WeakPtrBase(WeakReference toOwner, const void* target) noexcept
      : reference(std::move(toOwner)), object(target) {}
  [[nodiscard]] bool IsValid() const noexcept { return reference.IsValid(); }

 protected:
  /// The address, or null once the object is gone.
  [[nodiscard]] const void* GetRaw() const noexcept { return IsValid() ? object : nullptr; }

 private:
  WeakReference reference;
  const void* object = nullptr;
};

/// Gives an address back the type that it was kept without; T may be const.
template <class T>
[[nodiscard]] T* Retyped(const void* address) noexcept {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
  return static_cast<T*>(const_cast<void*>(address));
}

class WeakPtrFactoryBase {
 public:
  explicit WeakPtrFactoryBase(const void* target) noexcept : object(target) {}

 protected:
  [[nodiscard]] WeakReference GetRef() const { return owner.GetRef(); }
  [[nodiscard]] const void* GetRaw() const noexcept { return object; }

 private:
  WeakReferenceOwner owner;
  const void* object;
};

}  // namespace details

template <class T>
class WeakPtr : public details::WeakPtrBase {
 public:
  WeakPtr() noexcept = default;
  /// Of an owner's reference and the object behind it.
  WeakPtr(details::WeakReference toOwner, T* target) noexcept
      : WeakPtrBase(std::move(toOwner), target) {}

  /// The object, or null once it is gone.
  [[nodiscard]] T* Get() const noexcept { return details::Retyped<T>(GetRaw()); }
  /// For pointers whose object lives: ask first.
  ///@{
  T* operator->() const noexcept { return Get(); }
  T& operator*() const noexcept { return *Get(); }
  ///@}
  /// True while the object lives.
  explicit operator bool() const noexcept { return IsValid(); }
};

/// Makes weak pointers to one object; a member of it, declared last so that it ends first.
template <class T>
class WeakPtrFactory : private details::WeakPtrFactoryBase {
 public:
  /// For the object that holds it: `factory{this}`.
  explicit WeakPtrFactory(T* target) noexcept : WeakPtrFactoryBase(target) {}
  WeakPtrFactory(const WeakPtrFactory&) = delete;
  WeakPtrFactory& operator=(const WeakPtrFactory&) = delete;
  /// A pointer that turns invalid when the factory ends. Any thread.
  [[nodiscard]] WeakPtr<T> GetWeakPtr() const { return {GetRef(), details::Retyped<T>(GetRaw())}; }
};

/// A base that gives a class weak pointers to itself. They end in this base's destructor, that is
/// after the derived class is gone: a class whose callbacks may run in between calls
/// InvalidateWeakPtrs first.
template <class T>
class SupportsWeakPtr {
 public:
  /// A pointer to this object that knows when it ends. Any thread while the object lives.
  [[nodiscard]] WeakPtr<T> AsWeakPtr() { return {owner.GetRef(), static_cast<T*>(this)}; }

 protected:
  SupportsWeakPtr() noexcept = default;
  SupportsWeakPtr(const SupportsWeakPtr&) noexcept = default;
  SupportsWeakPtr& operator=(const SupportsWeakPtr&) noexcept = default;
  ~SupportsWeakPtr() = default;
  /// Ends the pointers that were taken so far; those that are taken later are valid.
  void InvalidateWeakPtrs() noexcept { owner.Invalidate(); }

 private:
  details::WeakReferenceOwner owner;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::SupportsWeakPtr;
using VtrUtils::WeakPtr;
using VtrUtils::WeakPtrFactory;
namespace details {
using VtrUtils::details::WeakPtrBase;
using VtrUtils::details::WeakPtrFactoryBase;
using VtrUtils::details::WeakReference;
using VtrUtils::details::WeakReferenceOwner;
}  // namespace details
}  // namespace DataBinding
