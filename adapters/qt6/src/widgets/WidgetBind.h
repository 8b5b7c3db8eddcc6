// SPDX-License-Identifier: Apache-2.0
/// A WidgetBind is the bind of a widget: an AnyBind that has a value only where the widget can show
/// it, and that reads and sets texts for a widget that shows texts.
#pragma once

#include "DataBinding/framework/AnyBind.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBindingQt6/widgets/details/WidgetOps.h"

namespace DataBinding::Qt6 {

class WidgetBind final : public Framework::IDataBind<Value> {
 public:
  WidgetBind(const details::WidgetOps& itsOps, const VtrString& context, const VtrString& source,
             const VtrString& property);

  void Connect(IDataSourceProvider* provider) override { bind.Connect(provider); }
  [[nodiscard]] Framework::BindTypeEnum BindType() const override { return bind.BindType(); }
  [[nodiscard]] Framework::BindStatus Status() const override;
  [[nodiscard]] bool IsReadOnly() const override { return HasValue() && bind.IsReadOnly(); }
  [[nodiscard]] bool HasValue() const override { return bind.HasValue() && ops.fits(bind.Kind()); }
  Subscription SubscribeToChanges(const Framework::ChangeCallback& callback) override {
    return bind.SubscribeToChanges(callback);
  }
  [[nodiscard]] std::uint64_t Record() const override { return bind.Record(); }
  [[nodiscard]] PropertyValue<Value> Get() const override;
  SetResult Set(Value value) override;
  [[nodiscard]] SetResult Check(const Value& value) const override;
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) const override {
    return bind.SubscribeToChecks(callback);
  }
  [[nodiscard]] ValueKind Kind() const { return bind.Kind(); }

 private:
  [[nodiscard]] bool Misfits() const { return bind.HasValue() && !ops.fits(bind.Kind()); }
  [[nodiscard]] VtrString WhyMisfit() const;

  const details::WidgetOps& ops;
  Framework::AnyBind bind;
};

}  // namespace DataBinding::Qt6
