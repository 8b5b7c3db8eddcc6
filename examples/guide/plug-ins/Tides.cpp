// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include <DataBinding/DataBinding.h>

#include "Events.h"

#if defined(_WIN32)
#define PLUGIN_API __declspec(dllexport)
#else
#define PLUGIN_API __attribute__((visibility("default")))
#endif

using namespace DataBinding;

namespace {

class Tide : public NamedDataSource {
 public:
  Tide() : NamedDataSource(L"Tide") {}

  Property<double> level{this, L"Level", 2.5};
};

/// All that the plug-in has: it ends in one place.
struct Plugin {
  DataSourceConstructor<Tide> tides{L"Tide", L"root"};
};
std::unique_ptr<Plugin> plugin;

}  // namespace

extern "C" PLUGIN_API void StartPlugin() {
  plugin = std::make_unique<Plugin>();
  tideTurned.Raise(2.5);
}

extern "C" PLUGIN_API void StopPlugin() {
  auto& events = IAppEventBroadcaster::GetInstance();
  events.DropEventsFrom(ThisModule());        // what it has queued, or what is held
  events.UnregisterEventHooks(ThisModule());  // hooks that were registered for ThisModule()
  static_cast<void>(events.TakeFailure());    // an exception may be of a type of the plug-in's
  plugin.reset();                             // ends the constructor, and the tides with it
}
