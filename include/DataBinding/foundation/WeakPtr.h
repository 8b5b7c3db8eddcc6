// SPDX-License-Identifier: Apache-2.0
/// Weak pointers refer to an object without keeping it alive, and know when it is gone.
///
/// The object has a WeakReferenceOwner, most easily by deriving from SupportsWeakPtr<T> or by a
/// member of type WeakPtrFactory. When the owner is destroyed, every reference that was taken from
/// it becomes invalid. The owner shares a small flag with its references, which is allocated when
/// the first reference is taken.
///
/// References may be copied, asked and dropped on any thread. The object behind a reference may
/// only be used on the thread that ends the object.
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

/// An owner shares a WeakFlag with its references. The flag tells whether the owner lives.
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
  /// Returns true while the owner lives; false for a reference that never had one.
  [[nodiscard]] bool IsValid() const noexcept { return flag && flag->IsAlive(); }

 private:
  comlike_ptr<WeakFlag> flag;
};

class DATABINDING_API WeakReferenceOwner {
 public:
  WeakReferenceOwner() noexcept = default;
  /// A copy of an owning object does not share the other's references.
  WeakReferenceOwner(const WeakReferenceOwner&) noexcept {}
  WeakReferenceOwner& operator=(const WeakReferenceOwner&) noexcept { return *this; }
  ~WeakReferenceOwner() { Invalidate(); }

  [[nodiscard]] WeakReference GetRef() const;
  /// Makes all references invalid that were taken so far. Later ones are valid again.
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
  /// Returns the address, or null once the object is gone.
  [[nodiscard]] const void* GetRaw() const noexcept { return IsValid() ? object : nullptr; }

 private:
  WeakReference reference;
  const void* object = nullptr;
};

/// Casts an address back to the type that it had before it was kept. T may be const.
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
  /// Refers to `target` for as long as the owner lives.
  WeakPtr(details::WeakReference toOwner, T* target) noexcept
      : WeakPtrBase(std::move(toOwner), target) {}

  /// Returns the object, or null once it is gone.
  [[nodiscard]] T* Get() const noexcept { return details::Retyped<T>(GetRaw()); }
  /// These may only be used while the object lives.
  ///@{
  T* operator->() const noexcept { return Get(); }
  T& operator*() const noexcept { return *Get(); }
  ///@}
  /// True while the object lives.
  explicit operator bool() const noexcept { return IsValid(); }
};

/// Makes weak pointers to one object. It is a member of that object, and is declared last so that
/// the pointers become invalid before the other members end.
template <class T>
class WeakPtrFactory : private details::WeakPtrFactoryBase {
 public:
  /// Takes the object that has the factory as a member: `factory{this}`.
  explicit WeakPtrFactory(T* target) noexcept : WeakPtrFactoryBase(target) {}
  WeakPtrFactory(const WeakPtrFactory&) = delete;
  WeakPtrFactory& operator=(const WeakPtrFactory&) = delete;
  /// Returns a pointer that becomes invalid when the factory ends. May be called on any thread.
  [[nodiscard]] WeakPtr<T> GetWeakPtr() const { return {GetRef(), details::Retyped<T>(GetRaw())}; }
};

/// A base class that gives out weak pointers to the object. They become invalid in the destructor
/// of this base, when the derived class is gone already. So a class whose destructor may run
/// callbacks calls InvalidateWeakPtrs first.
template <class T>
class SupportsWeakPtr {
 public:
  /// Returns a weak pointer to this object. May be called on any thread while the object lives.
  [[nodiscard]] WeakPtr<T> AsWeakPtr() { return {owner.GetRef(), static_cast<T*>(this)}; }

 protected:
  SupportsWeakPtr() noexcept = default;
  SupportsWeakPtr(const SupportsWeakPtr&) noexcept = default;
  SupportsWeakPtr& operator=(const SupportsWeakPtr&) noexcept = default;
  ~SupportsWeakPtr() = default;
  /// Makes the pointers invalid that were taken so far. Later ones are valid again.
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
