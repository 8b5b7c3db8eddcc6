// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QSortFilterProxyModel>
#include <algorithm>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "DataBinding/lists/FilteredList.h"
#include "DataBindingQt6/models/ListModel.h"
#include "DataBindingQt6/models/ListSelection.h"
#include "DataBindingQt6/values/Text.h"
#include "People.h"

namespace DataBinding::Qt6::Testing {
namespace {

using Fatal = QAbstractItemModelTester;

QVariantList RowOf(const QAbstractItemModel& model, int row) {
  QVariantList cells;
  for (int column = 0; column < model.columnCount(); ++column) {
    const QModelIndex index = model.index(row, column);
    cells << index.data() << index.data(Qt::EditRole) << index.data(Qt::CheckStateRole);
  }
  return cells;
}

/// Keeps a copy of all cells, which it changes by nothing but what the model tells.
class Copy : public QObject {
 public:
  explicit Copy(const QAbstractItemModel& itsModel) : model(itsModel) {
    using Model = QAbstractItemModel;
    const auto all = [this] { ReadAll(); };
    connect(&model, &Model::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
      for (int row = first; row <= last; ++row) cells.insert(row, RowOf(model, row));
    });
    connect(&model, &Model::rowsRemoved, this, [this](const QModelIndex&, int first, int last) {
      cells.remove(first, last - first + 1);
    });
    connect(&model, &Model::rowsMoved, this,
            [this](const QModelIndex&, int first, int last, const QModelIndex&, int to) {
              const auto at = [this](int row) { return cells.begin() + row; };
              to > last ? std::rotate(at(first), at(last + 1), at(to))
                        : std::rotate(at(to), at(first), at(last + 1));
            });
    connect(&model, &Model::dataChanged, this, [this](const auto& first, const auto& last) {
      for (int row = first.row(); row <= last.row(); ++row) cells[row] = RowOf(model, row);
    });
    connect(&model, &Model::layoutChanged, this, all);
    connect(&model, &Model::modelReset, this, all);
    ReadAll();
  }
  [[nodiscard]] const QList<QVariantList>& Cells() const { return cells; }

 private:
  void ReadAll() {
    cells.clear();
    for (int row = 0; row < model.rowCount(); ++row) cells << RowOf(model, row);
  }

  const QAbstractItemModel& model;
  QList<QVariantList> cells;
};

/// Does random operations on a list, which a model shows through a view, and a proxy on that, and
/// on a selection.
class RandomPeople : public testing::Test {
 protected:
  RandomPeople() {
    proxy.setSourceModel(&model);
    proxy.setSortRole(Qt::EditRole);
    proxy.sort(2);
    proxy.setFilterKeyColumn(1);
    copy = std::make_unique<Copy>(model);
    proxied = std::make_unique<Copy>(proxy);
    selection = std::make_unique<QItemSelectionModel>(&proxy);
    new ListSelection(selection.get(), chosen);
  }

  int Below(std::size_t end) { return end == 0 ? 0 : static_cast<int>(random() % end); }
  std::size_t Place() { return static_cast<std::size_t>(Below(people.Size() + 1)); }
  Person Anyone() {
    const int id = next++;
    return {id, VtrString(std::to_wstring(Below(200))), 0.5 * Below(50), Below(2) == 1};
  }

