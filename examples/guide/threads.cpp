// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <semaphore>
#include <thread>

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
  void Wake() { awake.release(); }  // any thread
  void Wait() { awake.acquire(); }
  void Stop() noexcept { isRunning = false; }
  [[nodiscard]] bool IsRunning() const noexcept { return isRunning; }

 private:
  std::counting_semaphore<> awake{0};
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
