// SPDX-License-Identifier: Apache-2.0
// Records that are GObjects, with six properties each.

#include <glib-object.h>

#include <memory>

#include "Records.h"

namespace Benchmarks {

namespace {

struct RecordInstance {
  GObject parent;
  gint number;
  gint age;
  gdouble height;
  gdouble weight;
  gboolean isActive;
  gchar* remark;
};

constexpr auto recordFlags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | G_PARAM_EXPLICIT_NOTIFY);

void InitRecordClass(gpointer made, gpointer /*data*/) {
  auto* objectClass = static_cast<GObjectClass*>(made);
  objectClass->set_property = [](GObject*, guint, const GValue*, GParamSpec*) {};
  objectClass->get_property = [](GObject*, guint, GValue*, GParamSpec*) {};
  const auto whole = [](const char* name) {
    return g_param_spec_int(name, nullptr, nullptr, G_MININT, G_MAXINT, 0, recordFlags);
  };
  const auto fraction = [](const char* name) {
    return g_param_spec_double(name, nullptr, nullptr, -G_MAXDOUBLE, G_MAXDOUBLE, 0, recordFlags);
  };
  GParamSpec* const properties[] = {
      whole("number"),
      whole("age"),
      fraction("height"),
      fraction("weight"),
      g_param_spec_boolean("active", nullptr, nullptr, FALSE, recordFlags),
      g_param_spec_string("remark", nullptr, nullptr, nullptr, recordFlags)};
  guint id = 0;
  for (auto* property : properties) g_object_class_install_property(objectClass, ++id, property);
}

GType RecordType() {
  static const GType type = g_type_register_static_simple(
      G_TYPE_OBJECT, "BenchmarkRecord", sizeof(GObjectClass), &InitRecordClass,
      sizeof(RecordInstance), nullptr, GTypeFlags());
  return type;
}

struct Unref {
  void operator()(GObject* object) const noexcept { g_object_unref(object); }
};

struct GlibRecord {
  using Made = std::unique_ptr<GObject, Unref>;
  static Made Make() { return Made(static_cast<GObject*>(g_object_new(RecordType(), nullptr))); }
};

[[maybe_unused]] const bool glibRecordsMeasured = MeasureRecord<GlibRecord>("glib");

}  // namespace

}  // namespace Benchmarks
