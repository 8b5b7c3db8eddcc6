// SPDX-License-Identifier: Apache-2.0
/// A small curve of the last minute of a share, with its newest part on the right. It is a widget
/// of this program's own: its traits let it be bound like any other.
#pragma once

#include <QWidget>
#include <deque>

#include <DataBindingQt6/widgets/WidgetTraits.h>

namespace Sysmon {

class LoadCurve : public QWidget {
 public:
  using QWidget::QWidget;

  /// Adds the newest point, from 0 to 1.
  void Add(double share);
  void Clear();

  [[nodiscard]] QSize sizeHint() const override { return {240, 56}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::deque<double> points;
};

}  // namespace Sysmon

template <>
struct DataBinding::Qt6::WidgetTraits<Sysmon::LoadCurve> {
  using Form = double;
  static void Write(Sysmon::LoadCurve& curve, double share) { curve.Add(share); }
  static void Clear(Sysmon::LoadCurve& curve) { curve.Clear(); }
};
