// SPDX-License-Identifier: Apache-2.0
/// GObject's signals and property notifications in the place of the library's broadcaster.
#pragma once

#include <glib-object.h>

#include <string>

#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

/// A class with the signals "changed", which takes details, and "raised", which carries a pointer,
/// and a property "target".
class GlibClass {
 public:
  [[nodiscard]] static const GlibClass& Get();

  GType type = 0;
  guint changed = 0;
  guint raised = 0;
  GParamSpec* target = nullptr;
};

struct GlibConnection {
  GObject* object = nullptr;
  gulong id = 0;
  void End() const {
    if (object != nullptr) g_signal_handler_disconnect(object, id);
  }
};

/// The base of the peers: an object, and handlers of its signals.
class GlibObject {
 public:
  using Handle = Scoped<GlibConnection>;

  GlibObject() : object(static_cast<GObject*>(g_object_new(GlibClass::Get().type, nullptr))) {}
  GlibObject(const GlibObject&) = delete;
  GlibObject& operator=(const GlibObject&) = delete;
  ~GlibObject() { g_object_unref(object); }

  [[nodiscard]] GObject* Get() const noexcept { return object; }

 protected:
  template <class Listener>
  [[nodiscard]] Handle Connect(guint signal, GQuark detail, Listener listener) {
    GClosure* closure = g_cclosure_new_swap(reinterpret_cast<GCallback>(&Run<Listener>),
                                            new Listener(listener), &Delete<Listener>);
    return Handle({object, g_signal_connect_closure_by_id(object, signal, detail, closure, FALSE)});
  }

  GObject* object;

 private:
  template <class Listener>
  static void Run(gpointer listener) {
    (*static_cast<Listener*>(listener))();
  }
  template <class Listener>
  static void Delete(gpointer listener, GClosure* /*closure*/) {
    delete static_cast<Listener*>(listener);
  }
};

/// One signal. GObject keeps the handlers of all objects under one lock of the process.
class GlibSignal : public GlibObject {
 public:
  using Name = std::wstring;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    return Connect(GlibClass::Get().changed, 0, listener);
  }
  void Emit(const Name& /*name*/) { g_signal_emit(object, GlibClass::Get().changed, 0); }
  [[nodiscard]] bool Heard(const Name& /*name*/) const {
    return g_signal_has_handler_pending(object, GlibClass::Get().changed, 0, FALSE) != FALSE;
  }
};

/// One signal whose details are the names.
class GlibDetail : public GlibObject {
 public:
  using Name = NarrowName;
  static constexpr bool byName = true;
  static constexpr bool threadSafe = true;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& name, Listener listener) {
    return Connect(GlibClass::Get().changed, g_quark_from_string(name.Text()), listener);
  }
  void Emit(const Name& name) {
    g_signal_emit(object, GlibClass::Get().changed, g_quark_try_string(name.Text()));
  }
  [[nodiscard]] bool Heard(const Name& name) const {
    const GQuark detail = g_quark_try_string(name.Text());
    return g_signal_has_handler_pending(object, GlibClass::Get().changed, detail, FALSE) != FALSE;
  }
};

/// Notifications of a property, without setting it.
class GlibNotify : public GlibObject {
 public:
  using Name = std::wstring;
  static constexpr bool byName = false;
  static constexpr bool threadSafe = false;

  template <class Listener>
  [[nodiscard]] Handle Register(const Name& /*name*/, Listener listener) {
    static const guint notify = g_signal_lookup("notify", G_TYPE_OBJECT);
    return Connect(notify, g_param_spec_get_name_quark(GlibClass::Get().target), listener);
  }
  void Emit(const Name& /*name*/) { g_object_notify_by_pspec(object, GlibClass::Get().target); }
};

}  // namespace Benchmarks
