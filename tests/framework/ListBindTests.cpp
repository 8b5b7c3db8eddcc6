// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/ListBind.h"

#include <memory>
#include <string>

#include "../support/Scopes.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/framework/AnyListBind.h"
#include "DataBinding/framework/Diagnose.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/Selection.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/property/Property.h"

namespace DataBinding::Testing {
namespace {

struct Song {
  int id = 0;
  VtrString name;
  friend bool operator==(const Song&, const Song&) = default;
};
constexpr auto FieldsOf(const Song* /*row*/) {
  return Fields(Key(L"Id", &Song::id), Field(L"Name", &Song::name));
}
struct Plain {
  int number = 0;
};
constexpr auto FieldsOf(const Plain* /*row*/) { return Fields(Key(L"Number", &Plain::number)); }

template <class Row>
class Player : public NamedDataSource {
 public:
  Player() : NamedDataSource(L"Player") {}
  explicit Player(std::vector<Row> rows) : Player() { songs.Assign(std::move(rows)); }
  List<Row> songs{this, L"Songs"};
  Property<int> volume{this, L"Volume"};
};

/// Its list may end before it.
struct Shelf : NamedDataSource {
  Shelf() : NamedDataSource(L"Player") {}
  void Renew(std::vector<Song> rows) {
    songs = std::make_unique<List<Song>>(this, PropertyName(L"Songs"));
    songs->Assign(std::move(rows));
  }
  std::unique_ptr<List<Song>> songs;
};

using Framework::AnyListBind;
using Framework::BindStatus;
using Framework::ListBind;

/// Keeps a copy of the bind's rows, which it changes by what is told and compares in both calls,
/// and notes the first letters of what is told.
class ListBinds : public Scopes {
 protected:
  Player<Song>& Emplaced(const ProviderPtr& scope, std::vector<Song> songs) {
    return Emplace<Player<Song>>(*scope, std::move(songs));
  }
  static std::vector<Song> Many(int count, int first) {
    std::vector<Song> songs;
    for (int id = first; id < first + count; ++id) songs.push_back({id, L"M"});
    return songs;
  }
  static std::string NamesOf(const std::vector<Song>& songs) {
    std::string names;
    for (const Song& song : songs) names += song.name.ToUtf8();
    return names;
  }
  std::string Shown() const { return NamesOf({watched->begin(), watched->end()}); }
  void Hear(const RowChange<Song>& change) {
    if (change.IsBefore()) {
      EXPECT_EQ(NamesOf(copy), Shown());
      log += std::string("IRMCOX").substr(static_cast<std::size_t>(change.Kind()), 1);
      if (const auto run = std::exchange(hook, nullptr)) run();
      return;
    }
    copy.assign(watched->begin(), watched->end());
    log += Shown() + " ";
  }