  void Operate() {
    const int row = Below(people.Size());
    switch (Below(16)) {
      case 0:
        return model.sort(Below(6) - 1, Qt::SortOrder(Below(2)));
      case 1:
        people.Insert(Place(), std::vector<Person>{Anyone(), Anyone(), Anyone()});
        return;
      case 2:
      case 3:
        people.Remove(Place(), static_cast<std::size_t>(Below(4)));
        return;
      case 4:
        people.Move(Place(), 1, Place());
        return;
      case 5:
        model.moveRows({}, row, 1 + Below(3), {}, Below(people.Size() + 1));
        return;
      case 6:
        return Shuffle();
      case 7:
        model.setData(model.index(row, 2), 0.5 * Below(60) - 1);
        return;
      case 8:
        people.UpdateAt(Place(), [this](Person& person) { person.isMember = Below(2) == 0; });
        return;
      case 9:
        people.UpdateAt(Place(), [this](Person& person) { person = Anyone(); });
        return;
      case 10:
        return proxy.setFilterFixedString(Below(4) == 0 ? "" : "1");
      case 11:
      case 12:
        return selection->select(proxy.index(row, 0), Selected(Below(2) == 0));
      case 13:
        chosen.Add(people.IdAt(Place()).value_or(0));
        return;
      default:
        people.Insert(Place(), Anyone());
    }
  }
  static QItemSelectionModel::SelectionFlags Selected(bool isToggled) {
    using Model = QItemSelectionModel;
    return (isToggled ? Model::Toggle : Model::Select) | Model::Rows;
  }
  void Shuffle() {
    people.Edit([this](std::vector<Person>& rows) {
      if (Below(2) == 0) std::ranges::shuffle(rows, random);
      if (rows.size() > 200) rows.resize(static_cast<std::size_t>(Below(120)));
      for (int i = Below(30) == 0 ? 100 : 0; i > 0; --i) rows.push_back(Anyone());
      for (Person& person : rows) person.weight += Below(3);
    });
  }

  /// Compares all cells with the rows of the list.
  [[nodiscard]] bool IsModelRight() const {
    const auto guest = [](const Person& person) { return !person.isMember; };
    if (copy->Cells().size() != std::ranges::count_if(people, guest)) return false;
    for (int row = 0; row < model.rowCount(); ++row) {
      const Person& person = people.RowAt(*model.IdAt(model.index(row, 0)));
      const QString name = ToQString(person.name);
      const QVariant off = static_cast<int>(Qt::Unchecked);
      const QVariantList cells = {person.id,     person.id,     {}, name, name,  {},
                                  person.weight, person.weight, {}, {},   false, off};
      if (person.isMember || copy->Cells()[row] != cells) return false;
    }
    return true;
  }
  /// A proxy leaves open how rows stand that it finds equal.
  [[nodiscard]] bool IsProxyRight() const {
    const auto byId = [](const QVariantList& row) { return row[0].toInt(); };
    const auto byWeight = [](const QVariantList& row) { return row[6].toDouble(); };
    const QString filter = proxy.filterRegularExpression().pattern();
    QList<QVariantList> expected = copy->Cells();
    QList<QVariantList> found = proxied->Cells();
    if (!std::ranges::is_sorted(found, {}, byWeight)) return false;
    expected.removeIf([&](const auto& row) { return !row[3].toString().contains(filter); });
    std::ranges::sort(expected, {}, byId);
    std::ranges::sort(found, {}, byId);
    return expected == found;
  }
  [[nodiscard]] bool IsSelectionRight() const {
    std::vector<int> rows;
    for (const RowId id : chosen.Ids()) {
      const QModelIndex index = proxy.mapFromSource(model.IndexOf(id));
      if (index.isValid()) rows.push_back(index.row());
    }
    std::vector<int> selected;
    for (const QModelIndex& index : selection->selectedRows()) selected.push_back(index.row());
    return std::ranges::is_permutation(rows, selected);
  }

  std::mt19937 random{2024};
  int next = 1;
  ListData<Person> people;
  FilteredList<Person> guests{people, [](const Person& person) { return !person.isMember; }};
  Selection<Person> chosen{people};
  ListModel model{guests};
  QSortFilterProxyModel proxy;
  QAbstractItemModelTester tester{&model, Fatal::FailureReportingMode::Fatal};
  QAbstractItemModelTester proxyTester{&proxy, Fatal::FailureReportingMode::Fatal};
  std::unique_ptr<Copy> copy;
  std::unique_ptr<Copy> proxied;
  std::unique_ptr<QItemSelectionModel> selection;
};

TEST_F(RandomPeople, AreShownAndSelectedExactlyInAModelAndInAProxyOverIt) {
  const int asked = qEnvironmentVariableIntValue("RANDOM_OPERATIONS");
  const int operations = asked > 0 ? asked : 1500;
  for (int number = 0; number < operations; ++number) {
    Operate();
    ASSERT_TRUE(IsSelectionRight()) << number;
    if (number % 8 != 0) continue;
    ASSERT_TRUE(IsModelRight()) << number;
    ASSERT_TRUE(IsProxyRight()) << number;
  }
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing
