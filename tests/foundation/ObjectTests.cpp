#include <array>
#include <atomic>
#include <barrier>
#include <bit>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/foundation/ComlikePtr.h"
#include "DataBinding/foundation/Guid.h"
#include "DataBinding/foundation/LogMessage.h"
#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {
namespace {

class Watched : public SupportsWeakPtr<Watched> {
 public:
  using SupportsWeakPtr::InvalidateWeakPtrs;
};

TEST(WeakPointers, EndWithTheirObjectAndNotWithItsCopies) {
  EXPECT_EQ(WeakPtr<Watched>().Get(), nullptr);
  auto original = std::make_unique<Watched>();
  const WeakPtr<Watched> weak = original->AsWeakPtr();
  Watched copy = *original;
  const WeakPtr<Watched> toCopy = copy.AsWeakPtr();
  copy = *original;
  EXPECT_EQ(weak.Get(), original.get());
  original.reset();
  EXPECT_EQ(WeakPtr<Watched>(weak).Get(), nullptr);
  EXPECT_EQ(toCopy.Get(), &copy);
  copy.InvalidateWeakPtrs();
  EXPECT_FALSE(toCopy);
  EXPECT_EQ(copy.AsWeakPtr().Get(), &copy);
}

struct Shared;
struct SharedTraits {
  static void Destroy(const Shared* object);
};
struct Shared : RefCounted<Shared, SharedTraits> {
  explicit Shared(int& counter) : ended(counter) {}
  int& ended;
};
void SharedTraits::Destroy(const Shared* object) {
  ++object->ended;
  delete object;
}

TEST(ComlikePointers, DestroyTheObjectWithTheLastReference) {
  int ended = 0;
  comlike_ptr<Shared> first(new Shared(ended));
  comlike_ptr<Shared> second = first;
  auto& self = first;
  first = self;
  first = comlike_ptr<Shared>::Share(nullptr);
  comlike_ptr<Shared> third = comlike_ptr<Shared>::Share(second.Get());
  const Shared* detached = second.Detach();
  third = std::move(second);
  EXPECT_EQ(ended, 0);
  detached->Release();
  EXPECT_EQ(ended, 1);
}

TEST(Guids, AreOrderedByTheirBytesInMemory) {
  using Bytes = std::array<std::uint8_t, 16>;
  const auto last = std::bit_cast<Guid>(Bytes{0, 0, 1});
  const auto middle = std::bit_cast<Guid>(Bytes{0, 0, 0, 1});
  const auto first = std::bit_cast<Guid>(Bytes{0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF});
  EXPECT_TRUE(first < middle && middle < last && first < last);
  EXPECT_TRUE(first != middle && first == Guid(first));
}

std::string logged;

TEST(LogMessages, GoToTheSinkWhenTheyEnd) {
  LogMessage() << L"unheard";
  LogMessage::SetSink([](const VtrString& text) { logged += text.ToUtf8() + ";"; });
  LogMessage() << L"took " << 5 << " ms for " << VtrString(L"Größe");
  const auto former = LogMessage::SetSink([](const VtrString&) { throw std::logic_error("sink"); });
  EXPECT_NE(former, nullptr);
  LogMessage() << L"a sink that throws does no harm";
  LogMessage::SetSink(nullptr);
  EXPECT_EQ(logged, "took 5 ms for Größe;");
}

TEST(ThreadLocks, WritersExcludeEverybodyAndReadersHoldTogether) {
  ThreadLock lock;
  std::barrier all(4);
  std::array<int, 2> counts{};
  std::atomic<int> torn = 0;
  const auto work = [&] {
    for (int round = 0; round < 2000; ++round) {
      {
        const WriteLock guard(lock);
        for (int& count : counts) ++count;
      }
      const ReadLock guard(lock);
      torn += counts[0] != counts[1] ? 1 : 0;
    }
    const ReadLock guard(lock);
    all.arrive_and_wait();
  };
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) threads.emplace_back(work);
  }
  EXPECT_EQ(counts, (std::array<int, 2>{8000, 8000}));
  EXPECT_EQ(torn, 0);
}

}  // namespace
}  // namespace DataBinding
