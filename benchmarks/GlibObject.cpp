// SPDX-License-Identifier: Apache-2.0
#include "GlibObject.h"

#include "Properties.h"
#include "Signals.h"

namespace Benchmarks {

namespace {

struct Instance {
  GObject parent;
  double target;
};

constexpr guint targetId = 1;

void SetTarget(GObject* object, guint /*id*/, const GValue* value, GParamSpec* property) {
  auto& target = reinterpret_cast<Instance*>(object)->target;
  const double wanted = g_value_get_double(value);
  if (target == wanted) return;
  target = wanted;
  g_object_notify_by_pspec(object, property);
}

void GetTarget(GObject* object, guint /*id*/, GValue* value, GParamSpec* /*property*/) {
  g_value_set_double(value, reinterpret_cast<Instance*>(object)->target);
}

void InitClass(gpointer made, gpointer /*data*/) {
  auto* objectClass = static_cast<GObjectClass*>(made);
  objectClass->set_property = &SetTarget;
  objectClass->get_property = &GetTarget;
  const auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                              G_PARAM_EXPLICIT_NOTIFY);
  g_object_class_install_property(
      objectClass, targetId,
      g_param_spec_double("target", nullptr, nullptr, -G_MAXDOUBLE, G_MAXDOUBLE, 0, flags));
}

GlibClass MakeClass() {
  GlibClass made;
  made.type = g_type_register_static_simple(G_TYPE_OBJECT, "BenchmarkObject", sizeof(GObjectClass),
                                            &InitClass, sizeof(Instance), nullptr, GTypeFlags());
  auto* objectClass = static_cast<GObjectClass*>(g_type_class_ref(made.type));
  made.target = g_object_class_find_property(objectClass, "target");
  made.changed = g_signal_new("changed", made.type,
                              static_cast<GSignalFlags>(G_SIGNAL_RUN_LAST | G_SIGNAL_DETAILED), 0,
                              nullptr, nullptr, nullptr, G_TYPE_NONE, 0);
  made.raised = g_signal_new("raised", made.type, G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr,
                             G_TYPE_NONE, 1, G_TYPE_POINTER);
  return made;
}

/// A property, set and read by its name.
class GlibProperty : public GlibNotify {
 public:
  [[nodiscard]] Handle Register(Increment listener) { return GlibNotify::Register({}, listener); }
  void Set(double wanted) { g_object_set(object, "target", wanted, nullptr); }
  [[nodiscard]] double Get() const {
    double number = 0;
    g_object_get(object, "target", &number, nullptr);
    return number;
  }
};

[[maybe_unused]] const bool glibObjectMeasured[] = {
    Mention("GLib", std::to_string(glib_major_version) + '.' + std::to_string(glib_minor_version) +
                        '.' + std::to_string(glib_micro_version)),
    MeasureSignal<GlibSignal>("glib"),
    MeasureSignal<GlibDetail>("glibdetail"),
    MeasureSignal<GlibNotify>("glibnotify"),
    MeasureProperty<GlibProperty>("glib"),
};

}  // namespace

const GlibClass& GlibClass::Get() {
  static const GlibClass made = MakeClass();
  return made;
}

}  // namespace Benchmarks
