// SPDX-License-Identifier: Apache-2.0
// GLib's idle sources in the place of the library's queue.

#include "EventWorkloads.h"
#include "GlibObject.h"

namespace Benchmarks {

namespace {

/// Adds one idle source for each event that is raised. It has a main context of its own, which
/// keeps out the sources of other peers.
template <class Receiver>
class GlibIdle {
 public:
  explicit GlibIdle(const Texts& names) : receivers(names.size()), newest(names.size()) {}
  GlibIdle(const GlibIdle&) = delete;
  GlibIdle& operator=(const GlibIdle&) = delete;
  ~GlibIdle() {
    for (GSource* source : newest) Release(source);
    g_main_context_unref(context);
  }

  void Subscribe(std::size_t name) { receivers[name].Add(sum); }
  void Raise(std::size_t name, const Reading& reading) { g_source_unref(Attach(name, reading)); }
  void RaiseLatest(std::size_t name, const Reading& reading) {
    if (newest[name] != nullptr) g_source_destroy(newest[name]);
    Release(std::exchange(newest[name], Attach(name, reading)));
  }
  void Dispatch() {
    while (g_main_context_iteration(context, FALSE) != FALSE) {
    }
  }

  Sum sum;

 private:
  struct Event {
    Receiver* receiver;
    Reading reading;
  };

  GSource* Attach(std::size_t name, const Reading& reading) {
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, &Deliver, new Event{&receivers[name], reading}, &Free);
    g_source_attach(source, context);
    return source;
  }
  static void Release(GSource* source) {
    if (source != nullptr) g_source_unref(source);
  }
  static gboolean Deliver(gpointer data) {
    auto* event = static_cast<Event*>(data);
    event->receiver->Take(event->reading);
    return G_SOURCE_REMOVE;
  }
  static void Free(gpointer data) { delete static_cast<Event*>(data); }

  GMainContext* context = g_main_context_new();
  std::vector<Receiver> receivers;
  std::vector<GSource*> newest;
};

/// The one listener of a name.
class Single {
 public:
  void Add(Sum& target) { sum = &target; }
  void Take(const Reading& reading) { sum->Add(reading); }

 private:
  Sum* sum = nullptr;
};

/// An object whose signal passes the reading on to the listeners.
class Sender : public GlibObject {
 public:
  void Add(Sum& sum) { g_signal_connect(object, "raised", G_CALLBACK(&Hear), &sum); }
  void Take(const Reading& reading) { g_signal_emit(object, GlibClass::Get().raised, 0, &reading); }

 private:
  static void Hear(GObject* /*sender*/, const Reading* reading, Sum* sum) { sum->Add(*reading); }
};

[[maybe_unused]] const bool glibEventsMeasured = [] {
  EnterQueue<GlibIdle<Single>>("glib");
  EnterDelivery<GlibIdle<Sender>>("glib");
  return true;
}();

}  // namespace

}  // namespace Benchmarks
