// SPDX-License-Identifier: Apache-2.0
// Measures how the costs of a provider grow with its sources, its listeners and the depth of its
// tree: adding, finding and removing sources; connecting and disconnecting listeners; and asking
// through scopes within scopes.

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DataBinding/datasource/DataListener.h"
#include "Peers.h"
#include "Scopes.h"

namespace Benchmarks {

namespace {

/// Runs one step of an iteration with the clock on, which stands still otherwise.
template <class Step>
void OnTheClock(benchmark::State& state, Step step) {
  state.ResumeTiming();
  step();
  state.PauseTiming();
}

/// Sources that are added to, looked up in and removed from one provider.
class OurSources {
 public:
  explicit OurSources(const Texts& names) : sources(MakeSources(scope, names)) {}

  void Add() {
    for (auto& source : sources) scope.AddDataSource(source.get());
  }
  void Find(const Texts& asked) {
    for (const auto& name : asked) benchmark::DoNotOptimize(scope.GetDataSource(name.c_str()));
  }
  void Remove(const std::vector<std::size_t>& order) {
    for (const auto i : order) scope.RemoveDataSource(sources[i].get());
  }

 private:
  Scope scope{nullptr, nullptr, nullptr};
  std::vector<PlainSourcePtr> sources;  // ends before its scope, which must have given them back
};

/// The same sources in a map, which shows what memory alone costs, without a provider.
class MappedSources {
 public:
  explicit MappedSources(const Texts& names) : made(MakeSources(scope, names)) {}

  void Add() {
    for (auto& source : made) sources.emplace(source->GetDataSourceName(), source.get());
  }
  void Find(const Texts& asked) {
    for (const auto& name : asked) benchmark::DoNotOptimize(sources.find(name)->second);
  }
  void Remove(const std::vector<std::size_t>& order) {
    for (const auto i : order) sources.erase(made[i]->GetDataSourceName());
  }

 private:
  Scope scope{nullptr, nullptr, nullptr};
  std::vector<PlainSourcePtr> made;
  std::unordered_map<std::wstring, PlainSource*> sources;
};

enum class Step { Add, Find, Remove };

/// Measures one of the steps for as many sources.
template <class Peer, Step Timed>
void Sources(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const Texts names = OrdinaryNames(count);
  const auto order = Shuffled(count);
  const auto asked = MakeNames<std::wstring>(names, order);
  const auto run = [&](Step step, auto work) { step == Timed ? OnTheClock(state, work) : work(); };
  for (auto _ : state) {
    state.PauseTiming();
    {
      Peer peer(names);
      run(Step::Add, [&] { peer.Add(); });
      run(Step::Find, [&] { peer.Find(asked); });
      run(Step::Remove, [&] { peer.Remove(order); });
    }
    state.ResumeTiming();
  }
}

class Listener : public DataBinding::DataListener {
 public:
  Listener(const std::wstring& source, Counter& counter) {
    AddDataListener(source.c_str(), L"Value", Increment{&counter});
  }

 private:
  void OnDataSourceProviderChanging(DataBinding::IDataSourceProvider* /*next*/) override {}
};

/// Listeners that wait in one provider, all for one name or each for a name of its own.
class Audience {
 public:
  Audience(std::size_t count, const Texts& names) : sources(MakeSources(scope, names)) {
    listeners.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      listeners.push_back(std::make_unique<Listener>(names[i % names.size()], counter));
    }
  }

  void Listen() {
    for (const auto& listener : listeners) listener->SetDataSourceProvider(&scope);
  }
  void Connect() {
    for (const auto& source : sources) scope.AddDataSource(source.get());
  }
  void Disconnect() {
    for (const auto& source : sources) scope.RemoveDataSource(source.get());
  }
  void Leave(const std::vector<std::size_t>& order) {
    for (const auto i : order) scope.RemoveDataListener(listeners[i].get());
  }
  /// Announces every source and checks that each listener is told.
  [[nodiscard]] bool IsConnected() {
    counter = 0;
    for (const auto& source : sources) source->UpdateListeners(L"Value");
    return counter == listeners.size();
  }

