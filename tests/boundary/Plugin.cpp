// SPDX-License-Identifier: Apache-2.0
#include "Plugin.h"

#include <memory>
#include <stdexcept>

#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/DataSourceConstructor.h"
#include "DataBinding/property/Property.h"

namespace Boundary {

/// A type that only the plug-in knows.
struct Height {
  int meters = 0;
  bool operator==(const Height&) const = default;
};

}  // namespace Boundary

template <>
struct DataBinding::ValueForm<Boundary::Height> {
  static constexpr auto kind = ValueKind::Signed;
  static Value ToValue(const Boundary::Height& height) { return height.meters; }
  static PropertyValue<Boundary::Height> FromValue(const Value& value) {
    const auto meters = DataBinding::FromValue<int>(value);
    if (!meters) return {{}, meters.error, meters.text};
    return {Boundary::Height{*meters}, PropertyError::None, {}};
  }
};

namespace Boundary {

using namespace DataBinding;

namespace {

class FromPlugin : public NamedDataSource {
 public:
  FromPlugin() : NamedDataSource(L"FromPlugin") {}
  Property<Reading> Own{this, L"Own", Reading{1, L"plug"}};
  Property<Height> Top{this, L"Top", Height{3}};
};

struct State {
  DataSourceConstructor<FromPlugin> constructor{L"FromPlugin", L"root"};
  Subscription subscription;
  int heard = 0;
};
std::unique_ptr<State> state;

void Start(IDataSource* gauge) {
  state = std::make_unique<State>();
  state->subscription = gauge->Register([] { ++state->heard; }, L"Level");
}

Subscription Subscribe(IDataSource* gauge) {
  return gauge->Register(
      [] {
        ++Meter::GetInstance().count;
        throw std::runtime_error("from the plug-in");
      },
      L"Level");
}

int TimesHeard() { return state->heard; }
Meter& GetMeter() { return Meter::GetInstance(); }
void Stop() { state.reset(); }

}  // namespace

extern "C" BOUNDARY_API const PluginFunctions* GetPluginFunctions() {
  static const PluginFunctions functions{&Start,    &Subscribe, &TimesHeard,
                                         &GetMeter, &Stop,      MakePluginEvents()};
  return &functions;
}

}  // namespace Boundary
