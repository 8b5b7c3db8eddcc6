// SPDX-License-Identifier: Apache-2.0
// One key of a sorted proxy over a table model changes.

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <cstddef>
#include <random>
#include <vector>

#include "Peers.h"

namespace Benchmarks {

namespace {

class QtTable : public QAbstractTableModel {
 public:
  explicit QtTable(int count) : values(static_cast<std::size_t>(count)) {
    for (double& value : values) value = double(random() % 1'000'000);
  }
  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(values.size());
  }
  [[nodiscard]] int columnCount(const QModelIndex& /*parent*/ = {}) const override { return 1; }
  [[nodiscard]] QVariant data(const QModelIndex& index, int /*role*/) const override {
    return values[static_cast<std::size_t>(index.row())];
  }
  void ChangeOne() {
    const auto row = random() % values.size();
    values[row] = double(random() % 1'000'000);
    const QModelIndex changed = index(static_cast<int>(row), 0);
    Q_EMIT dataChanged(changed, changed);
  }

 private:
  std::mt19937 random{2};
  std::vector<double> values;
};

void QtOneKey(benchmark::State& state) {
  QtTable table(100'000);
  QSortFilterProxyModel sorted;
  sorted.setSourceModel(&table);
  sorted.setDynamicSortFilter(true);
  sorted.sort(0);
  std::size_t told = 0;
  QObject::connect(&sorted, &QAbstractItemModel::dataChanged, [&told] { ++told; });
  for (auto _ : state) table.ChangeOne();
}

[[maybe_unused]] const bool qtViewsMeasured = [] {
  Enter("views/one-key", "qt", &QtOneKey);
  return true;
}();

}  // namespace

}  // namespace Benchmarks
