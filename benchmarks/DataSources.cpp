// SPDX-License-Identifier: Apache-2.0
// Finding data sources by name: the library's provider beside plain maps.

#include <map>
#include <string>
#include <unordered_map>

#include "Finding.h"
#include "Scopes.h"

namespace Benchmarks {

namespace {

/// The library's provider with its sources.
class OurScope {
 public:
  using Name = std::wstring;

  explicit OurScope(const Texts& names) {
    for (auto& source : MakeSources(scope, names)) scope.AddDataSource(source.release());
  }
  [[nodiscard]] DataBinding::IDataSource* Find(const Name& name) {
    return scope.GetDataSource(name.c_str());
  }

 private:
  Scope scope{nullptr, nullptr, nullptr};
};

/// A map of pointers, without scopes and without listeners that wait for a source.
template <class Map>
class MapScope {
 public:
  using Name = std::wstring;

  explicit MapScope(const Texts& names) {
    for (const auto& name : names) sources.emplace(name, &scope);
  }
  [[nodiscard]] Scope* Find(const Name& name) const {
    const auto found = sources.find(name);
    return found == sources.end() ? nullptr : found->second;
  }

 private:
  Scope scope{nullptr, nullptr, nullptr};
  Map sources;
};

[[maybe_unused]] const bool dataSourcesMeasured[] = {
    MeasureFinding<OurScope>("ours"),
    MeasureFinding<MapScope<std::unordered_map<std::wstring, Scope*>>>("hashmap"),
    MeasureFinding<MapScope<std::map<std::wstring, Scope*>>>("treemap"),
};

}  // namespace

}  // namespace Benchmarks
