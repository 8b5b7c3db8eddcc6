// SPDX-License-Identifier: Apache-2.0
/// A bind that carries a value, whatever its type: what lists and editors of binds need of it.
///
/// Copying and moving take the names only, so a bind that was moved from stays as it was. Concrete
/// binds decide on their connections.
///
/// One thread, that of the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/IBaseBind.h"

namespace DataBinding::Framework {

class DATABINDING_API IBaseDataBind : public IBaseBind {
 public:
  /// Three empty names.
  IBaseDataBind();
  /// Of the three names; connected to nothing.
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

  /// True when there is a value that only its data source may set.
  [[nodiscard]] virtual bool IsReadOnly() const = 0;
  /// True while there is a value to read.
  [[nodiscard]] virtual bool HasValue() const = 0;
  /// Runs the callback whenever the value changes, comes or goes, until the subscription ends. The
  /// callback is not run by subscribing; it may end the bind. One that is cancelled before its turn
  /// in a notification is not run, unlike a callback of the property itself.
  virtual Subscription SubscribeToChanges(const RepeatingCallback<void()>& callback) = 0;
};

}  // namespace DataBinding::Framework
