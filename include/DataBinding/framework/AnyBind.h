// SPDX-License-Identifier: Apache-2.0
/// An AnyBind finds one property of a data source by name, whatever its type, and follows it
/// wherever it goes.
///
/// It looks for its source and tells its subscribers as a DataBind does, and may be copied, moved
/// and ended in the same way. It reads and sets the property by the form of its type (ValueForm.h).
/// So it serves labels that show whatever is there, forms that are stated in a file where no C++
/// type can stand, and other languages.
///
///   Framework::AnyBind shown(&scope, L"Disk", L"Size");
///   Subscription redraw = shown.SubscribeToChanges([&] { label.Show(shown.ReadText()); });
///   line.onReturn = [&] { hint.Show(shown.WriteText(line.Text()).reason); };
#pragma once

#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/Value.h"

namespace DataBinding {

namespace details {

class AnyBindConnection final : public ReferringConnection<AnyPropertyRef> {
 public:
  explicit AnyBindConnection(const Framework::IBaseBind& bind)
      : ReferringConnection(bind, nullptr, nullptr) {}

  [[nodiscard]] PropertyValue<Value> Get() const {
    return HasValue() ? property.Read() : NoValue<PropertyValue<Value>>();
  }
  SetResult Set(const Value& value) {
    return HasValue() ? property.Write(value) : NoValue<SetResult>();
  }
  [[nodiscard]] PropertyValue<VtrString> ReadText() const {
    return HasValue() ? property.ReadText() : NoValue<PropertyValue<VtrString>>();
  }
  SetResult WriteText(const VtrString& text) {
    return HasValue() ? property.WriteText(text) : NoValue<SetResult>();
  }
  [[nodiscard]] SetResult CheckText(const VtrString& text) const {
    return HasValue() ? property.CheckText(text) : NoValue<SetResult>();
  }
  [[nodiscard]] ValueKind Kind() const { return HasValue() ? property.Kind() : ValueKind::Nothing; }
};

}  // namespace details

namespace Framework {

/// Where Get and Set are meant, Read and Write are the same in the words of an AnyPropertyRef. A
/// type without a form has a text, which is its name, but no Value: then HasValue is true, and Read
/// says WrongType and names the type.
class AnyBind final : public details::ConnectedBind<Value, details::AnyBindConnection> {
 public:
  using ConnectedBind::ConnectedBind;

  /// Returns the value, or the reason why there is none.
  [[nodiscard]] PropertyValue<Value> Read() const { return Get(); }
  /// Returns the text of the value, or the reason why there is none.
  [[nodiscard]] PropertyValue<VtrString> ReadText() const { return connection->ReadText(); }
  /// These set the value, with the property's results and texts. They may end the bind.
  ///@{
  // NOLINTNEXTLINE(modernize-use-nodiscard): setting is done for its effect
  SetResult Write(const Value& value) { return Set(value); }
  SetResult WriteText(const VtrString& text) { return connection->WriteText(text); }
  ///@}
  /// Says what WriteText would answer, and sets nothing.
  [[nodiscard]] SetResult CheckText(const VtrString& text) const {
    return connection->CheckText(text);
  }
  /// Returns the kind of values that the property's type has; Nothing for a type without a form,
  /// and where there is no property.
  [[nodiscard]] ValueKind Kind() const { return connection->Kind(); }
};

}  // namespace Framework

}  // namespace DataBinding
