// From a property that is set to the function that shows it.

#include "Allocations.h"
#include "DataBinding/DataBind.h"
#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/MakeDataSource.h"
#include "DataBinding/NamedDataSource.h"
#include "DataBinding/Property.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

using DataBinding::DataSourceProvider;
using DataBinding::MakeDataSource;

class Heater : public DataBinding::NamedDataSource {
 public:
  Heater() : NamedDataSource(L"Heater") {}

  DataBinding::Property<double> target{this, L"Target", 21.0};
};

/// A scope with the source; `join` is given both and the widget's value, and gives what keeps the
/// two joined.
template <class Join>
void SetToWidget(benchmark::State& state, Join join) {
  DataSourceProvider scope(nullptr, nullptr, nullptr);
  auto* source = MakeDataSource<Heater>(&scope).release();
  scope.AddDataSource(source);
  double shown = 0.0;
  const auto joined = join(scope, *source, shown);
  double wanted = 0.0;
  const AllocationWatch watch(state);
  for (auto _ : state) {
    wanted += 0.5;
    benchmark::DoNotOptimize(source->target.Set(wanted));
    benchmark::DoNotOptimize(shown);
  }
  if (shown != wanted) state.SkipWithError("the widget was not told");
}

/// A callback at the source that reads the property which it knows.
void SetToCallback(benchmark::State& state) {
  SetToWidget(state, [](DataSourceProvider& /*scope*/, Heater& source, double& shown) {
    return source.Register([&source, &shown] { shown = source.target.Get(); }, L"Target");
  });
}

void SetToBind(benchmark::State& state) {
  SetToWidget(state, [](DataSourceProvider& scope, Heater& /*source*/, double& shown) {
    struct Joined {
      std::unique_ptr<DataBinding::Framework::DataBind<double>> bind;
      DataBinding::Subscription watching;
    } joined;
    joined.bind = std::make_unique<DataBinding::Framework::DataBind<double>>(&scope, L"", L"Heater",
                                                                             L"Target");
    joined.watching = joined.bind->SubscribeToChanges(
        [bind = joined.bind.get(), &shown] { shown = *bind->Get(); });
    return joined;
  });
}

BENCHMARK(SetToCallback)->Name("bind/callback");
BENCHMARK(SetToBind)->Name("bind/ours");

}  // namespace

}  // namespace Benchmarks
