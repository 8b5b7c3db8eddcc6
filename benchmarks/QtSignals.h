// SPDX-License-Identifier: Apache-2.0
/// Qt's signals, bindable properties, declared and dynamic properties in the place of the
/// library's broadcaster and properties.
#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QDynamicPropertyChangeEvent>
#include <QHash>
#include <QMetaMethod>
#include <QObject>
#include <QProperty>
#include <QVariant>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// The application object that posted events and dynamic properties need. It is made on first use.
QCoreApplication& QtApplication();

struct QtConnection {
  QMetaObject::Connection link;
  void End() const { QObject::disconnect(link); }
};

/// A QObject with a declared property that announces its changes.
class QtObject : public QObject {
  Q_OBJECT
  Q_PROPERTY(double target READ Target WRITE SetTarget NOTIFY Changed)

 public:
  [[nodiscard]] double Target() const { return target; }
  void SetTarget(double wanted) {
    if (target == wanted) return;
    target = wanted;
    Q_EMIT Changed();
  }
  [[nodiscard]] bool Heard() const {
    static const QMetaMethod changed = QMetaMethod::fromSignal(&QtObject::Changed);
    return isSignalConnected(changed);
  }

 Q_SIGNALS:
  void Changed();

 private:
  double target = 0;
};

/// Direct connections to one signal.
class QtSignal {
 public:
  using Name = std::wstring;
  using Handle = Scoped<QtConnection>;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return Handle({QObject::connect(&object, &QtObject::Changed, listener)});
  }
  void Emit(const Name& /*name*/) { Q_EMIT object.Changed(); }
  [[nodiscard]] bool Heard(const Name& /*name*/) const { return object.Heard(); }

 protected:
  QtObject object;
};

/// Notifiers of one bindable property, which is set to another number for each announcement.
class QtBindable {
 public:
  using Name = std::wstring;
  using Handle = QPropertyNotifier;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = false;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return property.addNotifier(listener);
  }
  void Emit(const Name& /*name*/) { property = property.value() + 1; }

 protected:
  QProperty<double> property;
};

/// An object that finds listeners by the name of the dynamic property that has changed.
class QtDynamicObject : public QObject {
 public:
  QtDynamicObject() { static_cast<void>(QtApplication()); }

  std::uint64_t Add(const char* name, std::function<void()> listener) {
    listeners[name].emplace(++lastId, std::move(listener));
    return lastId;
  }
  void Remove(const char* name, std::uint64_t id) {
    const auto found = listeners.find(name);
    found->erase(id);
    if (found->empty()) listeners.erase(found);
  }
  [[nodiscard]] bool Heard(const char* name) const { return listeners.contains(name); }

 protected:
  bool event(QEvent* received) override {
    if (received->type() != QEvent::DynamicPropertyChange) return QObject::event(received);
    const auto name = static_cast<QDynamicPropertyChangeEvent*>(received)->propertyName();
    const auto found = listeners.constFind(name);
    if (found == listeners.cend()) return true;
    for (const auto& [id, listener] : *found) listener();
    return true;
  }

 private:
  QHash<QByteArray, std::map<std::uint64_t, std::function<void()>>> listeners;
  std::uint64_t lastId = 0;
};

struct QtDynamicConnection {
  QtDynamicObject* object = nullptr;
  const char* name = nullptr;
  std::uint64_t id = 0;
  void End() const {
    if (object != nullptr) object->Remove(name, id);
  }
};

/// Dynamic properties of one object, set to another number for each announcement.
class QtDynamic {
 public:
  using Name = NarrowName;
  using Handle = Scoped<QtDynamicConnection>;
  static constexpr bool byName = true;
  static constexpr bool threadSafe = false;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& name, Listener listener) {
    return Handle({&object, name.Text(), object.Add(name.Text(), listener)});
  }
  void Emit(const Name& name) { object.setProperty(name.Text(), ++number); }
  [[nodiscard]] bool Heard(const Name& name) const { return object.Heard(name.Text()); }

 protected:
  QtDynamicObject object;
  double number = 0;
};

}  // namespace Benchmarks
