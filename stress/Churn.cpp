// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/Property.h"
#include "Machine.h"
#include "Subjects.h"

namespace DataBinding::Stress {
namespace {

constexpr std::size_t checkpoints = 10;
constexpr std::size_t perScope = 1000;
constexpr std::size_t perBatch = 100;
constexpr std::size_t mostHeapGrowth = std::size_t{64} * 1024;
constexpr std::size_t mostResidentGrowth = std::size_t{2} * 1024 * 1024;

class Reading final : public NamedDataSource {
 public:
  Reading() : NamedDataSource(L"Reading") {}
  Property<int> number{this, L"Number"};
};

class Reader final : public DataListener {
 public:
  explicit Reader(std::size_t& heard) {
    AddDataListener(L"Reading", L"Number", [&heard] { ++heard; });
  }

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*provider*/) override {}
};

/// Makes sources, listens to them, sets and ends them. Every second one is also looked up, and
/// every fourth is taken back.
std::size_t ChurnSources(IDataSourceProvider& parent, std::size_t count) {
  std::size_t heard = 0;
  const DataSourceProviderPtr scope(parent.CreateDataSourceProvider(L"Churn", nullptr));
  Reader reader(heard);
  reader.SetDataSourceProvider(scope.get());
  for (std::size_t i = 0; i < count; ++i) {
    auto made = MakeDataSource<Reading>(scope.get());
    Reading& reading = *made;
    scope->AddDataSource(made.release());
    if (i % 2 == 0) scope->GetDataSource(L"Reading");
    reading.number.Set(1);
    if (i % 4 == 0) {
      scope->RemoveDataSource(&reading);
      IDataSource::Destroy(&reading);
    } else {
      scope->DeleteLocalDataSourceInstance(L"Reading");
    }
  }
  return heard;
}

/// Half of the events replace what is queued of their name, and are never heard.
std::size_t ChurnEvents(IdlePass& idle, const AppEvent<int>& event, std::size_t count) {
  std::size_t heard = 0;
  const Subscription subscription = event.Subscribe([&heard](int) { ++heard; });
  for (std::size_t i = 0; i < count; i += 2) {
    event.Raise(1);
    event.RaiseLatest(2);
    if (i % perBatch == 0) idle.Run();
  }
  idle.Run();
  return heard * 2;
}

}  // namespace

bool ChurnStaysFlat(std::size_t rounds) {
  const auto start = std::chrono::steady_clock::now();
  const AppEvent<int> event(L"Churned");
  IdlePass idle([] {});
  DataSourceProvider root(nullptr, L"", nullptr);
  std::size_t heard = 0;
  Memory before{};
  Memory now{};
  for (std::size_t point = 0; point <= checkpoints; ++point) {
    for (std::size_t i = 0; i < rounds / checkpoints; i += perScope) {
      heard += ChurnSources(root, perScope) + ChurnEvents(idle, event, perScope);
    }
    now = MemoryNow();
    if (point == 0) before = now;  // by now the library has the memory that it keeps for later use
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("churn: %9zu callbacks, %7zu bytes in use, %6zu KiB resident, %5.1f s\n", heard,
                now.inUse, now.resident / 1024, taken.count());
  }
  const bool isFlat = now.inUse <= before.inUse + mostHeapGrowth &&
                      now.resident <= before.resident + mostResidentGrowth;
  std::printf("churn: memory %s\n", isFlat ? "stays flat" : "grows");
  return isFlat;
}

}  // namespace DataBinding::Stress
