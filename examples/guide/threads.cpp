// SPDX-License-Identifier: Apache-2.0
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <thread>
#include <utility>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

inline constinit const AppEvent<int> sampled{L"Sampled"};
inline constinit const AppEvent<> finished{L"Finished"};

class Meter : public NamedDataSource {
 public:
  Meter() : NamedDataSource(L"Meter") {}

  ReadOnlyProperty<int> total{this, L"Total"};

  void Add(int value) { Assign(total, *total + value); }
};

/// Stands for the application's message loop.
class Loop {
 public:
  void Wake() {  // any thread
    const std::lock_guard guard(mutex);
    isAwake = true;
    awake.notify_one();
  }
  void Wait() {
    std::unique_lock guard(mutex);
    awake.wait(guard, [this] { return std::exchange(isAwake, false); });
  }
  void Stop() noexcept { isRunning = false; }
  [[nodiscard]] bool IsRunning() const noexcept { return isRunning; }

 private:
  std::mutex mutex;
  std::condition_variable awake;
  bool isAwake = false;
  bool isRunning = true;
};

int main() {
  Loop loop;
  IdlePass idle([&] { loop.Wake(); });  // before the threads that raise

  const DataSourcePtr<Meter> meter = MakeDataSource<Meter>(nullptr);
  const Subscription added = sampled.Subscribe([&](int value) { meter->Add(value); });
  const Subscription ended = finished.Subscribe([&] { loop.Stop(); });

  {
    const std::jthread sampler([] {
      for (int value = 1; value <= 100; ++value) sampled.Raise(value);
      finished.Raise();
    });
    while (loop.IsRunning()) {
      loop.Wait();
      idle.Run();
    }
  }  // the thread has stopped before the pass ends
  std::cout << "total " << *meter->total << '\n';
}
