/// What the modules of the boundary tests know of each other: a value type, a singleton, and the
/// functions through which the test drives them.
///
/// The model publishes a data source "Gauge" with the properties "Level" (int) and "Last"
/// (Reading); nobody else sees its class.
#pragma once

#include <DataBinding/DataBinding.h>

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
BOUNDARY_API const DataBinding::runtime_type_base& ReadingTypeOfModel();
BOUNDARY_API void StartModel();
BOUNDARY_API void StopModel();

/// Sets the gauge by name from the view's module and gives what it then reads there.
BOUNDARY_API DataBinding::SetResult SetLevelInView(DataBinding::IDataSource* gauge, int level);
BOUNDARY_API Reading ReadLastInView(DataBinding::IDataSource* gauge);
BOUNDARY_API bool ViewCatchesUnknownSource(DataBinding::IDataSourceProvider& provider);

/// What the plug-in exports, by one function of C linkage.
struct PluginFunctions {
  /// Registers a constructor "FromPlugin" and listens to the gauge.
  void (*start)(DataBinding::IDataSource* gauge);
  /// A registration that the host keeps: counts into the plug-in's meter, then throws.
  DataBinding::Subscription (*subscribe)(DataBinding::IDataSource* gauge);
  int (*timesHeard)();
  Meter& (*meter)();
  void (*stop)();
};

}  // namespace Boundary
