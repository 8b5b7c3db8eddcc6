// SPDX-License-Identifier: Apache-2.0
/// Finds and calls delegates by name, with their signatures checked, for code that does not know
/// the source's class.
///
/// A source files a delegate with AddDelegate. Why a delegate was not found, or not called, is told
/// apart by a PropertyError and explained by a text, as for properties. Signatures must be equal:
/// there are no conversions. After a source's first look-up nothing is allocated where nothing
/// fails. Used on the thread that owns the provider tree.
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

/// The part of a DelegateRef that does not depend on the signature.
class DATABINDING_API DelegateRefBase {
 public:
  /// Why the delegate was not found; None when it was, also after it has gone.
  [[nodiscard]] PropertyError Error() const noexcept { return error; }
  /// Why the delegate was not found. Empty when it was.
  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// True when the delegate was found.
  explicit operator bool() const noexcept { return error == PropertyError::None; }

 protected:
  DelegateRefBase(IDataSource* source, VtrString delegateName);
  /// Says what is wrong with what was found under the name.
  void Judge(IDataSource* source, const runtime_type_base& wanted,
             const RepeatingCallbackBase& found);
  /// False for null, and while a source's destruction handlers run: its table then holds delegates
  /// that refer to a source that is gone.
  [[nodiscard]] bool IsSourceThere() const noexcept { return sourceLiveness.IsValid(); }
  /// For a delegate that was not found, or is gone since.
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

/// A delegate found by name. It may be kept: it answers "absent" once its source is gone. It goes
/// on calling what it has found, also when the source files another delegate under the name.
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

  /// True while the delegate can be called: it was found, and neither its source nor what it is
  /// weakly bound to is gone since.
  [[nodiscard]] bool IsThere() const {
    return IsSourceThere() && callback && !callback.IsCancelled();
  }
  /// Calls the delegate and gives its result, or why it was not called. What the delegate throws
  /// leaves this. The source may be gone when this returns.
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

/// Finds a delegate, to be called once or more often.
template <class Signature>
[[nodiscard]] DelegateRef<Signature> FindDelegate(IDataSource* source, const VtrString& name) {
  return DelegateRef<Signature>(source, name);
}

}  // namespace DataBinding
