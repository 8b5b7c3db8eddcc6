// SPDX-License-Identifier: Apache-2.0
// Workloads of the library's typed properties, and of properties that one writes by hand.

#include "Properties.h"

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"

namespace Benchmarks {

namespace {

using DataBinding::MakeDataSource;
using DataBinding::VtrString;

class Thermostat : public DataBinding::NamedDataSource {
 public:
  Thermostat() : NamedDataSource(L"Thermostat") {}

  DataBinding::Property<double> target{this, L"Target", 0.0};
};

/// A property of a data source, set by code that knows the source's class.
class OurProperty {
 public:
  using Handle = DataBinding::Subscription;

  [[nodiscard]] Handle Register(Increment listener) {
    return source->Register(listener, L"Target");
  }
  void Set(double wanted) { benchmark::DoNotOptimize(source->target.Set(wanted)); }

 protected:
  DataBinding::DataSourcePtr<Thermostat> source = MakeDataSource<Thermostat>(nullptr);
};

/// A property of a data source, set and read by its name, with its type checked.
class OurNamedProperty : public OurProperty {
 public:
  void Set(double wanted) {
    benchmark::DoNotOptimize(DataBinding::SetProperty(source.get(), name, wanted));
  }
  [[nodiscard]] double Get() const { return *DataBinding::GetProperty<double>(source.get(), name); }

 private:
  static inline const VtrString name{L"Target"};
};

/// A property of a data source, set and read by a reference that was found before.
class OurFoundProperty : public OurProperty {
 public:
  void Set(double wanted) { benchmark::DoNotOptimize(found.Set(wanted)); }
  [[nodiscard]] double Get() const { return *found.Get(); }

 private:
  DataBinding::PropertyRef<double> found =
      DataBinding::FindProperty<double>(source.get(), L"Target");
};

/// A property of a data source, set and read by a reference that does not know its type.
class OurAnyProperty : public OurProperty {
 public:
  void Set(double wanted) { benchmark::DoNotOptimize(found.Write(wanted)); }
  [[nodiscard]] double Get() const { return *found.Read()->Get<double>(); }

 private:
  DataBinding::AnyPropertyRef found{source.get(), L"Target"};
};

[[maybe_unused]] const bool propertiesMeasured[] = {
    MeasureProperty<OurProperty>("ours"),
    MeasureProperty<OurNamedProperty>("oursnamed"),
    MeasureProperty<OurFoundProperty>("oursfound"),
    MeasureProperty<OurAnyProperty>("oursany"),
    MeasureProperty<SignalProperty<Floor>>("floor"),
    MeasureProperty<SignalProperty<BoostSignal>>("boost"),
};

/// A source announces one property, by its name.
void AnnounceOne(benchmark::State& state) {
  const auto source = MakeDataSource<Thermostat>(nullptr);
  Counter counter = 0;
  const auto handle = source->Register(Increment{&counter}, L"Target");
  const VtrString announced(L"Target");
  for (auto _ : state) source->UpdateListeners(announced);
  ExpectCalls(state, counter, 1);
}

BENCHMARK(AnnounceOne)->Name("announce/ours");

}  // namespace

}  // namespace Benchmarks