  std::vector<Song> copy;
  std::function<void()> hook;
  std::unique_ptr<ListBind<Song>> bind =
      std::make_unique<ListBind<Song>>(child.get(), L"Player", L"Songs");
  ListBind<Song>* const watched = bind.get();  // also while it ends
  Subscription seen = bind->Observe({.before = [this](const auto& change) { Hear(change); },
                                     .after = [this](const auto& change) { Hear(change); }});
};

TEST_F(ListBinds, FollowTheListThatTheyFind) {
  EXPECT_EQ(bind->Status().state, BindStatus::State::NoSource);
  auto& player = Emplaced(child, {{1, L"A"}, {2, L"B"}, {3, L"C"}});
  const RowId second = *bind->IdAt(1);
  player.songs.Insert(0, Song{4, L"D"});
  player.songs.Move(0, 1, 2);
  player.songs.Update(2, [](Song& song) { song.name = L"b"; });
  player.songs.Remove(0, 1);
  EXPECT_EQ(Notes(), "IABC IDABC MABDC CAbDC RbDC");
  EXPECT_EQ(bind->IndexOf(second), 0U);
  EXPECT_TRUE(bind->SetCell(0, L"Name", L"x").changed);
  EXPECT_EQ(Notes(), "CxDC");
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(Notes(), "R");
}

TEST_F(ListBinds, TellHowAnotherListDiffers) {
  Emplaced(parent, {{1, L"A"}, {2, L"B"}, {3, L"C"}, {4, L"D"}});
  const RowId fourth = *bind->IdAt(3);
  Notes();
  Emplaced(child, {{4, L"d"}, {9, L"N"}, {2, L"B"}});
  EXPECT_EQ(Notes(), "CABCd RABd RBd OdB IdNB");
  EXPECT_EQ(bind->IdAt(0), fourth);
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(Shown(), "ABCD");
  EXPECT_EQ(bind->IdAt(3), fourth);
}

TEST_F(ListBinds, TellAVeryDifferentListByOneReset) {
  auto many = Many(200, 0);
  Emplaced(parent, many);
  DataBinding::Selection<Song> chosen(*bind);
  chosen.ChooseKey(100);
  Notes();
  for (auto& song : many) song.id *= song.id % 2 == 0 ? 1 : 1000;
  Emplaced(child, many);
  EXPECT_EQ(Notes().front(), 'X');
  EXPECT_EQ(chosen.Current()->id, 100);
  for (int i = 0; i < 20; ++i) {
    child->DeleteLocalDataSourceInstance(L"Player");
    Emplaced(child, many);
  }
  EXPECT_LT(bind->IdsBelow(), 1000U);
}

TEST_F(ListBinds, KeepWhatIsChosenUntilAListComesThatHasIt) {
  DataBinding::Selection<Song> chosen(*bind);
  std::string gone;
  const Subscription told = chosen.Observe({.gone = [&](RowId /*id*/) { gone += "gone "; }});
  Emplaced(child, {{1, L"A"}, {2, L"B"}});
  chosen.ChooseKey(2);
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(chosen.Current(), nullptr);
  Emplaced(child, {{1, L"A"}});
  EXPECT_EQ(chosen.Current(), nullptr);
  child->DeleteLocalDataSourceInstance(L"Player");
  auto& player = Emplaced(child, {{2, L"b"}});
  EXPECT_EQ(chosen.Current()->name, L"b");
  EXPECT_EQ(gone, "");
  player.songs.Remove(0, 1);
  EXPECT_EQ(gone, "gone ");
}

TEST_F(ListBinds, AreSortedAndChosenFromLikeAnyList) {
  SortedList<Song> sorted(*bind, By(&Song::name));
  DataBinding::Selection<Song> chosen(sorted);
  const auto names = [&] { return NamesOf({sorted.begin(), sorted.end()}); };
  auto& player = Emplaced(parent, {{1, L"C"}, {2, L"A"}, {3, L"B"}});
  chosen.ChooseKey(3);
  player.songs.Update(2, [](Song& song) { song.name = L"D"; });
  player.songs.Insert(0, Song{4, L"E"});
  EXPECT_EQ(names(), "BCDE");
  Emplaced(child, {{4, L"A"}, {9, L"F"}, {1, L"C"}});
  EXPECT_EQ(names(), "ACF");
  EXPECT_EQ(chosen.Current(), nullptr);
  hook = [&] { child->DeleteLocalDataSourceInstance(L"Player"); };
  static_cast<Player<Song>*>(child->GetLocalDataSourceInstance(L"Player"))->songs.Remove(0, 1);
  EXPECT_EQ(names(), "BCDE");
  EXPECT_EQ(chosen.Current()->id, 3);
}

TEST_F(ListBinds, LetGoOfAListThatEndsWhileItTells) {
  for (const int id : {1, 2}) {
    auto& player = Emplaced(child, {{1, L"A"}, {2, L"B"}});
    Notes();
    hook = [&] { child->DeleteLocalDataSourceInstance(L"Player"); };
    id == 1 ? player.songs.Insert(0, Song{3, L"C"}) : player.songs.Remove(0, 1);
    EXPECT_EQ(Notes(), id == 1 ? "IX" : "RX");
    EXPECT_TRUE(bind->IsEmpty());
  }
}

TEST_F(ListBinds, WaitWithAnotherListUntilAChangeWasTold) {
  auto& player = Emplaced(parent, {{1, L"A"}});
  Notes();
  hook = [&] { Emplaced(child, {{2, L"B"}}); };
  player.songs.Insert(1, Song{3, L"C"});
  EXPECT_EQ(Notes(), "IAC R IB");

  hook = [&] { bind.reset(); };
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(bind, nullptr);
}

TEST_F(ListBinds, KeepWhatTheyTellWhileACallbackChangesTheList) {
  auto& player = Emplaced(parent, Many(3, 0));
  const SortedList<Song> sorted(*bind, By(&Song::id));
  EXPECT_EQ(sorted.Size(), 3U);
  hook = [&] { player.songs.Insert(0, Many(2000, 10)); };
  player.songs.Remove(1, 1);
  EXPECT_EQ(sorted.Size(), 2002U);

  hook = [&] { EXPECT_TRUE(player.songs.Insert(2002, Song{3, L"A"}).waits); };
  const auto kept = TakeDataSource(*parent, &player);
  EXPECT_EQ(player.songs.Size(), 2003U);
  EXPECT_TRUE(bind->IsEmpty());
}

TEST_F(ListBinds, HearWhatWaitsInBothListsWhenTheyChangeOver) {
  auto& former = Emplaced(parent, Many(3, 0));
  auto source = MakeDataSource<Player<Song>>(child.get(), Many(2, 50));
  List<Song>& next = source->songs;
  const Subscription once = next.Observe({.before = [&](const auto& /*change*/) {
    if (source == nullptr) return;
    GiveDataSource(*child, std::move(source));
    next.Insert(0, Many(5000, 1000));
  }});
  hook = [&] { EXPECT_TRUE(former.songs.Insert(3, Song{9, L"N"}).waits); };
  next.Insert(0, Song{8, L"A"});
  EXPECT_EQ(NamesOf({bind->begin(), bind->end()}), NamesOf({next.begin(), next.end()}));
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(Shown(), "MMMN");
}

TEST_F(ListBinds, LetGoWhenTheListThatIsToComeEnds) {
  auto& player = Emplaced(parent, {{1, L"A"}});
  hook = [&] {
    auto& shelf = Emplace<Shelf>(*child);
    shelf.Renew({});
    shelf.songs.reset();
  };
  player.songs.Insert(1, Song{2, L"B"});
  EXPECT_TRUE(bind->IsEmpty());
}

TEST_F(ListBinds, ShowTheListThatComesWhereTheFormerOneEndsMeanwhile) {
  auto& former = Emplace<Shelf>(*parent);
  former.Renew({{1, L"A"}});
  hook = [&] { former.songs.reset(); };
  Emplaced(child, {{2, L"B"}});
  EXPECT_EQ(Notes(), "IA RX IB");
}

TEST_F(ListBinds, TellNobodyElseOfRowsThatCannotBeReadAnyMore) {
  auto& shelf = Emplace<Shelf>(*parent);
  FilteredList<Song> view(*bind, [](const Song& /*song*/) { return true; });
  for (ReadableList<Song>* const told :
       std::initializer_list<ReadableList<Song>*>{&view, watched}) {
    shelf.Renew({{1, L"A"}});
    EXPECT_EQ(view.Size(), 1U);
    const Subscription ends =
        told->Observe({.after = [&](const auto& /*change*/) { shelf.songs.reset(); }});
    const Subscription reads = told->Observe(
        {.after = [](const RowChange<Song>& change) { EXPECT_EQ(change.Count(), 0U); }});
    if (told == watched) shelf.songs->Remove(0, 1);
    if (told == &view) view.SetFilter([](const Song& song) { return song.id > 1; });
    EXPECT_EQ(shelf.songs, nullptr);
    view.SetFilter([](const Song& /*song*/) { return true; });
  }
}

TEST_F(ListBinds, SayWhatIsWrongWithTheList) {
  Emplace<Player<Plain>>(*child);
  EXPECT_EQ(bind->Status().state, BindStatus::State::WrongType);
  EXPECT_NE(bind->Status().text.ToUtf8().find("has rows of type"), std::string::npos);
  EXPECT_EQ(Diagnose(*child).at(0).status.text, bind->Status().text);
  const ListBind<Song> volume(child.get(), L"Player", L"Volume");
  EXPECT_EQ(volume.Status().state, BindStatus::State::WrongType);
  EXPECT_NE(volume.Status().text.ToUtf8().find("has type int and is no list."), std::string::npos);
  EXPECT_FALSE(volume.HasValue());
}

TEST_F(ListBinds, HaveDiagnoseNameAListThatDidNotComeToRest) {
  SetListenerFailureHandler([](const ListenerFailure&) {});
  auto& player = Emplaced(parent, {{1, L"A"}});
  for (const int rounds : {900, 1100}) {
    int left = rounds;
    const Subscription restless = player.songs.Observe({.after = [&](const auto& /*change*/) {
      if (left-- > 0) player.songs.Move(0, 1, 1);
    }});
    player.songs.Insert(0, Song{rounds, L"B"});
    EXPECT_EQ(Diagnose(*parent).size(), rounds == 900 ? 1U : 2U);
  }
  EXPECT_EQ(Diagnose(*parent).front().status.state, BindStatus::State::Restless);
  EXPECT_EQ(Diagnose(*parent).front().property, L"Songs");
  SetListenerFailureHandler({});
}

TEST_F(ListBinds, WithoutATypeShowAnyRowsAsValues) {
  AnyListBind any(child.get(), L"Player", L"Songs");
  EXPECT_EQ(any.FieldCount(), 0U);
  Emplaced(parent, {{1, L"A"}});
  EXPECT_EQ(any.Cell(0, *any.FieldNumber(L"Name")), Value(L"A"));
  auto& plain = Emplace<Player<Plain>>(*child, std::vector<Plain>{{7}, {8}});
  EXPECT_EQ(any.FieldName(0), L"Number");
  EXPECT_EQ(any.Cell(1, 0), Value(8));
  EXPECT_TRUE(any.SetCell(1, L"Number", 9).changed);
  EXPECT_EQ(plain.songs[1].number, 9);
  child->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_EQ(any.Cell(0, 1), Value(L"A"));
  parent->DeleteLocalDataSourceInstance(L"Player");
  EXPECT_TRUE(any.IsEmpty());
  EXPECT_EQ(any.FieldCount(), 0U);
}

}  // namespace
}  // namespace DataBinding::Testing
