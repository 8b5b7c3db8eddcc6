// SPDX-License-Identifier: Apache-2.0
// The idle pass in GLib's loop, which has a picture to draw all the time.
#include <glib.h>

#include <atomic>
#include <exception>
#include <iostream>
#include <thread>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

inline constinit const AppEvent<int> sampleTaken{L"SampleTaken"};

class GlibPass {
 public:
  GlibPass() = default;
  GlibPass(const GlibPass&) = delete;
  GlibPass& operator=(const GlibPass&) = delete;
  ~GlibPass() {
    while (g_idle_remove_by_data(this)) {
    }
  }

 private:
  static gboolean RunPass(gpointer self) {
    try {
      static_cast<GlibPass*>(self)->pass.Run();
    } catch (const std::exception& failure) {
      std::cerr << failure.what() << '\n';  // GLib is written in C: nothing is thrown into it
    }
    return G_SOURCE_REMOVE;
  }

  IdlePass pass{[this] { g_idle_add_full(G_PRIORITY_DEFAULT, &RunPass, this, nullptr); }};
};

namespace {

constexpr int samples = 40'000;
std::atomic<bool> allTaken = false;

void TakeSamples() {
  for (int i = 0; i < samples; ++i) sampleTaken.Raise(i);
  allTaken = true;
}

/// Stands for a toolkit's drawing, and has the priority of GTK's. There is always more to draw.
gboolean Draw(gpointer framesSinceAllWereTaken) {
  if (allTaken) ++*static_cast<int*>(framesSinceAllWereTaken);
  return G_SOURCE_CONTINUE;
}

}  // namespace

int main() {
  const GlibPass pass;
  int heard = 0;
  const Subscription counter = sampleTaken.Subscribe([&](int) { ++heard; });
  int frames = 0;
  const guint drawing = g_idle_add_full(G_PRIORITY_HIGH_IDLE + 20, &Draw, &frames, nullptr);

  std::thread sampler(&TakeSamples);
  while (heard < samples && frames < 1000) g_main_context_iteration(nullptr, TRUE);
  sampler.join();
  g_source_remove(drawing);

  std::cout << heard << " of " << samples << " events arrived\n";
  return heard == samples ? 0 : 1;
}
