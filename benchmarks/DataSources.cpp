// Finding data sources by name, and their typed properties.

#include <cstddef>
#include <memory>
#include <vector>

#include "Allocations.h"
#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/MakeDataSource.h"
#include "DataBinding/NamedDataSource.h"
#include "DataBinding/Property.h"
#include "DataBinding/PropertyAccess.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

using DataBinding::DataSourceProvider;
using DataBinding::MakeDataSource;
using DataBinding::NamedDataSource;
using DataBinding::VtrString;

class PlainSource : public NamedDataSource {
 public:
  using NamedDataSource::NamedDataSource;
};

class Thermostat : public NamedDataSource {
 public:
  Thermostat() : NamedDataSource(L"Thermostat") {}

  DataBinding::Property<double> target{this, L"Target", 21.0};
  DataBinding::Property<double> actual{this, L"Actual", 19.5};
  DataBinding::Property<int> step{this, L"Step", 1};
};

struct EndProvider {
  void operator()(DataSourceProvider* provider) const {
    DataBinding::IDataSourceProvider::Destroy(provider);
  }
};
using ProviderPtr = std::unique_ptr<DataSourceProvider, EndProvider>;

ProviderPtr MakeProvider(const Texts& names) {
  ProviderPtr provider(new DataSourceProvider(nullptr, nullptr, nullptr));
  for (const auto& name : names) {
    provider->AddDataSource(
        MakeDataSource<PlainSource>(provider.get(), VtrString(name.c_str())).release());
  }
  return provider;
}

/// {sources, how many of them are asked for in turn}
void FindSource(benchmark::State& state) {
  const auto sources = static_cast<std::size_t>(state.range(0));
  const Texts texts = OrdinaryNames(sources);
  auto order = Shuffled(sources);
  order.resize(static_cast<std::size_t>(state.range(1)));
  const auto asked = MakeNames<std::wstring>(texts, order);
  const auto provider = MakeProvider(texts);
  auto next = asked.begin();
  const AllocationWatch watch(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(provider->GetDataSource(next->c_str()));
    if (++next == asked.end()) next = asked.begin();
  }
}

BENCHMARK(FindSource)
    ->Name("find/ours")
    ->Args({100, 100})
    ->Args({100'000, 100})
    ->Args({100'000, 100'000});

/// A source announces one property, by its name.
void AnnounceOne(benchmark::State& state) {
  const auto source = MakeDataSource<Thermostat>(nullptr);
  Counter counter = 0;
  const auto handle = source->Register(Increment{&counter}, L"Target");
  const VtrString announced(L"Target");
  for (auto _ : state) source->UpdateListeners(announced);
  ExpectCalls(state, counter, 1);
}

void SetProperty(benchmark::State& state) {
  const auto source = MakeDataSource<Thermostat>(nullptr);
  Counter counter = 0;
  const auto handle = source->Register(Increment{&counter}, L"Target");
  double wanted = 0.0;
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      wanted += 0.5;
      benchmark::DoNotOptimize(source->target.Set(wanted));
    }
  }
  ExpectCalls(state, counter, 1);
}

void GetProperty(benchmark::State& state) {
  const auto source = MakeDataSource<Thermostat>(nullptr);
  const VtrString name(L"Target");
  const AllocationWatch watch(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(DataBinding::GetProperty<double>(source.get(), name));
  }
}

/// The same by a reference that was found before.
void GetFoundProperty(benchmark::State& state) {
  const auto source = MakeDataSource<Thermostat>(nullptr);
  const auto found = DataBinding::FindProperty<double>(source.get(), L"Target");
  for (auto _ : state) benchmark::DoNotOptimize(found.Get());
}

BENCHMARK(AnnounceOne)->Name("typed/announce");
BENCHMARK(SetProperty)->Name("typed/set");
BENCHMARK(GetProperty)->Name("typed/get");
BENCHMARK(GetFoundProperty)->Name("typed/found");

}  // namespace

}  // namespace Benchmarks
