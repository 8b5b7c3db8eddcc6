// SPDX-License-Identifier: Apache-2.0
#include "QtSignals.h"

#include "Properties.h"
#include "Signals.h"

namespace Benchmarks {

QCoreApplication& QtApplication() {
  static int count = 1;
  static char name[] = "benchmarks";
  static char* arguments[] = {name, nullptr};
  static QCoreApplication application(count, arguments);
  return application;
}

namespace {

/// A declared property, set by code that knows its class.
class QtDeclaredProperty : public QtSignal {
 public:
  [[nodiscard]] Handle Register(Increment listener) { return QtSignal::Register({}, listener); }
  void Set(double wanted) { object.SetTarget(wanted); }
};

/// A declared property, set and read by its name.
class QtNamedProperty : public QtDeclaredProperty {
 public:
  void Set(double wanted) { object.setProperty("target", wanted); }
  [[nodiscard]] double Get() const { return object.property("target").toDouble(); }
};

class QtBindableProperty : public QtBindable {
 public:
  [[nodiscard]] Handle Register(Increment listener) { return QtBindable::Register({}, listener); }
  void Set(double wanted) { property = wanted; }
};

class QtDynamicProperty : public QtDynamic {
 public:
  [[nodiscard]] Handle Register(Increment listener) { return QtDynamic::Register(name, listener); }
  void Set(double wanted) { object.setProperty(name.Text(), wanted); }
  [[nodiscard]] double Get() const { return object.property(name.Text()).toDouble(); }

 private:
  static inline const NarrowName name{oneName};
};

[[maybe_unused]] const bool qtSignalsMeasured[] = {
    Mention("Qt", qVersion()),
    MeasureSignal<QtSignal>("qt"),
    MeasureSignal<ByName<QtSignal>>("qtmap"),
    MeasureSignal<QtBindable>("qtbindable"),
    MeasureSignal<QtDynamic>("qtdynamic"),
    MeasureProperty<QtDeclaredProperty>("qt"),
    MeasureProperty<QtNamedProperty>("qtnamed"),
    MeasureProperty<QtBindableProperty>("qtbindable"),
    MeasureProperty<QtDynamicProperty>("qtdynamic"),
};

}  // namespace

}  // namespace Benchmarks
