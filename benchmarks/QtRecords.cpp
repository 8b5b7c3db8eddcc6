// SPDX-License-Identifier: Apache-2.0
#include "QtRecords.h"

#include <QList>
#include <QStandardItem>
#include <QVariant>
#include <memory>

#include "Records.h"

namespace Benchmarks {

namespace {

struct QtRecord {
  using Made = std::unique_ptr<QtRecordObject>;
  static Made Make() { return std::make_unique<QtRecordObject>(); }
};

/// A row of a QStandardItemModel: a record is an item whose six values are children in one row.
struct QtItemRecord {
  using Made = std::unique_ptr<QStandardItem>;
  static Made Make() {
    auto record = std::make_unique<QStandardItem>();
    record->appendRow({Item(0), Item(0), Item(0.0), Item(0.0), Item(false), Item(QString())});
    return record;
  }

 private:
  static QStandardItem* Item(const QVariant& value) {
    auto item = std::make_unique<QStandardItem>();
    item->setData(value, Qt::DisplayRole);
    return item.release();
  }
};

[[maybe_unused]] const bool qtRecordsMeasured[] = {
    MeasureRecord<QtRecord>("qt"),
    MeasureRecord<QtItemRecord>("qtitem"),
};

}  // namespace

}  // namespace Benchmarks
