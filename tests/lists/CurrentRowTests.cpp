// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/CurrentRow.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../support/Scopes.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/EditSession.h"
#include "DataBinding/framework/TwoWay.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/property/CopyProperties.h"
#include "DataBinding/property/Property.h"

namespace DataBinding::Testing {
namespace {

struct Guest {
  int id = 0;
  VtrString name;
  int seats = 1;
  friend bool operator==(const Guest&, const Guest&) = default;
};
VtrString NotNegative(const int& number) { return number < 0 ? L"is negative" : L""; }
constexpr auto FieldsOf(const Guest* /*row*/) {
  return Fields(Key(L"Id", &Guest::id, {.readOnly = true}), Field(L"Name", &Guest::name),
                Field(L"Seats", &Guest::seats, {.validate = NotNegative}));
}

struct Table {
  int number = 0;
  int seats = 0;
};
constexpr auto FieldsOf(const Table* /*row*/) {
  return Fields(Key(L"Number", &Table::number),
                Field(L"Seats", &Table::seats, {.validate = NotNegative}));
}
struct Draft : NamedDataSource {
  Draft() : NamedDataSource(L"Draft") { Assign(tables, std::vector<Table>{{1, 2}}); }
  Property<int> seats{this, L"Seats", 4};
  Property<int> number{this, L"Number", 9};
  ReadOnlyList<Table> tables{this, L"Tables"};
};

using Framework::BindChange;
using Framework::BindStatus;

/// Notes what the bind of the seats tells: the first letter of the change, and the seats.
class CurrentRows : public Scopes {
 protected:
  CurrentRows() { list->Assign({{1, L"Ann", 2}, {2, L"Bob", 4}}); }
  std::string Seats() {
    const auto value = seats.Get();
    return value ? std::to_string(*value) : "-";
  }

