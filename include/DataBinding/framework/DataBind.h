// SPDX-License-Identifier: Apache-2.0
/// A DataBind finds one property of a data source by name and follows it wherever it goes.
///
/// A bind that is connected to a scope looks for its data source there and in the enclosing scopes.
/// It begins with the nearest scope that has the data context's name as a category; for an empty
/// name or the null-data marker it begins with the given scope. It connects when the source
/// appears, prefers a source of that name in a nearer scope, and falls back to one further out when
/// the nearer one goes. It never has a source built. When its scope shuts down, it is connected to
/// no scope. Bind, scopes, sources and subscriptions may end in any order. A bind is used on one
/// thread, that of the provider tree.
///
///   Framework::DataBind<double> load(&provider, L"Cpu", L"Load");
///   Subscription redraw = load.SubscribeToValue([&](double now) { label.Show(now); });
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding {

namespace details {

class DataBindListener;
class ShownRecord;

/// BindConnection is the part of a data bind that does not depend on its type. It stands on the
/// heap because each of its calls ends with telling the subscribers, who may end the bind.
class DATABINDING_API BindConnection : public SupportsWeakPtr<BindConnection> {
 public:
  /// Takes a bind's names, and the two types under which its property may be filed, or null for any
  /// type.
  BindConnection(const Framework::IBaseBind& bind, const runtime_type_base* plain,
                 const runtime_type_base* readOnly);
  BindConnection(const BindConnection&) = delete;
  BindConnection& operator=(const BindConnection&) = delete;
  virtual ~BindConnection();

  /// Looks for the data source and property that the bind names, in place of the ones before.
  void Connect(const Framework::IBaseBind& bind, IDataSourceProvider* provider);
  /// Returns the scope that the bind is connected to, or null.
  [[nodiscard]] IDataSourceProvider* Provider() const;
  /// Says whether there is a value, or why not.
  [[nodiscard]] virtual Framework::BindStatus Status() const;
  [[nodiscard]] const VtrString& SourceName() const noexcept { return sourceName; }
  [[nodiscard]] const VtrString& PropertyName() const noexcept { return propertyName; }
  /// Returns true while there is a property to read.
  [[nodiscard]] virtual bool HasValue() const = 0;
  /// Returns true when there was a value at the last notification, which may be under way.
  [[nodiscard]] bool HasToldOfValue() const noexcept { return hasToldOfValue; }
  Subscription Subscribe(const Framework::ChangeCallback& callback);
  /// Returns another number whenever another property or record is shown.
  [[nodiscard]] std::uint64_t Record() const noexcept;

  /// The bind's listeners call these, and then touch nothing of the connection, which may be gone.
  ///@{
  /// Enters the scopes when they have called their listeners.
  void Resume();
  /// Gives up the listener's scope, which can no longer be reached, and the scopes further out.
  void CutAt(const DataBindListener& listener);
  /// Follows the nearest source, which may be another one by now.
  void Update();
  ///@}

 protected:
  /// Subscribers have one of three signatures and stand in one list, so that they are called in the
  /// order of subscription. Each has a function that calls it with what it takes.
  using Subscribers = CallbackList<BindConnection, Framework::BindChange>;

  [[nodiscard]] IDataSource* Source() const noexcept { return source; }
  Subscribers subscribers;

 private:
  /// Finds the property in its new source, and returns the reference, which stays at its address. A
  /// null source has no property.
  virtual const PropertyRefBase& Refer(IDataSource* newSource, const VtrString& name) = 0;

  /// Begins to listen in a scope and its enclosing ones. If one of them is calling its listeners,
  /// this waits until it has called them.
  void Enter(IDataSourceProvider* provider);
  void Follow(IDataSource* newSource);
  /// The property was announced. A source may show another record by it (ShownRecord.h).
  void OnAnnounced();
  /// Tells the subscribers that the value of the followed property has changed, or that the bind
  /// follows another one, unless the value has come or gone.
  void Notify(Framework::BindChange ofProperty);
  [[nodiscard]] bool NamesAProperty() const;
  [[nodiscard]] std::size_t ContextIndex() const;
  [[nodiscard]] IDataSource* NearestSource() const noexcept;

  const runtime_type_base* plainType;
  const runtime_type_base* readOnlyType;
  VtrString contextName;
  VtrString sourceName;
  VtrString propertyName;
  /// Holds one listener for each scope, from the given one outward.
  std::vector<std::unique_ptr<DataBindListener>> listeners;
  /// True while the first listener waits until the scopes have called their listeners.
  bool isWaiting = false;
  IDataSource* source = nullptr;
  const PropertyRefBase* found = nullptr;
  /// Belongs to the source if it shows one record after another, and is null otherwise.
  const ShownRecord* record = nullptr;
  std::uint64_t recordSerial = 0;
  std::uint64_t follows = 0;  // how often the bind has come to follow another property
  bool hasToldOfValue = false;
  /// True while the nearest source is not followed yet, for want of memory.
  bool isBehind = false;
  Subscription propertySubscription;
};

/// A ReferringConnection keeps what it has found by a Ref, which is a PropertyRef or an
/// AnyPropertyRef.
template <class Ref>
class ReferringConnection : public BindConnection {
 public:
  using Value = typename Ref::Value;

  /// Looks for a property again if it was not there, since it may come and go while its source
  /// stays.
  [[nodiscard]] bool HasValue() const override {
    return property.IsThere() || (Source() != nullptr && LookAgain());
  }
  [[nodiscard]] bool IsReadOnly() const { return HasValue() && property.IsReadOnly(); }
  [[nodiscard]] SetResult Check(const Value& value) const {
    return HasValue() ? property.Check(value) : NoValue<SetResult>();
  }
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) const {
    return HasValue() ? property.SubscribeToChecks(callback) : Subscription();
  }

 protected:
  ReferringConnection(const Framework::IBaseBind& bind, const runtime_type_base* plain,
                      const runtime_type_base* readOnly)
      : BindConnection(bind, plain, readOnly), property(nullptr, bind.Path()) {}

  /// Returns the result for a property that is not there.
  template <class Result>
  [[nodiscard]] Result NoValue() const {
    Result result;
    result.error = property ? PropertyError::Absent : property.Error();
    result.text = Status().text;
    return result;
  }

  [[nodiscard]] bool LookAgain() const {
    property = Ref(Source(), PropertyName());
    return property.IsThere();
  }

  mutable Ref property;

 private:
  const PropertyRefBase& Refer(IDataSource* newSource, const VtrString& name) override {
    return property = Ref(newSource, name);
  }
};

template <class T>
class TypedBindConnection final : public ReferringConnection<PropertyRef<T>> {
 public:
  explicit TypedBindConnection(const Framework::IBaseBind& bind)
      : ReferringConnection<PropertyRef<T>>(bind, &runtime_type<T>::Get(),
                                            &runtime_type<const T>::Get()) {}

  Subscription SubscribeToValue(const RepeatingCallback<void(const T&)>& callback) {
    return this->subscribers.AddFor(callback.GetMemento(), &TellValue);
  }
  [[nodiscard]] PropertyValue<T> Get() const {
    PropertyValue<T> value = this->property.Get();
    if (value) return value;
    if (this->HasValue()) return this->property.Get();
    return this->template NoValue<PropertyValue<T>>();
  }
  SetResult Set(T value) {
    if (this->HasValue()) return this->property.Set(std::move(value));
    return this->template NoValue<SetResult>();
  }

 private:
  /// Calls a subscriber with the value, if there is one now.
  static void TellValue(const BindStateBase* subscriber, const BindConnection& connection,
                        const Framework::BindChange& /*change*/) {
    using Callback = VtrUtils::details::Invoker<void(const T&)>;
    const auto* const found = static_cast<const TypedBindConnection&>(connection).Access();
    if (found == nullptr) return;
    if (const T* const kept = found->KeptValue()) return Callback::CallOf(*subscriber, *kept);
    const T computed = found->GetValue();
    Callback::CallOf(*subscriber, computed);
  }
  /// Returns the property, or null.
  [[nodiscard]] IProperty<T>* Access() const {
    auto* const known = this->property.Property();
    if (known != nullptr || this->Source() == nullptr) return known;
    return this->LookAgain() ? this->property.Property() : nullptr;
  }
};

/// A ConnectedBind is a bind with a connection. It is what a DataBind and an AnyBind are.
template <class T, class Connection>
class ConnectedBind : public Framework::IDataBind<T> {
 public:
  ConnectedBind() : ConnectedBind(VtrString(), VtrString(), VtrString()) {}
  /// Takes the names. The bind is connected to nothing until Connect.
  ConnectedBind(const VtrString& context, const VtrString& source, const VtrString& property)
      : Framework::IDataBind<T>(context, source, property),
        connection(std::make_unique<Connection>(*this)) {}
  /// Takes the names and connects at once.
  ConnectedBind(IDataSourceProvider* provider, const VtrString& context, const VtrString& source,
                const VtrString& property)
      : ConnectedBind(context, source, property) {
    connection->Connect(*this, provider);
  }
  /// Does the same, beginning at the given scope itself.
  ConnectedBind(IDataSourceProvider* provider, const VtrString& source, const VtrString& property)
      : ConnectedBind(provider, VtrString(), source, property) {}
  /// Connects to the scope that the other bind is connected to.
  ConnectedBind(const ConnectedBind& other)
      : Framework::IDataBind<T>(other), connection(std::make_unique<Connection>(*this)) {
    connection->Connect(*this, other.connection->Provider());
  }
  /// Takes the other's names and scope over, and tells the subscribers, which stay.
  ConnectedBind& operator=(const ConnectedBind& other) {
    if (this == &other) return *this;
    Framework::IDataBind<T>::operator=(other);
    connection->Connect(*this, other.connection->Provider());
    return *this;
  }
  ~ConnectedBind() override { this->EndLiveness(); }

  void Connect(IDataSourceProvider* provider) override { connection->Connect(*this, provider); }
  /// Returns Data, as every value bind does.
  [[nodiscard]] Framework::BindTypeEnum BindType() const override {
    return Framework::BindTypeEnum::Data;
  }
  [[nodiscard]] Framework::BindStatus Status() const override { return connection->Status(); }
  [[nodiscard]] bool IsReadOnly() const override { return connection->IsReadOnly(); }
  [[nodiscard]] bool HasValue() const override { return connection->HasValue(); }
  Subscription SubscribeToChanges(const Framework::ChangeCallback& callback) override {
    return connection->Subscribe(callback);
  }
  [[nodiscard]] PropertyValue<T> Get() const override { return connection->Get(); }
  SetResult Set(T value) override { return connection->Set(std::move(value)); }
  [[nodiscard]] std::uint64_t Record() const override { return connection->Record(); }
  [[nodiscard]] SetResult Check(const T& value) const override { return connection->Check(value); }
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) const override {
    return connection->SubscribeToChecks(callback);
  }

 protected:
  std::unique_ptr<Connection> connection;
};

}  // namespace details

namespace Framework {

/// A DataBind is made from a scope and names: `{&scope, L"Context", L"Source", L"Property"}`. The
/// context may be left out, and the scope may be given later, by Connect.
///
/// A copy has the same names and a connection of its own to the same scope; subscribers stay with
/// the bind to which they subscribed. A move does the same, deliberately, so that a bind that was
/// moved from still serves its subscribers. A bind that is assigned to takes over the other's names
/// and scope, looks for what they name, and tells its own subscribers.
///
/// Therefore keep binds to which others subscribe in a std::deque, or each in a unique_ptr. A
/// vector that grows copies its binds, and the subscribers of the former ones hear nothing more.
///
/// A bind may be connected, made or assigned while one of its scopes calls its listeners because a
/// source comes or goes. It then begins to look when that scope has called them, and tells its
/// subscribers after that.
template <class T>
class DataBind final : public details::ConnectedBind<T, details::TypedBindConnection<T>> {
 public:
  using details::ConnectedBind<T, details::TypedBindConnection<T>>::ConnectedBind;

  Subscription SubscribeToValue(const RepeatingCallback<void(const T&)>& callback) override {
    return this->connection->SubscribeToValue(callback);
  }
};

}  // namespace Framework

}  // namespace DataBinding
