// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <memory>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Thermostat : public NamedDataSource {
 public:
  Thermostat() : NamedDataSource(L"Thermostat") {}

  Property<double> target{this, L"Target", 21.0};
  Property<double> actual{this, L"Actual", 19.5};
};

class Label : public SupportsWeakPtr<Label> {
 public:
  explicit Label(IDataSource* source)
      : actual(source, L"Actual"),
        shown(source->Register(BindWeak(AsWeakPtr(), &Label::Show), L"Actual")) {}

 private:
  void Show() { std::cout << "label: " << actual.Get() << '\n'; }

  PropertyRef<double> actual;
  Subscription shown;
};

void Watch(Thermostat& thermostat) {
  std::unique_ptr<Label> label;
  const Subscription closing = thermostat.Register(
      [&] {
        if (*thermostat.actual > 30) label.reset();
      },
      L"Actual");
  label = std::make_unique<Label>(&thermostat);

  thermostat.actual.Set(30.0);
  thermostat.actual.Set(31.0);  // the label ends before its turn comes
}

int main() {
  const DataSourcePtr<Thermostat> thermostat = MakeDataSource<Thermostat>(nullptr);

  Subscription shown = thermostat->Register(
      [&] { std::cout << "it is " << *thermostat->actual << " degrees\n"; }, L"Actual");

  thermostat->actual.Set(20.0);
  thermostat->actual.Set(20.0);  // equal: nobody is told
  thermostat->target.Set(22.0);  // nobody listens to Target
  thermostat->actual.Set(20.5);

  shown.Cancel();
  thermostat->actual.Set(21.0);  // nobody listens any more

  IDataSource* source = thermostat.get();  // what a view would have in hand
  std::cout << "by name: " << *GetProperty<double>(source, L"Actual") << '\n';
  Watch(*thermostat);
}
