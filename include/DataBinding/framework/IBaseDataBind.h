// SPDX-License-Identifier: Apache-2.0
/// An IBaseDataBind is a bind that carries a value of any type. It offers what lists and editors of
/// binds need to know of it.
///
/// Copying and moving take the names only, so a bind that was moved from stays as it was. Concrete
/// binds decide on their connections.
///
/// A bind is used on one thread, that of the provider tree.
#pragma once

#include <cstdint>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/BindChange.h"
#include "DataBinding/framework/IBaseBind.h"

namespace DataBinding::Framework {

class DATABINDING_API IBaseDataBind : public IBaseBind {
 public:
  /// Makes a bind with three empty names.
  IBaseDataBind();
  /// Takes the three names. The bind is connected to nothing.
  IBaseDataBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
                const VtrStringT<wchar_t>& pathInSource);
  /// Takes the names and no connection.
  ///@{
  IBaseDataBind(const IBaseDataBind& other);
  IBaseDataBind(IBaseDataBind&& other) noexcept;
  IBaseDataBind& operator=(const IBaseDataBind& other);
  IBaseDataBind& operator=(IBaseDataBind&& other) noexcept;
  ///@}
  ~IBaseDataBind() override;

  /// Returns true when there is a value that only its data source may set.
  [[nodiscard]] virtual bool IsReadOnly() const = 0;
  /// Returns true while there is a value to read.
  [[nodiscard]] virtual bool HasValue() const = 0;
  /// Runs the callback whenever the value changes, comes or goes, until the subscription ends. The
  /// callback takes a BindChange or nothing. Subscribing does not run it, and it may end the bind.
  /// A callback that is cancelled before its turn in a notification is not run, unlike a callback
  /// of the property itself.
  ///
  /// If a callback makes the value come, go or change, all callbacks are told of that first. Those
  /// that are still due then hear the former BindChange only where it still holds: Went if there is
  /// no value, and any other if there is one.
  virtual Subscription SubscribeToChanges(const ChangeCallback& callback) = 0;
  /// Returns a number that is another one whenever the bind has come to show another property or
  /// record, also before its subscribers are told. A bind that does not override this answers 0.
  [[nodiscard]] virtual std::uint64_t Record() const { return 0; }
};

}  // namespace DataBinding::Framework
