// SPDX-License-Identifier: Apache-2.0
/// DataBind: one property of a data source, found by name and followed wherever it goes.
///
/// Connected to a scope, the bind looks for its data source there and further out, beginning with
/// the nearest scope that has the data context's name as a category (with the given scope for an
/// empty name or the null-data marker). It connects when the source appears, prefers a nearer
/// source of that name to one further out, and falls back when the nearer one goes; it never has a
/// source built. When its scope shuts down it is connected to none. Bind, scopes, sources and
/// subscriptions may end in any order. One thread, that of the provider tree.
///
///   Framework::DataBind<double> load(&provider, L"Cpu", L"Load");
///   Subscription redraw = load.SubscribeToChanges([&] { label.Show(load.Get()); });
#pragma once

#include <cstddef>
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

/// The part of a data bind that does not depend on its type. It stands on the heap for its bind,
/// and each of its calls ends with telling the subscribers, who may end it.
class DATABINDING_API BindConnection : public SupportsWeakPtr<BindConnection> {
 public:
  /// For a bind's names, and a property filed under one of the types.
  BindConnection(const Framework::IBaseBind& bind, const runtime_type_base& plain,
                 const runtime_type_base& readOnly);
  BindConnection(const BindConnection&) = delete;
  BindConnection& operator=(const BindConnection&) = delete;
  virtual ~BindConnection();

  /// Looks for what the bind names, in place of what was connected before.
  void Connect(const Framework::IBaseBind& bind, IDataSourceProvider* provider);
  /// The scope that it is connected to, or null.
  [[nodiscard]] IDataSourceProvider* Provider() const;
  [[nodiscard]] Framework::BindStatus Status() const;
  [[nodiscard]] const VtrString& SourceName() const noexcept { return sourceName; }
  [[nodiscard]] const VtrString& PropertyName() const noexcept { return propertyName; }
  /// True while there is a property to read.
  [[nodiscard]] virtual bool HasValue() const = 0;
  Subscription Subscribe(const RepeatingCallback<void()>& callback) {
    return changed.Add(callback);
  }

 protected:
  [[nodiscard]] IDataSource* Source() const noexcept { return source; }

 private:
  friend class DataBindListener;

  /// Finds the property in its new source, or in none.
  virtual void Refer(IDataSource* newSource, const VtrString& name) = 0;

  /// Begins to listen in a scope and those further out; later if one is calling its listeners.
  void Enter(IDataSourceProvider* provider);
  void Resume();
  /// A scope can be reached no more, and with it all further out.
  void CutAt(const DataBindListener& listener);
  void Update();
  void Follow(IDataSource* newSource);
  void Notify();
  [[nodiscard]] bool NamesAProperty() const;
  [[nodiscard]] std::size_t ContextIndex() const;
  [[nodiscard]] IDataSource* NearestSource() const noexcept;

  const runtime_type_base& plainType;
  const runtime_type_base& readOnlyType;
  VtrString contextName;
  VtrString sourceName;
  VtrString propertyName;
  /// One for each scope, from the one that was given outward.
  std::vector<std::unique_ptr<DataBindListener>> listeners;
  /// The first listener waits until the scopes have called their listeners.
  bool isWaiting = false;
  IDataSource* source = nullptr;
  Subscription propertySubscription;
  CallbackList<> changed;
};

template <class T>
class TypedBindConnection final : public BindConnection {
 public:
  explicit TypedBindConnection(const Framework::IBaseBind& bind)
      : BindConnection(bind, runtime_type<T>::Get(), runtime_type<const T>::Get()),
        property(nullptr, bind.Path()) {}

  [[nodiscard]] bool HasValue() const override { return Property().IsThere(); }
  [[nodiscard]] bool IsReadOnly() const { return HasValue() && property.IsReadOnly(); }
  [[nodiscard]] PropertyValue<T> Get() const {
    PropertyValue<T> value = property.Get();
    if (value) return value;
    value = Property().Get();
    if (!value) value.text = Status().text;
    return value;
  }
  SetResult Set(T value) {
    if (HasValue()) return property.Set(std::move(value));
    return {false, property.Error(), Status().text};
  }

 private:
  void Refer(IDataSource* newSource, const VtrString& name) override {
    property = PropertyRef<T>(newSource, name);
  }
  /// Looks for a property again that was not there: it may come and go while its source stays.
  [[nodiscard]] const PropertyRef<T>& Property() const {
    if (Source() != nullptr && !property.IsThere()) {
      property = PropertyRef<T>(Source(), PropertyName());
    }
    return property;
  }

  mutable PropertyRef<T> property;
};

}  // namespace details

namespace Framework {

/// A copy has the same names and a connection of its own to the same scope; subscribers stay with
/// the bind to which they subscribed. Moving copies, deliberately: a bind that was moved from still
/// serves its subscribers. Assigning makes a bind look for what the other one names, where the
/// other one does, and tells its subscribers.
///
/// So keep binds in a std::deque, or each in a unique_ptr, where others subscribe to them: a vector
/// that grows copies its binds, and the subscribers of the former ones hear nothing more.
///
/// A bind that is connected, made or assigned while one of its scopes calls its listeners, because
/// a source comes or goes, begins to look when that scope has done so, and then tells its
/// subscribers.
template <class T>
class DataBind final : public IDataBind<T> {
 public:
  DataBind() : DataBind(VtrString(), VtrString(), VtrString()) {}
  /// Connected to nothing until Connect.
  DataBind(const VtrString& context, const VtrString& source, const VtrString& property)
      : IDataBind<T>(context, source, property), connection(std::make_unique<Connection>(*this)) {}
  /// Connects at once.
  DataBind(IDataSourceProvider* provider, const VtrString& context, const VtrString& source,
           const VtrString& property)
      : DataBind(context, source, property) {
    connection->Connect(*this, provider);
  }
  /// The same, beginning at the given scope itself.
  DataBind(IDataSourceProvider* provider, const VtrString& source, const VtrString& property)
      : DataBind(provider, VtrString(), source, property) {}
  /// Connects to the scope that the other one is connected to.
  DataBind(const DataBind& other)
      : IDataBind<T>(other), connection(std::make_unique<Connection>(*this)) {
    connection->Connect(*this, other.connection->Provider());
  }
  /// Takes names and scope over, and tells the subscribers, which stay.
  DataBind& operator=(const DataBind& other) {
    if (this == &other) return *this;
    IDataBind<T>::operator=(other);
    connection->Connect(*this, other.connection->Provider());
    return *this;
  }
  ~DataBind() override { this->EndLiveness(); }

  void Connect(IDataSourceProvider* provider) override { connection->Connect(*this, provider); }
  /// Data, for every value bind.
  [[nodiscard]] BindTypeEnum BindType() const override { return BindTypeEnum::Data; }
  [[nodiscard]] BindStatus Status() const override { return connection->Status(); }
  [[nodiscard]] bool IsReadOnly() const override { return connection->IsReadOnly(); }
  [[nodiscard]] bool HasValue() const override { return connection->HasValue(); }
  Subscription SubscribeToChanges(const RepeatingCallback<void()>& callback) override {
    return connection->Subscribe(callback);
  }
  [[nodiscard]] PropertyValue<T> Get() const override { return connection->Get(); }
  SetResult Set(T value) override { return connection->Set(std::move(value)); }

 private:
  using Connection = details::TypedBindConnection<T>;

  std::unique_ptr<Connection> connection;
};

}  // namespace Framework

}  // namespace DataBinding
