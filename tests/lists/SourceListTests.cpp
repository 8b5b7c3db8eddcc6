// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/SourceList.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "../support/Scopes.h"
#include "DataBinding/framework/AnyListBind.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/ListBind.h"
#include "DataBinding/lists/CurrentRow.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyBatch.h"

namespace DataBinding::Testing {
namespace {

VtrString NoDebt(const int& calls) { return calls < 0 ? L"is negative" : L""; }

/// Notes its end as "~Ann".
struct Contact : NamedDataSource {
  Contact(std::string& notes, const wchar_t* itsName, int itsCalls = 0)
      : NamedDataSource(L"Contact"), log(notes) {
    name.Set(itsName);
    calls.Set(itsCalls);
  }

  std::string& log;
  Property<VtrString> name{this, L"Name"};
  Property<int> calls{this, L"Calls", 0, {.validate = &NoDebt}};
  ComputedProperty<bool> isFriend{this, L"IsFriend", [this] { return *calls > 2; }, calls};

 protected:
  ~Contact() override { log += "~" + name.Get().ToUtf8() + " "; }
};
constexpr auto FieldsOf(const Contact* /*row*/) {
  return Fields(Key(L"Name", &Contact::name), Field(L"Calls", &Contact::calls),
                Field(L"Friend", &Contact::isFriend));
}

struct Book : NamedDataSource {
  Book() : NamedDataSource(L"Book") {}
  SourceList<Contact> contacts{this, L"Contacts"};
};

std::string NamesIn(const ReadableList<Contact>& list) {
  std::string names;
  for (const Contact& contact : list) names += contact.name.Get().ToUtf8() + " ";
  return names;
}

/// A book with Ann, Bob and Cleo; notes what its list tells, first before and then after it.
class SourceLists : public Scopes {
 protected:
  SourceLists() {
    for (const wchar_t* name : {L"Cleo", L"Ann", L"Bob"}) list->Emplace(log, name, 1);
    const auto note = [this](const RowChange<Contact>& change) {
      constexpr const char* kinds[] = {"+", "-", ">", "=", "~", "!"};
      log += kinds[static_cast<int>(change.Kind())];
      for (const Contact& contact : change.Rows()) log += contact.name.Get().ToUtf8();
      log += change.IsBefore() ? "," : " ";
    };
    seen = list->Observe({.before = note, .after = note});
  }

