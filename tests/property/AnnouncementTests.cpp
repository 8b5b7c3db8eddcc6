// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <DataBinding/datasource/MakeDataSource.h>
#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/property/Property.h>
#include <DataBinding/property/PropertyBatch.h>
#include <gtest/gtest.h>

namespace DataBinding {
namespace {

class Input : public NamedDataSource {
 public:
  Input() : NamedDataSource(L"Input") {}
  void UpdateListeners(const VtrString& names) override {
    const auto failing = throws ? std::optional(names) : std::nullopt;
    NamedDataSource::UpdateListeners(names);
    if (failing) throw VtrString(*failing);
  }
  Property<int> V{this, L"V"};
  Property<int> W{this, L"W"};
  bool throws = false;
};

class Sum : public Input {
 public:
  template <class... Others>
  explicit Sum(const Others&... others)
      : V(
            this, L"Sum", [&others...] { return (0 + ... + *others); }, others...) {}
  ComputedProperty<int> V;
};

/// Logs which of several sources' properties are announced, by a letter each.
class AnnouncementTest : public testing::Test {
 protected:
  template <class Source>
  void Watch(char letter, Source& source, const RepeatingCallback<void()>& then = {}) {
    const auto note = [this, letter, then] {
      log += letter;
      then();
    };
    subscriptions.push_back(source.Register(note, source.V.Name()));
  }
  std::string Log() { return std::exchange(log, {}); }

  std::vector<Subscription> subscriptions;
  std::string log;
  DataSourcePtr<Input> input = MakeDataSource<Input>(nullptr);
  DataSourcePtr<Sum> left = MakeDataSource<Sum>(nullptr, input->V);
  DataSourcePtr<Sum> right = MakeDataSource<Sum>(nullptr, input->V, input->W);
  DataSourcePtr<Sum> both = MakeDataSource<Sum>(nullptr, right->V, left->V, input->V);
  void WatchAll() {
    Watch('b', *both);
    Watch('r', *right);
    Watch('l', *left);
    Watch('i', *input);
  }
};

TEST_F(AnnouncementTest, StepsOfALongLadderAreToldOnce) {
  std::vector<DataSourcePtr<Sum>> ladder;
  ladder.push_back(MakeDataSource<Sum>(nullptr, input->V));
  ladder.push_back(MakeDataSource<Sum>(nullptr, input->V));
  for (std::size_t i = 2; i < 200; i += 2) {
    ladder.push_back(MakeDataSource<Sum>(nullptr, ladder[i - 1]->V, ladder[i - 2]->V));
    ladder.push_back(MakeDataSource<Sum>(nullptr, ladder[i - 2]->V, ladder[i - 1]->V));
  }
  for (const auto& step : ladder) Watch('.', *step);
  Watch('!', *ladder.back());

  input->V.NotifyChanged();
  EXPECT_EQ(Log(), std::string(200, '.') + '!');
}

TEST_F(AnnouncementTest, ManyFollowersAreToldInTheOrderOfTheirMakingButForThoseThatEnd) {
  std::vector<DataSourcePtr<Sum>> made;

  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    made.push_back(letter % 3 == 0 ? MakeDataSource<Sum>(nullptr, made.back()->V)
                                   : MakeDataSource<Sum>(nullptr, input->V, input->W, input->V));
    Watch(letter, *made.back(), [&, letter] {
      if (letter == 'C') made.erase(made.begin() + 5, made.begin() + 9);
      if (letter == 'P') made.erase(made.end() - 4, made.end() - 2);
    });
  }
  input->V.Set(1);

  EXPECT_EQ(Log(), "ABCDEJKLMNOPQRSTUVYZ");
}

TEST_F(AnnouncementTest, ChangesInManyCallbacksDoNotNestWithinEachOther) {
  int depth = 0;
  int deepest = 0;
  std::vector<DataSourcePtr<Sum>> followers(100);

  for (auto& follower : followers) {
    follower = MakeDataSource<Sum>(nullptr, input->V, input->W);
    Watch('.', *follower, [&, target = follower.get()] {
      deepest = std::max(deepest, ++depth);
      target->Input::V.NotifyChanged();
      left->Input::V.NotifyChanged();
      --depth;
    });
  }
  input->V.Set(1);

  EXPECT_EQ(Log(), std::string(100, '.'));
  EXPECT_EQ(deepest, 1);
}

TEST_F(AnnouncementTest, UpdateListenersThatThrowsStopsNobody) {
  WatchAll();

  input->throws = left->throws = true;
  try {
    input->V.Set(1);
    ADD_FAILURE() << "nothing thrown";
  } catch (const VtrString& first) {
    EXPECT_EQ(first, L"V");
  }

  EXPECT_EQ(Log(), "ilrb");
}

TEST_F(AnnouncementTest, ExceptionThatEndsABatchGoesOnWhateverUpdateListenersThrows) {
  Watch('i', *input);
  input->throws = true;
  const auto change = [&] {
    const PropertyBatch batch(*input);
    input->V.Set(1);
    throw 7;
  };

  EXPECT_THROW(change(), int);
  EXPECT_EQ(Log(), "i");
}

TEST_F(AnnouncementTest, CommitThrowsWhatUpdateListenersThrows) {
  Watch('i', *input);
  input->throws = true;
  PropertyBatch batch(*input);
  input->V.Set(1);

  EXPECT_THROW(batch.Commit(), VtrString);

  EXPECT_EQ(Log(), "i");
}

TEST_F(AnnouncementTest, SecondCommitOfABatchLeavesTheOuterOneOpen) {
  Watch('i', *input);
  const PropertyBatch outer(*input);
  PropertyBatch inner(*input);

  inner.Commit();
  inner.Commit();
  input->V.Set(1);

  EXPECT_EQ(Log(), "");
}

}  // namespace
}  // namespace DataBinding
