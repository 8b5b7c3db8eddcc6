// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/Selection.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/lists/List.h"

namespace DataBinding::Testing {
namespace {

struct Tune {
  int id = 0;
  VtrString name;
  friend bool operator==(const Tune&, const Tune&) = default;
};
constexpr auto FieldsOf(const Tune* /*row*/) {
  return Fields(Key(L"Id", &Tune::id), Field(L"Name", &Tune::name));
}

/// Notes "gone:<name>" for a row that is gone, and the names of the chosen rows when they change.
class Selections : public ::testing::Test {
 protected:
  Selections() { list->Assign({{1, L"A"}, {2, L"B"}, {3, L"C"}, {4, L"D"}}); }
  std::string Chosen() const {
    std::string names;
    for (const RowId id : chosen->Ids()) names += chosen->List()->RowAt(id).name.ToUtf8();
    return names;
  }
  std::string Notes() { return std::exchange(notes, {}); }

  std::string notes;
  std::unique_ptr<ListData<Tune>> list = std::make_unique<ListData<Tune>>();
  std::unique_ptr<Selection<Tune>> chosen = std::make_unique<Selection<Tune>>(*list);
  std::function<void()> hook;
  Subscription seen = chosen->Observe({
      .gone =
          [this](RowId id) {
            notes += "gone:" + chosen->List()->RowAt(id).name.ToUtf8() + " ";
            if (const auto run = std::exchange(hook, nullptr)) run();
          },
      .changed = [this] { notes += Chosen() + " "; },
  });
};

TEST_F(Selections, FollowTheirRowsThroughEveryChange) {
  chosen->ChooseKey(2);
  chosen->Add(*list->IdAt(3));
  EXPECT_EQ(Notes(), "B BD ");

  list->Move(0, 1, 3);
  list->Assign({{4, L"D"}, {9, L"N"}, {2, L"b"}});
  list->Update(2, [](Tune& tune) { tune.id = 7; });
  EXPECT_EQ(Chosen(), "bD");
  EXPECT_EQ(Notes(), "");

  std::vector<Tune> many;
  for (int id = 500; id > 7; id -= 2) many.push_back({id, L"M"});
  many.push_back({7, L"b"});
  list->Assign(many);  // is told as a Reset
  EXPECT_EQ(Notes(), "gone:D b ");
}

TEST_F(Selections, SayWhatIsGoneWhileItCanBeRead) {
  chosen->Choose(std::vector{*list->IdAt(0), *list->IdAt(2), *list->IdAt(1)});
  Notes();
  list->Remove(1, 2);
  EXPECT_EQ(Notes(), "gone:C gone:B A ");
  list.reset();
  EXPECT_EQ(Notes(), "gone:A  ");
  EXPECT_EQ(chosen->List(), nullptr);
  EXPECT_FALSE(chosen->ChooseKey(1));
}

TEST_F(Selections, RefuseWhatIsNotInTheList) {
  const RowId gone = *list->IdAt(0);
  list->Remove(0, 1);
  EXPECT_FALSE(chosen->ChooseKey(1));
  EXPECT_FALSE(chosen->Add(gone));
  EXPECT_FALSE(chosen->Remove(*list->IdAt(0)));
  EXPECT_FALSE(chosen->Choose(std::vector{*list->IdAt(1), gone, *list->IdAt(1)}));
  EXPECT_EQ(Notes(), "C ");
}

TEST_F(Selections, MayBeChangedAndEndedInACallback) {
  chosen->ChooseKey(1);
  hook = [&] { chosen->Choose(*list->IdAt(0)); };  // the row that just goes
  list->Remove(0, 1);
  EXPECT_EQ(Notes(), "A gone:A A A gone:A  ");

  chosen->ChooseKey(2);
  hook = [&] { chosen.reset(); };
  list->Remove(0, 1);
  EXPECT_EQ(Notes(), "B gone:B ");
}

TEST_F(Selections, ReportWhatTheirObserversThrow) {
  int failures = 0;
  SetListenerFailureHandler([&](const auto& /*failure*/) { ++failures; });
  const Subscription further = chosen->Observe({.changed = [this] { notes += "further "; }});
  hook = [] { throw 1; };
  chosen->ChooseKey(1);
  list->Remove(0, 1);
  SetListenerFailureHandler(nullptr);
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(Notes(), "A further gone:A  further ");
}

}  // namespace
}  // namespace DataBinding::Testing
