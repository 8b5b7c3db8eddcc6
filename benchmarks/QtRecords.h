// SPDX-License-Identifier: Apache-2.0
/// A QObject with six declared properties, each with a signal of its own.
#pragma once

#include <QObject>
#include <QString>

namespace Benchmarks {

class QtRecordObject : public QObject {
  Q_OBJECT
  Q_PROPERTY(int number MEMBER number NOTIFY NumberChanged)
  Q_PROPERTY(int age MEMBER age NOTIFY AgeChanged)
  Q_PROPERTY(double height MEMBER height NOTIFY HeightChanged)
  Q_PROPERTY(double weight MEMBER weight NOTIFY WeightChanged)
  Q_PROPERTY(bool active MEMBER isActive NOTIFY ActiveChanged)
  Q_PROPERTY(QString remark MEMBER remark NOTIFY RemarkChanged)

 Q_SIGNALS:
  void NumberChanged();
  void AgeChanged();
  void HeightChanged();
  void WeightChanged();
  void ActiveChanged();
  void RemarkChanged();

 private:
  int number = 0;
  int age = 0;
  double height = 0;
  double weight = 0;
  bool isActive = false;
  QString remark;
};

}  // namespace Benchmarks