  Book& book = Emplace<Book>(*child);
  SourceList<Contact>* list = &book.contacts;
  Subscription seen;
};

TEST_F(SourceLists, TellWhatRowsAnnounceAndKeepThoseThatGoUntilTheOperationIsOver) {
  const Subscription announced = book.Register([this] { log += "Contacts "; }, L"Contacts");
  (*list)[1].name.Set(L"Anna");
  list->Move(0, 1, 2);
  EXPECT_EQ(Notes(), "=Anna,=Anna Contacts >Cleo,>Cleo Contacts");
  const Subscription again = list->Observe({.after = [this](const auto& change) {
    if (change.Count() == 1) list->Remove(0);
  }});
  list->Remove(1, 1);
  EXPECT_EQ(Notes(), "-Bob,-Bob -Anna,-Anna -Cleo,-Cleo ~Cleo ~Anna ~Bob Contacts");
  EXPECT_EQ(list->Insert(4, MakeDataSource<Contact>(nullptr, log, L"Dan")).error,
            PropertyError::OutOfRange);
  EXPECT_EQ(list->Add(nullptr).error, PropertyError::NoSource);
  EXPECT_EQ(Notes(), "~Dan");
}

TEST_F(SourceLists, SortAndFilterByThePropertiesOfTheirRows) {
  SortedList sorted(*list, By(&Contact::calls, Order::Descending).Then(&Contact::name));
  FilteredList friends(sorted, [](const Contact& contact) { return *contact.isFriend; });
  EXPECT_EQ(NamesIn(sorted) + NamesIn(friends), "Ann Bob Cleo ");
  list->Find(L"Cleo")->calls.Set(4);
  sorted[2].calls.Set(3);
  EXPECT_EQ(NamesIn(sorted) + NamesIn(friends), "Cleo Bob Ann Cleo Bob ");
  const Subscription first =
      sorted[0].Register([this] { list->Emplace(log, L"Eve", 2); }, L"Calls");
  sorted[0].calls.Set(0);
  EXPECT_EQ(NamesIn(sorted) + NamesIn(friends), "Bob Eve Ann Cleo Bob ");
}

TEST_F(SourceLists, LetARowGoInACallbackOfItsOwnProperty) {
  SortedList sorted(*list, By(&Contact::name));
  EXPECT_EQ(NamesIn(sorted), "Ann Bob Cleo ");
  Contact& bob = *list->Find(L"Bob");
  const auto dismiss = [&] { list->Remove(*list->IndexOf(bob)); };
  const Subscription byName = bob.Register(dismiss, L"Name");
  bob.name.Set(L"Rob");
  EXPECT_EQ(Notes(), "-Rob,-Rob ~Rob");

  const Subscription inTheChange = list->Observe({.before = [this](const auto& change) {
    if (change.Kind() == ListChangeKind::Changed) list->Remove(change.PlaceOf(0));
  }});
  list->Find(L"Ann")->calls.Set(5);
  EXPECT_EQ(Notes(), "=Ann,=Ann -Ann,-Ann ~Ann");
  EXPECT_EQ(NamesIn(sorted), "Cleo ");
}

TEST_F(SourceLists, EndInACallbackOfARowAndTellItWhileRowsCanBeRead) {
  SortedList sorted(*list, By(&Contact::calls));
  std::string last;
  const Subscription end = sorted.Observe({.before = [&](const auto& change) {
    if (change.Kind() == ListChangeKind::Reset) last = NamesIn(sorted);
    if (change.Kind() == ListChangeKind::Changed) {
      child->DeleteLocalDataSourceInstance(L"Book");
    }
  }});
  const Subscription asks =
      (*list)[1].AddOnDestroyHandler([this] { log += std::to_string(list->Size()); });
  (*list)[0].calls.Set(7);
  EXPECT_EQ(last, "Cleo Ann Bob ");
  EXPECT_EQ(Notes(), "=Cleo,!,! ~Bob ~Ann 0~Cleo");
  EXPECT_EQ(sorted.Size(), 0U);
}

TEST_F(SourceLists, HandTheSourceOfARowBack) {
  DataSourcePtr<Contact> ann = list->Take(1);
  EXPECT_EQ(Notes(), "-Ann,-Ann");
  EXPECT_EQ(ann->GetDataSourceProvider(), nullptr);
  EXPECT_EQ(list->Take(2), nullptr);
  ann->calls.Set(2);
  const Subscription nested = list->Observe({.after = [this](const auto& change) {
    if (change.Kind() == ListChangeKind::Inserted) {
      EXPECT_EQ(list->Take(0), nullptr);
      change[0].calls.Set(5);
    }
  }});
  list->Add(std::move(ann));
  EXPECT_EQ((*list)[2].GetDataSourceProvider(), child.get());
  EXPECT_EQ(Notes(), "+Ann,+Ann =Ann,=Ann");
}

TEST_F(SourceLists, ShowTheirCellsByNameAndSetThemThroughValidators) {
  Framework::AnyListBind table(child.get(), L"Book", L"Contacts");
  EXPECT_EQ(table.Cell(0, 0), Value(L"Cleo"));
  EXPECT_EQ(table.Cell(0, 2), Value(false));
  EXPECT_EQ(table.SetCell(0, L"Calls", -1).text.ToUtf8(),
            "Field \"Calls\" of list \"Contacts\" refuses the value: is negative");
  EXPECT_EQ(table.SetCell(0, L"Friend", true).error, PropertyError::ReadOnly);
  EXPECT_EQ(table.SetCell(0, L"Calls", L"x").error, PropertyError::WrongType);
  EXPECT_TRUE(table.SetCell(0, L"Calls", 9).changed);
  EXPECT_EQ(table.Cell(0, 2), Value(true));
  EXPECT_EQ(Notes(), "=Cleo,=Cleo =Cleo,=Cleo");
}

TEST_F(SourceLists, LendTheChosenRowToAScopeThatNeverLooksFurther) {
  SortedList sorted(*list, By(&Contact::name));
  Selection<Contact> chosen(sorted);
  const CurrentRow current(child.get(), L"Contact", chosen);
  Emplace<Contact>(*parent, log, L"Outer", 3);
  Framework::DataBind<int> calls(child.get(), L"Contact", L"Calls");
  const Subscription heard = calls.SubscribeToChanges([&](Framework::BindChange change) {
    log += "=+-!"[static_cast<int>(change)];
    log += calls.HasValue() ? std::to_string(*calls.Get()) + " " : "";
  });
  seen.Cancel();
  EXPECT_FALSE(calls.HasValue());
  chosen.ChooseKey(L"Bob");
  chosen.ChooseKey(L"Ann");
  EXPECT_EQ(calls.Check(-1).error, PropertyError::Refused);
  EXPECT_EQ(calls.Set(-1).text.ToUtf8(),
            "Property \"Calls\" of data source \"Contact\" refuses the value: is negative");
  calls.Set(6);
  EXPECT_EQ(*chosen.Current()->calls, 6);
  EXPECT_EQ(Notes(), "+1 !1 =6");
  list->Remove(1);
  EXPECT_EQ(Notes(), "-~Ann");
}

TEST_F(SourceLists, AreFollowedByABindAndItsSelectionFromOneOwnerToTheNext) {
  Framework::ListBind<Contact> shown(child.get(), L"Book", L"Contacts");
  Selection<Contact> chosen(shown);
  chosen.ChooseKey(L"Bob");
  child->DeleteLocalDataSourceInstance(L"Book");
  EXPECT_EQ(chosen.Current(), nullptr);
  auto& next = Emplace<Book>(*child).contacts;
  next.Emplace(log, L"Dan");
  Contact& bob = next.Emplace(log, L"Bob", 8);
  EXPECT_EQ(chosen.Current(), &bob);
}

TEST_F(SourceLists, SortAsAViewMadeAnewWhateverIsSetBeforeItIsTold) {
  std::mt19937 random(7);
  const auto any = [&](std::size_t below) { return static_cast<int>(random() % below); };
  const auto order = By(&Contact::calls).Then(&Contact::name);
  SortedList sorted(*list, order);
  int budget = 0;
  const auto set = [&](const auto&...) {
    if (budget-- > 0) sorted[static_cast<std::size_t>(any(sorted.Size()))].calls.Set(any(30));
  };
  const Subscription reacts = sorted.Observe({.before = set, .after = set});
  for (int i = 0; i < 400; ++i) {
    budget = any(40);
    PropertyBatch batch(sorted[1]);
    sorted[1].calls.Set(any(30));
    set();
    if (list->Size() < 40) list->Emplace(log, L"x", any(30));
    list->Remove(static_cast<std::size_t>(any(list->Size() + 1)));
    batch.Commit();
    SortedList fresh(*list, order);
    const auto isSame = [](const Contact& one, const Contact& other) { return &one == &other; };
    ASSERT_TRUE(std::ranges::equal(sorted, fresh, isSame)) << i;
  }
}

}  // namespace
}  // namespace DataBinding::Testing
