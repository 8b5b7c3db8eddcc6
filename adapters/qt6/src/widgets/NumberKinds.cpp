// SPDX-License-Identifier: Apache-2.0
// This file holds the traits of the widgets that show numbers.

#include <QAbstractSlider>
#include <QDoubleSpinBox>
#include <QProgressBar>
#include <QSpinBox>
#include <memory>
#include <utility>

#include "DataBindingQt6/widgets/Bind.h"
#include "SpinEdits.h"

namespace DataBinding::Qt6 {

/// A box that does not track the keyboard has its new value only when the edit is finished, so its
/// text is read.
template <>
struct WidgetTraits<QSpinBox> {
  using Form = int;
  static int Read(const QSpinBox& box) {
    bool isNumber = false;
    const int number = box.displayIntegerBase() == 10
                           ? box.locale().toInt(box.cleanText(), &isNumber)
                           : box.cleanText().toInt(&isNumber, box.displayIntegerBase());
    const bool isTyped =
        !box.keyboardTracking() && isNumber && number >= box.minimum() && number <= box.maximum();
    return isTyped ? number : box.value();
  }
  static void Write(QSpinBox& box, int number) { box.setValue(number); }
  static void Clear(QSpinBox& box) { box.clear(); }
  static void Connect(QSpinBox& box, Binding& binding) {
    QObject::connect(&box, &QSpinBox::valueChanged, &SpinEdits::Of(box, binding),
                     &SpinEdits::TellChange);
  }
};

template <>
struct WidgetTraits<QDoubleSpinBox> {
  using Form = double;
  static double Read(const QDoubleSpinBox& box) {
    bool isNumber = false;
    const double number = box.locale().toDouble(box.cleanText(), &isNumber);
    const bool isTyped =
        !box.keyboardTracking() && isNumber && number >= box.minimum() && number <= box.maximum();
    return isTyped ? number : box.value();
  }
  static void Write(QDoubleSpinBox& box, double number) { box.setValue(number); }
  static void Clear(QDoubleSpinBox& box) { box.clear(); }
  static void Connect(QDoubleSpinBox& box, Binding& binding) {
    QObject::connect(&box, &QDoubleSpinBox::valueChanged, &SpinEdits::Of(box, binding),
                     &SpinEdits::TellChange);
  }
};

/// A slider announces each change of its value, and before that what the user does to it. So only
/// what follows an action is an edit.
template <>
struct WidgetTraits<QAbstractSlider> {
  using Form = int;
  static int Read(const QAbstractSlider& slider) { return slider.value(); }
  static void Write(QAbstractSlider& slider, int number) { slider.setValue(number); }
  static void Clear(QAbstractSlider& slider) { slider.setValue(slider.minimum()); }
  static void Connect(QAbstractSlider& slider, Binding& binding) {
    const auto isMoved = std::make_shared<bool>(false);
    QObject::connect(&slider, &QAbstractSlider::actionTriggered, &binding,
                     [&slider, isMoved] { *isMoved = slider.sliderPosition() != slider.value(); });
    QObject::connect(&slider, &QAbstractSlider::valueChanged, &binding, [&binding, isMoved] {
      if (std::exchange(*isMoved, false)) binding.chosen();
    });
  }
};

/// A progress bar ignores a number out of its range.
template <>
struct WidgetTraits<QProgressBar> {
  using Form = int;
  static void Write(QProgressBar& bar, int number) {
    bar.setValue(qBound(bar.minimum(), number, bar.maximum()));
  }
  static void Clear(QProgressBar& bar) { bar.reset(); }
};

Binding& Bind(QSpinBox* box, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(box, details::widgetOps<QSpinBox>, source, property, options);
}

Binding& Bind(QDoubleSpinBox* box, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(box, details::widgetOps<QDoubleSpinBox>, source, property, options);
}

Binding& Bind(QAbstractSlider* slider, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(slider, details::widgetOps<QAbstractSlider>, source, property,
                              options);
}

Binding& Bind(QProgressBar* bar, const VtrString& source, const VtrString& property,
              const BindOptions& options) {
  return details::MakeBinding(bar, details::widgetOps<QProgressBar>, source, property, options);
}

}  // namespace DataBinding::Qt6
