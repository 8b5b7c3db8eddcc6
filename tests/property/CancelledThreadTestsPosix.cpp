// SPDX-License-Identifier: Apache-2.0
#include <pthread.h>

#include <string>
#include <thread>

#include <DataBinding/datasource/MakeDataSource.h>
#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/property/Property.h>
#include <DataBinding/property/PropertyBatch.h>
#include <gtest/gtest.h>

namespace DataBinding {
namespace {

TEST(CancelledThread, LeavesWhatItHasNotToldToTheNextBatch) {
  class Pair : public NamedDataSource {
   public:
    Pair() : NamedDataSource(L"Pair") {}
    Property<int> a{this, L"A"};
    ComputedProperty<int> b{this, L"B", [this] { return *a; }, a};
  };
  const auto pair = MakeDataSource<Pair>(nullptr);
  std::string log;
  const auto onA = pair->Register([] { pthread_exit(nullptr); }, L"A");
  const auto onB = pair->Register([&] { log += 'b'; }, L"B");
  std::thread([&] { pair->a.Set(1); }).join();

  EXPECT_EQ(log, "");

  { const PropertyBatch next(*pair); }
  EXPECT_EQ(log, "b");
}

}  // namespace
}  // namespace DataBinding