 private:
  Scope scope{nullptr, nullptr, nullptr};
  Counter counter = 0;
  std::vector<PlainSourcePtr> sources;
  std::vector<std::unique_ptr<Listener>> listeners;
};

enum class Wiring { Listen, Connect, Leave };

/// Measures one of the steps; the arguments are {listeners, names}. The listeners leave while they
/// are connected.
template <Wiring Timed>
void Listeners(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const Texts names = OrdinaryNames(static_cast<std::size_t>(state.range(1)));
  const auto order = Shuffled(count);
  const auto run = [&](Wiring step, auto work) {
    step == Timed ? OnTheClock(state, work) : work();
  };
  for (auto _ : state) {
    state.PauseTiming();
    {
      Audience audience(count, names);
      run(Wiring::Listen, [&] { audience.Listen(); });
      run(Wiring::Connect, [&] { audience.Connect(); });
      if (!audience.IsConnected()) state.SkipWithError("listeners were not connected");
      run(Wiring::Leave, [&] { audience.Leave(order); });
      audience.Disconnect();
    }
    state.ResumeTiming();
  }
}

[[maybe_unused]] const bool growthMeasured = [] {
  const std::pair<const char*, void (*)(benchmark::State&)> steps[] = {
      {"add/ours", &Sources<OurSources, Step::Add>},
      {"find/ours", &Sources<OurSources, Step::Find>},
      {"remove/ours", &Sources<OurSources, Step::Remove>},
      {"add/hashmap", &Sources<MappedSources, Step::Add>},
      {"find/hashmap", &Sources<MappedSources, Step::Find>},
      {"remove/hashmap", &Sources<MappedSources, Step::Remove>},
  };
  for (const auto& [name, run] : steps) {
    Enter("growth", name, run).Arg(1000)->Arg(10'000)->Arg(100'000);
  }
  const std::pair<const char*, void (*)(benchmark::State&)> wirings[] = {
      {"listen/ours", &Listeners<Wiring::Listen>},
      {"connect/ours", &Listeners<Wiring::Connect>},
      {"leave/ours", &Listeners<Wiring::Leave>},
  };
  for (const auto& [name, run] : wirings) {
    auto& wiring = Enter("growth", name, run);
    for (const int count : {1000, 10'000, 100'000}) wiring.Args({count, 1})->Args({count, count});
  }
  return true;
}();

/// Scopes one within the other, with a source in the outermost.
class Chain {
 public:
  explicit Chain(std::size_t depth) {
    outermost.AddDataSource(MakeSource(outermost, oneName).release());
    innermost = &outermost;
    for (std::size_t i = 1; i < depth; ++i) {
      scopes.emplace_back(innermost->CreateDataSourceProvider(nullptr, nullptr));
      innermost = scopes.back().get();
    }
  }
  ~Chain() {
    while (!scopes.empty()) scopes.pop_back();
  }

  Scope outermost{nullptr, nullptr, nullptr};
  DataBinding::IDataSourceProvider* innermost = nullptr;

 private:
  std::vector<DataBinding::DataSourceProviderPtr> scopes;
};

/// Asks the innermost of as many scopes for the source that the outermost holds.
void FindInChain(benchmark::State& state) {
  Chain chain(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(chain.innermost->GetDataSource(oneName));
}

/// A listener comes to the innermost scope, is connected in the outermost, and leaves.
void ListenInChain(benchmark::State& state) {
  Chain chain(static_cast<std::size_t>(state.range(0)));
  Counter counter = 0;
  Listener listener(oneName, counter);
  for (auto _ : state) {
    listener.SetDataSourceProvider(chain.innermost);
    chain.innermost->RemoveDataListener(&listener);
  }
}

/// The outermost scope's source goes and comes again, with ten listeners in the innermost.
void ReplaceInChain(benchmark::State& state) {
  Chain chain(static_cast<std::size_t>(state.range(0)));
  Counter counter = 0;
  std::vector<std::unique_ptr<Listener>> listeners;
  for (int i = 0; i < 10; ++i) {
    listeners.push_back(std::make_unique<Listener>(oneName, counter));
    listeners.back()->SetDataSourceProvider(chain.innermost);
  }
  auto* source = chain.outermost.GetDataSource(oneName);
  for (auto _ : state) {
    chain.outermost.RemoveDataSource(source);
    chain.outermost.AddDataSource(source);
  }
  source->UpdateListeners(L"Value");
  if (counter != listeners.size()) state.SkipWithError("listeners were not connected");
}

BENCHMARK(FindInChain)->Name("chain/find/ours")->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(ListenInChain)->Name("chain/listen/ours")->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(ReplaceInChain)->Name("chain/replace/ours")->Arg(1)->Arg(10)->Arg(100);

}  // namespace

}  // namespace Benchmarks
