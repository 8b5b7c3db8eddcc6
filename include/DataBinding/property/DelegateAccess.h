// SPDX-License-Identifier: Apache-2.0
/// DelegateRef and FindDelegate find and call delegates by name, with their signatures checked, for
/// code that does not know the source's class.
///
/// A source files a delegate with AddDelegate. When a delegate cannot be found or called, a
/// PropertyError tells the reason and a text explains it, as for properties. Signatures must be
/// equal: nothing is converted. After a source's first look-up nothing is allocated where nothing
/// fails. These operations belong to the thread that owns the provider tree.
///
///   AddDelegate<int(int)>(L"Raise", [this](int by) { return Raise(by); });  // in the source
///   if (const auto raised = FindDelegate<int(int)>(source, L"Raise")(3)) Show(*raised);
#pragma once

#include <type_traits>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding {

namespace details {

/// DelegateRefBase is the part of a DelegateRef that does not depend on the signature.
class DATABINDING_API DelegateRefBase {
 public:
  /// Tells why the delegate was not found; None when it was found, also after it has gone.
  [[nodiscard]] PropertyError Error() const noexcept { return error; }
  /// Explains why the delegate was not found. The text is empty when it was found.
  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// Returns true when the delegate was found.
  explicit operator bool() const noexcept { return error == PropertyError::None; }

 protected:
  DelegateRefBase(IDataSource* source, VtrString delegateName);
  /// Notes what is wrong with what was found under the name.
  void Judge(IDataSource* source, const runtime_type_base& wanted,
             const RepeatingCallbackBase& found);
  /// Returns false for null, and while the source's destruction handlers run: its table then holds
  /// delegates that refer to a source that is gone.
  [[nodiscard]] bool IsSourceThere() const noexcept { return sourceLiveness.IsValid(); }
  /// Makes the result of calling a delegate that was not found, or that has gone since.
  template <class Result>
  [[nodiscard]] Result Failure(const runtime_type_base& wanted) const {
    Result result;
    result.error = error == PropertyError::None ? PropertyError::Absent : error;
    result.text = error == PropertyError::None ? GoneText(wanted) : text;
    return result;
  }

 private:
  [[nodiscard]] VtrString GoneText(const runtime_type_base& wanted) const;

  VtrString name;
  PropertyError error = PropertyError::None;
  VtrString text;
  WeakReference sourceLiveness;
};

}  // namespace details

template <class Signature>
class DelegateRef;

/// A DelegateRef is a delegate that was found by name. It may be kept: it answers "absent" once its
/// source is gone. It goes on calling the delegate that it has found, even when the source files
/// another one under the name.
template <class Result, class... Args>
class DelegateRef<Result(Args...)> : public details::DelegateRefBase {
  static_assert(!std::is_reference_v<Result>, "a delegate called by name gives a value or nothing");

 public:
  /// Looks the delegate up, once. The source may be null and may end later.
  DelegateRef(IDataSource* source, const VtrString& delegateName)
      : DelegateRefBase(source, delegateName) {
    const auto& wanted = runtime_type<Result(Args...)>::Get();
    if (IsSourceThere()) callback.SetMemento(source->GetDelegateMemento(delegateName, wanted));
    Judge(source, wanted, callback);
  }

  /// Returns true while the delegate can be called: it was found, its source is still there, and so
  /// is the object that it is weakly bound to.
  [[nodiscard]] bool IsThere() const {
    return IsSourceThere() && callback && !callback.IsCancelled();
  }
  /// Calls the delegate and returns its result, or the reason why it was not called. An exception
  /// of the delegate leaves this operation. The source may be gone when this returns.
  // NOLINTNEXTLINE(modernize-use-nodiscard): a delegate is also called for its effect
  PropertyValue<Result> operator()(Args... args) const {
    if (!IsThere()) {
      return Failure<PropertyValue<Result>>(runtime_type<Result(Args...)>::Get());
    }
    if constexpr (std::is_void_v<Result>) {
      callback(std::forward<Args>(args)...);
      return {};
    } else {
      return {callback(std::forward<Args>(args)...), PropertyError::None, {}};
    }
  }

 private:
  RepeatingCallback<Result(Args...)> callback;
};

/// Finds a delegate, which can then be called any number of times.
template <class Signature>
[[nodiscard]] DelegateRef<Signature> FindDelegate(IDataSource* source, const VtrString& name) {
  return DelegateRef<Signature>(source, name);
}

}  // namespace DataBinding
