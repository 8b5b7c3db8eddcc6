// GLib's idle sources in the place of the library's queue.

#include <glib.h>

#include "EventPeers.h"

namespace Benchmarks {

namespace {

class GlibEvents {
 public:
  explicit GlibEvents(const Texts& /*names*/) : sum{} {}
  void Subscribe(std::size_t /*name*/) {}
  void Raise(std::size_t /*name*/, const Reading& reading) {
    g_idle_add_full(G_PRIORITY_DEFAULT, &Deliver, new Event{&sum, reading}, &Free);
  }
  void Dispatch() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
  }

  Sum sum;

 private:
  struct Event {
    Sum* sum = nullptr;
    Reading reading;
  };

  static gboolean Deliver(gpointer data) {
    const auto* event = static_cast<Event*>(data);
    event->sum->Add(event->reading);
    return G_SOURCE_REMOVE;
  }
  static void Free(gpointer data) { delete static_cast<Event*>(data); }
};

BENCHMARK(RaiseAndDispatch<GlibEvents>)->Name("queue/glib")->Arg(100);

}  // namespace

}  // namespace Benchmarks
