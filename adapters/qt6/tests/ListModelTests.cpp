// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/models/ListModel.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTest>
#include <memory>

#include <gtest/gtest.h>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/framework/AnyListBind.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "People.h"

namespace DataBinding::Qt6::Testing {
namespace {

QString IdsIn(const QAbstractItemModel& model) {
  QString text;
  for (int row = 0; row < model.rowCount(); ++row) {
    text += model.index(row, 0).data(Qt::EditRole).toString() + " ";
  }
  return text;
}

class ListModelTest : public testing::Test {
 protected:
  ListModelTest() { people.Assign(People({3, 1, 2})); }
  QVariant Shown(int row, int column, int role = Qt::DisplayRole) const {
    return model.index(row, column).data(role);
  }
  QString ReasonAgainst(int row, int column, const QVariant& value, int role = Qt::EditRole) {
    const QSignalSpy refusals(&model, &ListModel::refused);
    const bool isSet = model.setData(model.index(row, column), value, role);
    return isSet || refusals.isEmpty() ? QString() : refusals[0][1].toString();
  }

  ListData<Person> people;
  ListModel model{people, {{L"Id"}, {L"Name", "Who"}, {L"Weight"}, {L"Member"}, {L"Nothing"}}};
  QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ListModelTest, ShowsFieldsByNameUnderTheirHeaders) {
  EXPECT_EQ(model.headerData(0, Qt::Horizontal), "Id");
  EXPECT_EQ(model.headerData(1, Qt::Horizontal), "Who");
  EXPECT_EQ(Shown(0, 0), 3);
  EXPECT_EQ(Shown(0, 1), "3");
  EXPECT_EQ(Shown(0, 2), 1.5);
  EXPECT_EQ(Shown(0, 2, Qt::EditRole), 1.5);
  EXPECT_EQ(Shown(0, 2, Qt::TextAlignmentRole).toInt(), Qt::AlignRight | Qt::AlignVCenter);
  EXPECT_FALSE(Shown(0, 1, Qt::TextAlignmentRole).isValid());
  EXPECT_FALSE(Shown(0, 4).isValid() || model.index(0, 4).flags().testFlag(Qt::ItemIsEditable));
}

TEST_F(ListModelTest, SetsCellsByValuesAndByTyping) {
  EXPECT_TRUE(model.setData(model.index(1, 1), "Ann"));
  EXPECT_TRUE(model.setData(model.index(1, 2), "70.25"));
  EXPECT_TRUE(model.setData(model.index(2, 2), 8));

  EXPECT_EQ(people[1], (Person{1, L"Ann", 70.25, false}));
  EXPECT_EQ(people[2].weight, 8);
}

TEST_F(ListModelTest, KeepsACellWhoseValueIsRefusedAndSaysWhy) {
  EXPECT_EQ(ReasonAgainst(0, 2, -1.0), "is negative");
  EXPECT_NE(ReasonAgainst(0, 2, "heavy"), "");
  EXPECT_NE(ReasonAgainst(0, 0, 7), "");
  EXPECT_EQ(people[0], People({3})[0]);
  EXPECT_FALSE(model.index(0, 0).flags().testFlag(Qt::ItemIsEditable));
}

TEST_F(ListModelTest, SurvivesFunctionsThatThrowOrEndIt) {
  ListModel* other = nullptr;
  ListModel throwing(people, {{L"Name", {}, [&](auto&&...) -> QVariant { throw 1; }}});
  std::string failed;
  SetListenerFailureHandler(
      [&](const ListenerFailure& failure) { failed += failure.property.ToUtf8(); });
  const Subscription ends = people.Observe({.after = [&](const auto&) { delete other; }});
  other = new ListModel(people);

  EXPECT_EQ(throwing.index(0, 0).data(), "3");
  EXPECT_TRUE(other->setData(other->index(0, 1), "Bob"));

  EXPECT_EQ(failed, "Name");
  SetListenerFailureHandler(nullptr);
}

TEST_F(ListModelTest, ShowsTruthValuesAsBoxes) {
  EXPECT_EQ(Shown(1, 3, Qt::CheckStateRole), Qt::Unchecked);
  EXPECT_TRUE(model.index(1, 3).flags().testFlag(Qt::ItemIsUserCheckable));

  EXPECT_TRUE(model.setData(model.index(1, 3), Qt::Checked, Qt::CheckStateRole));

  EXPECT_TRUE(people[1].isMember);
  EXPECT_EQ(Shown(1, 3, Qt::CheckStateRole), Qt::Checked);
  EXPECT_FALSE(Shown(1, 3).isValid());
  EXPECT_FALSE(model.setData(model.index(1, 2), Qt::Checked, Qt::CheckStateRole));
}

TEST_F(ListModelTest, AFunctionOfAColumnGivesCellsTheirLook) {
  const auto format = [this](const Value& value, int role, const QModelIndex& index) -> QVariant {
    const Person& person = people.RowAt(*static_cast<const ListModel*>(index.model())->IdAt(index));
    if (role == Qt::ToolTipRole) return ToQString(person.name);
    return role == Qt::DisplayRole ? ToQString(value.ToText()) + " kg" : QVariant();
  };
  ListModel formatted(people, {{L"Weight", "", format}, {L"Weight", "", &EditAsText, true}});
  const QSignalSpy changes(&formatted, &QAbstractItemModel::dataChanged);

  EXPECT_EQ(formatted.index(0, 0).data(), "1.5 kg");
  EXPECT_EQ(formatted.index(0, 0).data(Qt::EditRole), 1.5);
  EXPECT_EQ(formatted.index(0, 0).data(Qt::ToolTipRole), "3");
  EXPECT_EQ(formatted.index(0, 1).data(Qt::EditRole), "1.5");
  EXPECT_FALSE(formatted.setData(formatted.index(0, 1), 2));
  people.Update(3, [](Person& person) { person.name = L"Cy"; });
  EXPECT_EQ(changes.size(), 1);
}

TEST_F(ListModelTest, IsSortedByAHeaderOfItsViewWithoutTouchingTheList) {
  QTableView view;
  view.setModel(&model);
  view.setSortingEnabled(true);
  const QPersistentModelIndex three = model.IndexOf(people.At(0));

  view.sortByColumn(2, Qt::AscendingOrder);
  EXPECT_EQ(IdsIn(model), "1 2 3 ");
  EXPECT_EQ(three.row(), 2);
  people.Update(3, [](Person& person) { person.weight = 0; });
  EXPECT_EQ(IdsIn(model), "3 1 2 ");
  model.sort(-1);

  EXPECT_EQ(IdsIn(model), "3 1 2 ");
  EXPECT_EQ(three.row(), 0);
  EXPECT_EQ(people[0].id, 3);
}

TEST_F(ListModelTest, HasWhatIsTypedInACellWhenAWindowIsCommitted) {
  QTableView view;
  view.setModel(&model);
  view.show();
  QApplication::setActiveWindow(&view);
  view.edit(model.index(0, 1));
  QTest::keyClicks(view.viewport()->findChild<QLineEdit*>(), "Ann");

  EXPECT_TRUE(EditsOf(&view).CommitAll().IsAccepted());

  EXPECT_EQ(people[0].name, L"Ann");
}

TEST_F(ListModelTest, RowsAreDraggedWhileTheOrderOfTheListIsShown) {
  people.Assign(People({1, 2, 3, 4, 5}));
  const auto drag = [&](std::vector<int> rows, int before) {
    QModelIndexList dragged;
    for (const int row : rows) dragged << model.index(row, 1) << model.index(row, 2);
    const std::unique_ptr<QMimeData> data(model.mimeData(dragged));
    return model.dropMimeData(data.get(), Qt::MoveAction, before, 0, {});
  };

  EXPECT_FALSE(drag({3, 0}, 2));  // the view would remove the rows otherwise
  EXPECT_EQ(IdsIn(model), "2 1 4 3 5 ");
  drag({0}, -1);
  EXPECT_EQ(IdsIn(model), "1 4 3 5 2 ");
  EXPECT_TRUE(model.moveRows({}, 0, 2, {}, 3));
  EXPECT_EQ(IdsIn(model), "3 1 4 5 2 ");
  EXPECT_FALSE(model.moveRows({}, 0, 2, {}, 1) || model.moveRows({}, 3, 9, {}, 0));
  EXPECT_TRUE(model.flags({}).testFlag(Qt::ItemIsDropEnabled));
  EXPECT_TRUE(model.index(0, 0).flags().testFlag(Qt::ItemIsDragEnabled));
}

TEST_F(ListModelTest, RowsAreNotDraggedWhereTheListDoesNotMoveThem) {
  ListModel other(people);
  FilteredList<Person> filtered(people, [](const Person&) { return true; });
  ListModel view(filtered);
  const std::unique_ptr<QMimeData> data(model.mimeData({model.index(0, 0)}));

  EXPECT_FALSE(other.canDropMimeData(data.get(), Qt::MoveAction, 2, 0, {}));
  EXPECT_EQ(view.supportedDropActions(), Qt::IgnoreAction);
  EXPECT_EQ(view.mimeData({view.index(0, 0)}), nullptr);
  model.sort(0);
  EXPECT_FALSE(model.index(0, 0).flags().testFlag(Qt::ItemIsDragEnabled));
  EXPECT_FALSE(model.moveRows({}, 0, 1, {}, 3));
  EXPECT_EQ(people[0].id, 3);
}

TEST_F(ListModelTest, IsEmptyWhenItsListHasEndedWithinAChange) {
  auto list = std::make_unique<ListData<Person>>();
  list->Assign(People({1, 2}));
  ListModel orphan(*list);
  const QAbstractItemModelTester check(&orphan,
                                       QAbstractItemModelTester::FailureReportingMode::Fatal);
  QSortFilterProxyModel proxy;
  proxy.setSourceModel(&orphan);
  const Subscription ending = orphan.Rows().Observe({.before = [&](const auto&) { list.reset(); }});

  list->Insert(0, People({5})[0]);

  EXPECT_EQ(orphan.rowCount() + proxy.rowCount(), 0);
  EXPECT_EQ(orphan.columnCount(), 4);
  EXPECT_FALSE(orphan.setData(orphan.index(0, 1), "x"));
}

struct Plain {
  VtrString name;
  int id;
};
constexpr auto FieldsOf(const Plain* /*row*/) {
  return Fields(Field(L"Name", &Plain::name), Field(L"Id", &Plain::id));
}
struct PlainClub : NamedDataSource {
  PlainClub() : NamedDataSource(L"Club") { members.Assign({{L"y", 1}, {L"x", 2}, {L"z", 0}}); }
  List<Plain> members{this, L"Members"};
};

TEST(ListModel, FollowsABindToListsOfOtherRows) {
  DataSourceProvider scope(nullptr, L"", nullptr);
  Framework::AnyListBind bind(&scope, L"Club", L"Members");
  ListModel all(bind);
  ListModel named(bind, {{L"Id"}, {L"Name"}});
  const QAbstractItemModelTester check(&all, QAbstractItemModelTester::FailureReportingMode::Fatal);
  named.sort(1);
  EXPECT_EQ(all.columnCount(), 0);

  scope.AddDataSource(MakeDataSource<Club>(&scope, People({7, 5})).release());
  EXPECT_EQ(all.headerData(1, Qt::Horizontal), "Name");
  EXPECT_EQ(IdsIn(named), "5 7 ");
  scope.DeleteLocalDataSourceInstance(L"Club");
  EXPECT_EQ(all.rowCount(), 0);
  scope.AddDataSource(MakeDataSource<PlainClub>(&scope).release());

  EXPECT_EQ(all.columnCount(), 2);
  EXPECT_EQ(all.index(0, 0).data(), "y");
  EXPECT_EQ(IdsIn(named), "2 1 0 ");
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing
