#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Thermostat : public NamedDataSource {
 public:
  Thermostat() : NamedDataSource(L"Thermostat") {}

  Property<double> target{this, L"Target", 21.0};
  Property<double> actual{this, L"Actual", 19.5};
};

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
}
