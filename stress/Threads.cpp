// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/IdlePass.h"
#include "Subjects.h"

namespace DataBinding::Stress {
namespace {

constexpr std::size_t producerCount = 3;
constexpr int countedEach = 20'000;
using PerProducer = std::array<int, producerCount>;

const AppEvent<std::size_t, int> counted(L"Counted");
const std::array<AppEvent<int>, producerCount> replaced = {
    AppEvent<int>(L"ReplacedOne"), AppEvent<int>(L"ReplacedTwo"), AppEvent<int>(L"ReplacedThree")};

/// Raises on several threads, delivers on its own, and checks what arrives there.
class Exchange {
 public:
  Exchange() {
    heard.push_back(counted.Subscribe([this](std::size_t producer, int number) {
      isRight &= number == ++lastCounted[producer];  // none lost, doubled or overtaken
    }));
    for (std::size_t i = 0; i < producerCount; ++i) {
      heard.push_back(replaced[i].Subscribe([this, i](int number) {
        isRight &= number > lastReplaced[i] && ++inBatch[i] == 1;
        lastReplaced[i] = number;
      }));
    }
  }
  bool Run(std::uint32_t seed) {
    {
      std::array<std::jthread, producerCount> producers;
      for (std::size_t i = 0; i < producerCount; ++i) {
        producers[i] =
            std::jthread([this, i, seed] { Produce(i, seed + static_cast<unsigned>(i)); });
      }
      while (running != 0) DeliverIfWoken();
    }
    DeliverIfWoken();
    for (auto& passed : passedOn) delete passed.exchange(nullptr);
    IAppEventBroadcaster::ReleaseInstance(false);
    const auto isAll = [](int last) { return last == countedEach; };
    return isRight && std::ranges::all_of(lastCounted, isAll) && lastReplaced == lastRaised &&
           wakings <= passes + 1;
  }

 private:
  void Produce(std::size_t producer, std::uint32_t seed) {
    std::mt19937 random(seed);
    for (int count = 0; count < countedEach;) {
      if (random() % 3 == 0) {
        counted.Raise(producer, ++count);
      } else {
        replaced[producer].RaiseLatest(++lastRaised[producer]);
      }
      // This ends a subscription of the delivering thread.
      if (random() % 32 == 0) delete passedOn[producer].exchange(nullptr);
    }
    --running;
  }
  /// An event for which the loop was not woken stays in the queue, and is missed at the end.
  void DeliverIfWoken() {
    if (!isWoken.exchange(false)) return std::this_thread::yield();
    inBatch = {};
    IAppEventBroadcaster::GetInstance().DropEvents(L"NotRaised");
    for (auto& passed : passedOn) {
      auto* const made = new Subscription(counted.Subscribe([](std::size_t, int) {}));
      delete passed.exchange(made);
    }
    ++passes;
    idle.Run();
  }

  bool isRight = true;
  PerProducer lastCounted{};
  PerProducer lastReplaced{};
  PerProducer lastRaised{};
  PerProducer inBatch{};
  std::atomic<int> running{producerCount};
  std::atomic<int> wakings{0};
  std::atomic<bool> isWoken{false};
  int passes = 0;
  std::array<std::atomic<Subscription*>, producerCount> passedOn{};
  std::vector<Subscription> heard;
  IdlePass idle{[this] {
    ++wakings;
    isWoken = true;
  }};
};

}  // namespace

bool ThreadsAgree(std::uint32_t seed) {
  const bool agree = Exchange().Run(seed);
  std::printf("threads: seed %u %s\n", seed, agree ? "agrees" : "fails");
  return agree;
}

}  // namespace DataBinding::Stress
