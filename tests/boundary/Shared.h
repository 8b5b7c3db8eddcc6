// SPDX-License-Identifier: Apache-2.0
/// What the modules of the boundary tests know of each other: a value type, a singleton, and the
/// functions through which the test drives them.
///
/// The model publishes a data source "Gauge" with the properties "Level" (int) and "Last"
/// (Reading); nobody else sees its class.
#pragma once

#include <string>

#include <DataBinding/appevents/AppEvent.h>
#include <DataBinding/appevents/WAppEventRegistrar.h>
#include <DataBinding/datasource/IDataSourceProvider.h>
#include <DataBinding/foundation/Singleton.h>
#include <DataBinding/property/PropertyAccess.h>

#if defined(_WIN32) && defined(BOUNDARY_BUILD)
#define BOUNDARY_API __declspec(dllexport)
#elif defined(_WIN32)
#define BOUNDARY_API __declspec(dllimport)
#else
#define BOUNDARY_API __attribute__((visibility("default")))
#endif

namespace Boundary {

struct Reading {
  int value = 0;
  DataBinding::VtrString unit;
  bool operator==(const Reading&) const = default;
};

class Meter : public DataBinding::Singleton<Meter> {
 public:
  int count = 0;
};

/// Registers the model's constructor for as long as the registration lives.
BOUNDARY_API void StartModel();
BOUNDARY_API void StopModel();

/// Sets the gauge by name from the view's module and gives what it then reads there.
BOUNDARY_API DataBinding::SetResult SetLevelInView(DataBinding::IDataSource* gauge, int level);
BOUNDARY_API Reading ReadLastInView(DataBinding::IDataSource* gauge);

/// Raised by the plug-in, heard on both sides.
inline constinit const DataBinding::AppEvent<Reading> read{L"Read"};

BOUNDARY_API DataBinding::IAppEventBroadcaster& BroadcasterOfView();
BOUNDARY_API DataBinding::WAppEventRegistrar& RegistrarOfView();

/// The event half of what the plug-in exports.
struct PluginEvents {
  DataBinding::IAppEventBroadcaster& (*broadcaster)();
  DataBinding::WAppEventRegistrar& (*registrar)();
  /// A subscription that the host keeps: appends what it hears to the text.
  DataBinding::Subscription (*listen)(std::string& heard);
  void (*raise)(int value);
  /// Uses a name with the signature void (Reading), and gives what that throws.
  std::string (*use)(const wchar_t* name);
  /// The same with the signature void (Unnamed), for a type of the plug-in's unnamed namespace.
  std::string (*useUnnamed)(const wchar_t* name);
  /// Queues an event of the plug-in's own kind, leaves a hook and activates a listener.
  void (*enter)(std::string& heard);
  /// Takes all that back, and whatever else of the plug-in's is queued or held.
  void (*leave)();
};

/// What the plug-in exports, by one function of C linkage.
struct PluginFunctions {
  /// Registers a constructor "FromPlugin" and listens to the gauge.
  void (*start)(DataBinding::IDataSource* gauge);
  /// A registration that the host keeps: counts into the plug-in's meter, then throws.
  DataBinding::Subscription (*subscribe)(DataBinding::IDataSource* gauge);
  int (*timesHeard)();
  Meter& (*meter)();
  void (*stop)();
  PluginEvents events;
};

}  // namespace Boundary
