// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/OneWay.h"

#include <optional>
#include <stdexcept>

#include "DataBinding/framework/DataBind.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

class OneWayJoins : public BindTest {
 protected:
  OneWayJoin Join() {
    const auto write = [this](const int& now) {
      log += std::to_string(now) + " ";
      if (onWrite) onWrite();
    };
    return OneWay(*bind, *pass, write, [this] { log += "- "; });
  }

  int wakes = 0;
  std::function<void()> onWrite;
  std::optional<IdlePass> pass{std::in_place, [this] { ++wakes; }};
  Gauge* gauge = AddGauge(child, 3);
  std::optional<Framework::DataBind<int>> bind{std::in_place, child.get(), L"Gauge", L"Level"};
};

TEST_F(OneWayJoins, WriteOnceAPassHoweverOftenTheValueChanges) {
  const auto join = Join();
  for (int level = 4; level < 50; ++level) gauge->Level.Set(level);
  EXPECT_EQ(Notes(), "3");
  EXPECT_EQ(wakes, 1);

  pass->Run();
  pass->RunFor(std::chrono::milliseconds(1));
  EXPECT_EQ(Notes(), "49");

  child->DeleteLocalDataSourceInstance(L"Gauge");
  pass->Run();
  EXPECT_EQ(Notes(), "-");
}

TEST_F(OneWayJoins, WriteTheOthersWhenOneThrows) {
  const auto join = Join();
  const auto failing = pass->OnDelivered([] { throw std::runtime_error("no paper"); });
  const auto other = Join();
  gauge->Level.Set(4);

  EXPECT_THROW(pass->Run(), std::runtime_error);
  EXPECT_EQ(Notes(), "3 3 4 4");

  onWrite = [] { throw std::runtime_error("no ink"); };
  gauge->Level.Set(5);
  EXPECT_THROW(pass->Run(), std::runtime_error);
  onWrite = nullptr;
  EXPECT_THROW(pass->Run(), std::runtime_error);
  EXPECT_EQ(Notes(), "5 5 5 5");
}

TEST_F(OneWayJoins, EndWithBindAndPassInAnyOrder) {
  std::optional<OneWayJoin> join(Join());
  onWrite = [this] { gauge->Level.Set(*gauge->Level + 1); };
  gauge->Level.Set(4);
  pass->Run();
  EXPECT_EQ(wakes, 2) << "the change in the function is for the next pass";
  onWrite = [&] { join.reset(); };
  pass->Run();
  EXPECT_EQ(Notes(), "3 4 5");

  onWrite = [this] { pass.reset(); };
  const auto second = Join();
  gauge->Level.Set(6);
  pass.emplace([] {});
  onWrite = [this] { bind.reset(); };
  const auto third = Join();
  pass->Run();
  EXPECT_EQ(Notes(), "5 6");
}

}  // namespace
}  // namespace DataBinding::Testing
