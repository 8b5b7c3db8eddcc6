// Registering and cancelling, beside others and on a new object.

#include <cstddef>
#include <optional>
#include <vector>

#include "Allocations.h"
#include "Names.h"
#include "Peers.h"

namespace Benchmarks {

namespace {

/// Listeners that stay, all of one name or each of its own, and a random order to go through them.
template <class Peer>
class Crowd {
 public:
  struct Member {
    const typename Peer::Name* name;
    typename Peer::Handle* handle;
  };

  Crowd(std::size_t listeners, std::size_t nameCount)
      : names(MakeNames<typename Peer::Name>(OrdinaryNames(nameCount))) {
    for (std::size_t i = 0; i < listeners; ++i) handles.push_back(Register(names[i % nameCount]));
    for (const auto i : Shuffled(listeners))
      members.push_back({&names[i % nameCount], &handles[i]});
  }

  [[nodiscard]] typename Peer::Handle Register(const typename Peer::Name& name) {
    return peer.Register(name, Increment{&counter});
  }
  [[nodiscard]] const Member& Next() noexcept {
    if (next == members.size()) next = 0;
    return members[next++];
  }

 private:
  std::vector<typename Peer::Name> names;
  Counter counter = 0;
  Peer peer;
  std::vector<typename Peer::Handle> handles;
  std::vector<Member> members;
  std::size_t next = 0;
};

/// Each new listener is cancelled before the next one comes.
template <class Peer>
void RegisterAndCancel(benchmark::State& state) {
  Crowd<Peer> crowd(static_cast<std::size_t>(state.range(0)),
                    static_cast<std::size_t>(state.range(1)));
  const AllocationWatch watch(state);
  for (auto _ : state) {
    const auto handle = crowd.Register(*crowd.Next().name);
    benchmark::ClobberMemory();
  }
}

/// A random listener is cancelled and a new one takes its place.
template <class Peer>
void CancelAndRegister(benchmark::State& state) {
  Crowd<Peer> crowd(static_cast<std::size_t>(state.range(0)),
                    static_cast<std::size_t>(state.range(1)));
  const AllocationWatch watch(state);
  for (auto _ : state) {
    const auto& member = crowd.Next();
    *member.handle = typename Peer::Handle();
    *member.handle = crowd.Register(*member.name);
    benchmark::ClobberMemory();
  }
}

/// {listeners, names}
void Crowds(benchmark::internal::Benchmark* registering) {
  registering->Args({100, 1})->Args({10'000, 1})->Args({100, 100})->Args({10'000, 10'000});
}

BENCHMARK(RegisterAndCancel<Ours>)->Name("register/newest/ours")->Apply(Crowds);
BENCHMARK(RegisterAndCancel<Naive>)->Name("register/newest/naive")->Apply(Crowds);
BENCHMARK(RegisterAndCancel<BoostMap>)->Name("register/newest/boostmap")->Apply(Crowds);
BENCHMARK(CancelAndRegister<Ours>)->Name("register/random/ours")->Apply(Crowds);
BENCHMARK(CancelAndRegister<Naive>)->Name("register/random/naive")->Apply(Crowds);
BENCHMARK(CancelAndRegister<BoostMap>)->Name("register/random/boostmap")->Apply(Crowds);

/// The whole life of an object that has one listener for a while.
template <class Peer>
void FirstListener(benchmark::State& state) {
  const typename Peer::Name name(oneName);
  Counter counter = 0;
  const AllocationWatch watch(state);
  for (auto _ : state) {
    Peer peer;
    auto handle = peer.Register(name, Increment{&counter});
    benchmark::DoNotOptimize(handle);
  }
}

/// The same without the end: objects are made by the batch and dropped off the clock.
template <class Peer>
void FirstListenerOnly(benchmark::State& state) {
  constexpr std::size_t batch = 256;
  const typename Peer::Name name(oneName);
  Counter counter = 0;
  struct Object {
    Peer peer;
    typename Peer::Handle handle;
  };
  std::vector<std::optional<Object>> objects(batch);
  while (state.KeepRunningBatch(batch)) {
    for (auto& object : objects) {
      object.emplace();
      object->handle = object->peer.Register(name, Increment{&counter});
    }
    state.PauseTiming();
    for (auto& object : objects) object.reset();
    state.ResumeTiming();
  }
}

BENCHMARK(FirstListener<Ours>)->Name("first/ours");
BENCHMARK(FirstListener<Naive>)->Name("first/naive");
BENCHMARK(FirstListener<BoostSignal>)->Name("first/boost");
BENCHMARK(FirstListenerOnly<Ours>)->Name("first/register/ours");
BENCHMARK(FirstListenerOnly<Naive>)->Name("first/register/naive");
BENCHMARK(FirstListenerOnly<BoostSignal>)->Name("first/register/boost");

template <class T>
double Pointers() {
  return static_cast<double>(sizeof(T)) / sizeof(void*);
}

/// An object that nobody ever listens to.
void IdleOurs(benchmark::State& state) {
  const DataBinding::VtrString name(oneName);
  {
    const AllocationWatch watch(state);
    for (auto _ : state) {
      const Announcer announcer;
      benchmark::DoNotOptimize(announcer.AreListenersAvailable(name));
    }
  }
  state.counters["holder"] = Pointers<DataBinding::details::Broadcaster>();
  state.counters["object"] = Pointers<Announcer>();
}

void IdleBoost(benchmark::State& state) {
  const AllocationWatch watch(state);
  for (auto _ : state) {
    const boost::signals2::signal<void()> signal;
    benchmark::DoNotOptimize(signal.empty());
  }
}

BENCHMARK(IdleOurs)->Name("idle/ours");
BENCHMARK(IdleBoost)->Name("idle/boost");

}  // namespace

}  // namespace Benchmarks
