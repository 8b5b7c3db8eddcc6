// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/models/ListSelection.h"

#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTest>
#include <algorithm>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/framework/AnyListBind.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/lists/CurrentRow.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBindingQt6/models/ListModel.h"
#include "People.h"

namespace DataBinding::Qt6::Testing {
namespace {

std::vector<int> SelectedIds(const QItemSelectionModel& selection) {
  std::vector<int> ids;
  for (const QModelIndex& row : selection.selectedRows()) ids.push_back(row.data().toInt());
  std::ranges::sort(ids);
  return ids;
}

class ListSelectionTest : public testing::Test {
 protected:
  ListSelectionTest() {
    people.Assign(People({1, 2, 3, 4, 5, 6}));
    proxy.setSourceModel(&model);
    proxy.setFilterKeyColumn(1);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setModel(&proxy);
    new ListSelection(view.selectionModel(), chosen);
    view.resize(600, 400);
    view.show();
  }

  void Click(int row, Qt::KeyboardModifiers keys = {}) {
    const QPoint place = view.visualRect(view.model()->index(row, 1)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, keys, place);
  }
  std::vector<int> Selected() const { return SelectedIds(*view.selectionModel()); }
  /// Returns the ids of what is chosen, in that order.
  std::vector<int> Chosen() const {
    std::vector<int> ids;
    for (const RowId id : chosen.Ids()) ids.push_back(people.RowAt(id).id);
    return ids;
  }

  ListData<Person> people;
  FilteredList<Person> shown{people, [](const Person& person) { return !person.isMember; }};
  Selection<Person> chosen{people};
  ListModel model{shown};
  QSortFilterProxyModel proxy;
  QTableView view;
};

using Ids = std::vector<int>;

TEST_F(ListSelectionTest, ChoosesWhatTheUserSelects) {
  int told = 0;
  const Subscription seen = chosen.Observe({.changed = [&] { ++told; }});

  Click(3);
  Click(0, Qt::ControlModifier);
  Click(2, Qt::ShiftModifier);

  EXPECT_EQ(Chosen(), (Ids{4, 1, 2, 3}));
  EXPECT_EQ(told, 3);
  Click(3, Qt::ControlModifier);
  EXPECT_EQ(Chosen(), (Ids{1, 2, 3}));
}

TEST_F(ListSelectionTest, SelectsWhatTheProgramChooses) {
  chosen.ChooseKey(2);
  chosen.Add(people.At(4));

  EXPECT_EQ(Selected(), (Ids{2, 5}));
  EXPECT_EQ(view.currentIndex().row(), 4);
  chosen.Clear();
  EXPECT_EQ(Selected(), Ids());
}

TEST_F(ListSelectionTest, HasACurrentRowFollowTheCurrentIndex) {
  DataSourceProvider scope(nullptr, L"", nullptr);
  const CurrentRow<Person> current(&scope, L"Person", chosen);
  const Framework::DataBind<VtrString> name(&scope, L"Person", L"Name");

  Click(4);
  EXPECT_EQ(*name.Get(), L"5");
  QTest::keyClick(&view, Qt::Key_Up);
  EXPECT_EQ(*name.Get(), L"4");
  view.selectAll();
  view.selectionModel()->setCurrentIndex(proxy.index(1, 0), QItemSelectionModel::NoUpdate);
  EXPECT_EQ(*name.Get(), L"2");
}

TEST_F(ListSelectionTest, SurvivesSortingFilteringAndAssign) {
  chosen.ChooseKey(2);
  chosen.Add(people.At(4));

  view.setSortingEnabled(true);
  view.sortByColumn(0, Qt::DescendingOrder);
  model.sort(2, Qt::DescendingOrder);
  EXPECT_EQ(Selected(), (Ids{2, 5}));
  proxy.setFilterFixedString("5");
  EXPECT_EQ(Selected(), (Ids{5}));
  proxy.setFilterFixedString("");
  EXPECT_EQ(Selected(), (Ids{2, 5}));
  people.Update(5, [](Person& person) { person.isMember = true; });
  EXPECT_EQ(Selected(), (Ids{2}));
  people.Assign(People({9, 5, 8, 2}));
  EXPECT_EQ(Selected(), (Ids{2, 5}));
  EXPECT_EQ(Chosen(), (Ids{2, 5}));
}

TEST_F(ListSelectionTest, WhatTheUserSelectsReplacesWhatAFilterHides) {
  chosen.ChooseKey(2);
  proxy.setFilterFixedString("5");

  Click(0);
  proxy.setFilterFixedString("");

  EXPECT_EQ(Selected(), (Ids{5}));
}

TEST_F(ListSelectionTest, AnObserverMayChooseAnotherRowInstead) {
  const Subscription seen = chosen.Observe({.changed = [&] {
    if (chosen.Contains(people.At(3))) chosen.ChooseKey(1);
  }});

  Click(3);

  EXPECT_EQ(Chosen(), Ids{1});
  EXPECT_EQ(Selected(), Ids{1});
}

TEST_F(ListSelectionTest, ASlotMayChooseAnotherRowWhileOneIsShown) {
  QObject::connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, &view,
                   [&] { chosen.ChooseKey(4); });

  chosen.ChooseKey(2);

  EXPECT_EQ(Chosen(), Ids{4});
  EXPECT_EQ(Selected(), Ids{4});
}

TEST(ListSelection, WaitsForTheRowsOfASourceThatComesAgain) {
  DataSourceProvider scope(nullptr, L"", nullptr);
  Framework::AnyListBind bind(&scope, L"Club", L"Members");
  ListModel model(bind);
  AnySelection chosen(bind);
  QItemSelectionModel selection(&model);
  new ListSelection(&selection, chosen);
  scope.AddDataSource(MakeDataSource<Club>(&scope, People({1, 2, 3})).release());
  selection.setCurrentIndex(model.index(1, 0),
                            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);

  scope.DeleteLocalDataSourceInstance(L"Club");
  EXPECT_TRUE(chosen.Ids().empty());
  scope.AddDataSource(MakeDataSource<Club>(&scope, People({7, 3, 2})).release());

  EXPECT_EQ(SelectedIds(selection), Ids{2});
  EXPECT_EQ(selection.currentIndex().row(), 2);
}

TEST(ListSelection, EndsInAnyOrderWithWhatItJoins) {
  for (int order = 0; order < 24; ++order) {
    auto list = std::make_unique<ListData<Person>>();
    list->Assign(People({1, 2, 3}));
    auto chosen = std::make_unique<Selection<Person>>(*list);
    auto model = std::make_unique<ListModel>(*list);
    auto view = std::make_unique<QTableView>();
    view->setModel(model.get());
    new ListSelection(view->selectionModel(), *chosen);
    view->selectRow(1);
    EXPECT_EQ(chosen->Current()->id, 2);
    std::vector<std::function<void()>> ends{[&] { list.reset(); }, [&] { chosen.reset(); },
                                            [&] { model.reset(); }, [&] { view.reset(); }};
    for (int left = 4, rest = order; left > 0; rest /= left--) {
      const auto next = ends.begin() + rest % left;
      (*next)();
      ends.erase(next);
      if (view != nullptr) view->selectAll();
      if (chosen != nullptr && chosen->List() != nullptr) chosen->ChooseKey(3);
    }
  }
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing
