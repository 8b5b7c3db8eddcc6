// SPDX-License-Identifier: Apache-2.0
// Qt's bindings, and its search for objects by name.

#include "Binds.h"
#include "Finding.h"
#include "QtSignals.h"

namespace Benchmarks {

namespace {

/// A bindable property bound to another, with a notifier that shows it.
class QtBinding {
 public:
  void Set(double wanted) { source = wanted; }
  [[nodiscard]] double Shown() const { return shown; }

 private:
  double shown = 0;
  QProperty<double> source;
  QProperty<double> widget{Qt::makePropertyBinding([this] { return source.value(); })};
  QPropertyNotifier watching = widget.addNotifier([this] { shown = widget.value(); });
};

/// A declared property's signal connected to a function that reads it.
class QtConnected {
 public:
  QtConnected() {
    QObject::connect(&source, &QtObject::Changed, &source, [this] { shown = source.Target(); });
  }
  void Set(double wanted) { source.SetTarget(wanted); }
  [[nodiscard]] double Shown() const { return shown; }

 private:
  double shown = 0;
  QtObject source;
};

/// Children of one object, which is how Qt finds objects by name.
class QtChildren {
 public:
  using Name = QString;

  explicit QtChildren(const Texts& names) {
    for (const auto& name : names)
      (new QObject(&parent))->setObjectName(QString::fromStdWString(name));
  }
  [[nodiscard]] QObject* Find(const Name& name) const {
    return parent.findChild<QObject*>(name, Qt::FindDirectChildrenOnly);
  }

 private:
  QObject parent;
};

[[maybe_unused]] const bool qtBindsMeasured[] = {
    MeasureBind<QtBinding>("qtbindable"),
    MeasureBind<QtConnected>("qt"),
    MeasureFinding<QtChildren>("qt", 10'000),
};

}  // namespace

}  // namespace Benchmarks
