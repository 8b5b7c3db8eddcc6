// SPDX-License-Identifier: Apache-2.0
// GObject's property bindings.

#include "Binds.h"
#include "GlibObject.h"

namespace Benchmarks {

namespace {

/// A property bound to that of another object, with a handler that shows it.
class GlibBinding {
 public:
  GlibBinding() {
    g_object_bind_property(source.Get(), "target", widget.Get(), "target", G_BINDING_DEFAULT);
    watching =
        widget.Register({}, [this] { g_object_get(widget.Get(), "target", &shown, nullptr); });
  }
  void Set(double wanted) { g_object_set(source.Get(), "target", wanted, nullptr); }
  [[nodiscard]] double Shown() const { return shown; }

 private:
  double shown = 0;
  GlibNotify source;
  GlibNotify widget;
  GlibNotify::Handle watching;
};

[[maybe_unused]] const bool glibBindsMeasured = MeasureBind<GlibBinding>("glib");

}  // namespace

}  // namespace Benchmarks