  std::unique_ptr<ListData<Guest>> list = std::make_unique<ListData<Guest>>();
  std::unique_ptr<Selection<Guest>> chosen = std::make_unique<Selection<Guest>>(*list);
  std::unique_ptr<CurrentRow<Guest>> current =
      std::make_unique<CurrentRow<Guest>>(child.get(), L"Guest", *chosen);
  Framework::DataBind<int> seats{child.get(), L"Guest", L"Seats"};
  Framework::DataBind<VtrString> name{child.get(), L"Guest", L"Name"};
  Subscription seen = seats.SubscribeToChanges([this](BindChange change) {
    constexpr const char* letters[] = {"=", "+", "-", "!"};
    log += letters[static_cast<int>(change)] + Seats() + " ";
  });
};

TEST_F(CurrentRows, ShowTheRowThatWasChosenLast) {
  chosen->ChooseKey(1);
  chosen->Add(*list->IdAt(1));
  list->Update(2, [](Guest& guest) { guest.seats = 5; });
  list->Update(2, [](Guest& guest) { guest.name = L"Rob"; });
  list->Update(1, [](Guest& guest) { guest.seats = 3; });
  EXPECT_EQ(Notes(), "+2 !4 =5");
  EXPECT_EQ(*name.Get(), L"Rob");

  list->Remove(1);
  EXPECT_EQ(Notes(), "!3");
  chosen->Clear();
  EXPECT_EQ(Notes(), "--");
}

TEST_F(CurrentRows, HaveNamesButNoValuesWhileNothingIsChosen) {
  CurrentRow<Guest> outer(parent.get(), L"Guest", *chosen);
  EXPECT_EQ(seats.Status().state, BindStatus::State::NoProperty);
  const auto* text = "Property \"Seats\" of data source \"Guest\" has no value: no row is chosen.";
  EXPECT_EQ(seats.Status().text.ToUtf8(), text);
  EXPECT_EQ(seats.Get().text.ToUtf8(), text);
  EXPECT_FALSE(seats.Set(3).IsAccepted());

  const PropertyRef<int> kept(current->Source(), L"Seats");
  EXPECT_EQ(kept.Get().text.ToUtf8(), text);
  EXPECT_EQ(GetProperty<int>(current->Source(), L"Seats").text.ToUtf8(), text);
  chosen->ChooseKey(2);
  EXPECT_EQ(*kept.Get(), 4);
  EXPECT_EQ(AnyPropertyRef(current->Source(), L"Seats").Read().value, Value(4));
}

TEST_F(CurrentRows, SetFieldsByTheListsUpdate) {
  chosen->ChooseKey(1);
  const auto refused = seats.Set(-1);
  EXPECT_EQ(refused.error, PropertyError::Refused);
  EXPECT_NE(refused.text.ToUtf8().find("is negative"), std::string::npos);
  EXPECT_EQ(PropertyRef<int>(current->Source(), L"Seats").Check(-1).error, PropertyError::Refused);
  EXPECT_EQ(SetProperty(current->Source(), L"Id", 7).error, PropertyError::ReadOnly);
  EXPECT_TRUE(seats.Set(9).changed);
  EXPECT_EQ((*list)[0].seats, 9);
  EXPECT_EQ(Notes(), "+2 =9");
}

TEST_F(CurrentRows, TakeACopyAsAWholeOrNotAtAll) {
  ListData<Table> tables;
  tables.Assign({{1, -1}, {2, 2}});
  Selection<Table> choice(tables);
  const CurrentRow<Table> row(child.get(), L"Table", choice);
  const auto draft = MakeDataSource<Draft>(nullptr);
  EXPECT_EQ(CopyProperties(draft.get(), row.Source()).error, PropertyError::Absent);

  choice.ChooseKey(1);
  EXPECT_EQ(PropertyRef<int>(row.Source(), L"Number").Check(2).error, PropertyError::Refused);
  const Subscription rival = tables.Observe({.after = [&](const auto& /*change*/) {
    if (tables.Find(9) == nullptr) tables.Insert(0, Table{9, 1});
  }});
  EXPECT_EQ(CopyProperties(draft.get(), row.Source()).refused.at(0).name, L"Number");
  EXPECT_EQ(tables.Find(1)->seats, -1);
}

TEST_F(CurrentRows, KeepTheirRowUntilAllValuesAreCopiedToIt) {
  ListData<Table> tables;
  tables.Assign({{1, 1}, {2, 2}});
  Selection<Table> choice(tables);
  const CurrentRow<Table> row(child.get(), L"Table", choice);
  const auto draft = MakeDataSource<Draft>(nullptr);
  choice.ChooseKey(1);
  Subscription moves =
      tables.Observe({.after = [&](const auto& /*change*/) { choice.ChooseKey(2); }});
  EXPECT_TRUE(CopyProperties(draft.get(), row.Source()).changed);
  EXPECT_EQ(tables[0].number * 10 + tables[0].seats, 94);
  EXPECT_EQ(tables[1].number * 10 + tables[1].seats, 22);
  EXPECT_EQ(*GetProperty<int>(row.Source(), L"Number"), 2);

  tables.RemoveKey(9);
  moves = tables.Observe({.after = [&](const auto& change) {
    if (change.Kind() == ListChangeKind::Changed) tables.Assign({{5, 5}});
  }});
  EXPECT_EQ(CopyProperties(draft.get(), row.Source()).error, PropertyError::Absent);
  EXPECT_EQ(tables[0].number * 10 + tables[0].seats, 55);
}

TEST_F(CurrentRows, AreReadOnlyWhereOnlyTheSourceChangesTheList) {
  const auto draft = MakeDataSource<Draft>(nullptr);
  SortedList<Table> sorted(draft->tables, By(&Table::seats));
  Selection<Table> choice(sorted);
  const CurrentRow<Table> row(child.get(), L"Table", choice);
  const Framework::DataBind<int> bind(child.get(), L"Table", L"Seats");
  EXPECT_FALSE(bind.IsReadOnly());

  choice.ChooseKey(1);
  EXPECT_TRUE(bind.IsReadOnly());
  EXPECT_EQ(bind.Status().state, BindStatus::State::ReadOnly);
  EXPECT_EQ(bind.Check(3).error, PropertyError::ReadOnly);
}

TEST_F(CurrentRows, ShowAnEditThatHadToWaitWhenItIsMade) {
  chosen->ChooseKey(1);
  VtrString box;
  auto join = TwoWay(
      seats, [&] { return box; }, [&](const VtrString& text) { box = text; }, TextConverter<int>());
  const Subscription edits = list->Observe({.before = [&](const auto& /*change*/) {
    if (box != L"2") return;
    box = L"8";
    EXPECT_TRUE(join.Commit().waits);
    EXPECT_EQ(box, L"8");
  }});
  list->Update(2, [](Guest& guest) { guest.seats = 6; });
  EXPECT_EQ(box, L"8");
  EXPECT_EQ((*list)[0].seats, 8);
}

/// An observer of the selection that is told before the current row may save the form.
TEST_F(CurrentRows, TakeNoEditThatWasTypedForTheFormerRow) {
  std::optional<EditSession> edit;
  const auto save = [&] {
    if (edit) edit->Commit();
  };
  const Subscription saved = chosen->Observe({.changed = save});
  const CurrentRow<Guest> later(child.get(), L"Later", *chosen);
  chosen->ChooseKey(1);
  Framework::DataBind<VtrString> shown(child.get(), L"Later", L"Name");
  VtrString text;
  edit.emplace(
      shown, [&] { return text; }, [&](const VtrString& value) { text = value; });
  text = L"Anne";
  edit->Typed();

  chosen->ChooseKey(2);

  EXPECT_EQ(edit->State(), EditState::Conflict);
  EXPECT_EQ((*list)[1].name, L"Bob");
}

TEST_F(CurrentRows, EndInAnyOrder) {
  chosen->ChooseKey(1);
  Notes();
  list.reset();
  EXPECT_EQ(Notes(), "--");
  chosen.reset();
  current.reset();
  EXPECT_EQ(seats.Status().state, BindStatus::State::NoSource);
  EXPECT_EQ(Notes(), "--");

  list = std::make_unique<ListData<Guest>>();
  list->Insert(0, Guest{1, L"Ann", 2});
  chosen = std::make_unique<Selection<Guest>>(*list);
  chosen->ChooseKey(1);
  current = std::make_unique<CurrentRow<Guest>>(child.get(), L"Guest", *chosen);
  EXPECT_EQ(Notes(), "+2");
  chosen.reset();
  EXPECT_EQ(Notes(), "--");
  child.reset();
  EXPECT_EQ(current->Source(), nullptr);
}

TEST_F(CurrentRows, MayBeMadeAndEndedWhileTheirScopeConnects) {
  current.reset();
  Notes();
  LoggedListener listener(log);
  listener.hook = [this](const std::string& note) {
    if (note == "+Doc")
      current = std::make_unique<CurrentRow<Guest>>(child.get(), L"Guest", *chosen);
    if (note == "-Doc") current.reset();
  };
  child->AddDataListener(&listener, {L"Doc"}, true);
  chosen->ChooseKey(2);
  Add(child, L"Doc");
  EXPECT_EQ(Notes(), "+Doc +4");
  child->DeleteLocalDataSourceInstance(L"Doc");
  EXPECT_EQ(Notes(), "-Doc ~Doc --");
}

}  // namespace
}  // namespace DataBinding::Testing
