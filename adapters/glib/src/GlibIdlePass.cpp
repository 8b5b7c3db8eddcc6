// SPDX-License-Identifier: Apache-2.0
// This file holds the source of GLib's loop that runs the pass. It is dispatched when its ready
// time has come. Any thread may set that, and GLib wakes the loop then.

#include "DataBindingGlib/GlibIdlePass.h"

#include <glib.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <optional>
#include <string>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

namespace {

constexpr gint64 notReady = -1;

/// A PassSource is the object by which GLib knows a pass. It outlives a pass that ends while it is
/// dispatched.
struct PassSource {
  GSource base;
  void* pass;
};

}  // namespace

class GlibIdlePass::Source : public std::enable_shared_from_this<Source> {
 public:
  Source(std::chrono::microseconds length, int priority, GMainContext* context)
      : frame(length.count()), handle(g_source_new(&Functions(), sizeof(PassSource))) {
    reinterpret_cast<PassSource*>(handle)->pass = this;
    g_source_set_priority(handle, priority);
    g_source_set_can_recurse(handle, TRUE);
    g_source_set_ready_time(handle, notReady);
    g_source_attach(handle, context);
  }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() { g_source_unref(handle); }

  /// Delivers events from now on. A thread that is just raising one may still wake a pass that
  /// ends.
  void Begin() {
    pass.emplace([self = shared_from_this()] { g_source_set_ready_time(self->handle, self->due); });
  }
  /// Nothing is dispatched from now on.
  void End() {
    pass.reset();
    g_source_destroy(handle);
  }
  [[nodiscard]] const IdlePass& Pass() const { return *pass; }

  RepeatingCallback<void(const char*)> failed;

 private:
  static GSourceFuncs& Functions() {
    static GSourceFuncs functions{nullptr, nullptr, &Dispatch, nullptr, nullptr, nullptr};
    return functions;
  }
  static gboolean Dispatch(GSource* dispatched, GSourceFunc /*unused*/, gpointer /*unused*/) {
    static_cast<Source*>(reinterpret_cast<PassSource*>(dispatched)->pass)->Deliver();
    return G_SOURCE_CONTINUE;
  }

  void Deliver();
  void Tell(const std::string& reason);

  const gint64 frame;
  GSource* handle;
  /// The time before which no pass runs, in GLib's microseconds.
  std::atomic<gint64> due{0};
  std::optional<IdlePass> pass;
};

// Half of a frame is left to the rest of the program, however late a pass comes itself.
void GlibIdlePass::Source::Deliver() {
  const auto keep = shared_from_this();  // a listener may end the pass
  const gint64 begun = g_get_monotonic_time();
  due = begun + frame;
  g_source_set_ready_time(handle, notReady);
  try {
    pass->RunFor(std::chrono::microseconds(frame / 2));
  } catch (...) {
    Tell(ExceptionText(std::current_exception()).ToUtf8());
  }
  if (!pass) return;
  due = std::max(begun + frame, g_get_monotonic_time() + frame / 2);
  if (pass->IsRequested()) g_source_set_ready_time(handle, due);
}

void GlibIdlePass::Source::Tell(const std::string& reason) {
  if (pass && failed) return failed(reason.c_str());
  g_log("DataBinding", G_LOG_LEVEL_WARNING, "A listener to an event has thrown: %s",
        reason.c_str());
}

GlibIdlePass::GlibIdlePass(std::chrono::milliseconds frame, int priority, GMainContext* context)
    : source(std::make_shared<Source>(std::max(frame, std::chrono::milliseconds(1)), priority,
                                      context)) {
  source->Begin();
}

GlibIdlePass::~GlibIdlePass() { source->End(); }

void GlibIdlePass::WhenFailed(const RepeatingCallback<void(const char*)>& callback) {
  source->failed = callback;
}

const IdlePass& GlibIdlePass::Pass() const { return source->Pass(); }

}  // namespace DataBinding
