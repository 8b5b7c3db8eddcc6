// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Thermostat : public NamedDataSource {  // the model
 public:
  Thermostat() : NamedDataSource(L"Thermostat") {}
  Property<double> target{this, L"Target", 21.0};
  Property<double> actual{this, L"Actual", 19.5};
  ComputedProperty<bool> heats{this, L"Heats", [this] { return *actual < *target; }, actual,
                               target};
};

int main() {
  DataSourceProvider room(nullptr, L"room", nullptr);  // a scope that builds sources of "room"
  const DataSourceConstructor<Thermostat> registration(L"Thermostat", L"room");

  IDataSource* source = room.GetDataSource(L"Thermostat");  // the view: names and types only
  const auto show = [&] { std::cout << "heats: " << *GetProperty<bool>(source, L"Heats") << '\n'; };
  const Subscription shown = source->Register(show, L"Heats");

  SetProperty(source, L"Actual", 22.5);  // prints "heats: 0"
  const SetResult wrong = SetProperty(source, L"Actual", 22);
  std::cout << wrong << '\n';  // ... has type double, not int.
}
