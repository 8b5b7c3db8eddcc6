// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Thermostat : public NamedDataSource {
 public:
  explicit Thermostat(double reading)
      : NamedDataSource(L"Thermostat"), actual(this, L"Actual", reading) {}

  Property<double> actual;
};

class Display : public ScopedListener {
 public:
  explicit Display(const char* text) : label(text) {
    AddDataListener(L"Thermostat", L"Actual", [this] { Redraw(); });
  }

  void Redraw() {
    const auto value = GetProperty<double>(thermostat, L"Actual");
    std::cout << label << ": " << (value ? VtrString().Format(L"%.1f", *value) : L"--") << '\n';
  }

 private:
  void ConnectToDatasource(IDataSource* source) override {
    ScopedListener::ConnectToDatasource(source);
    thermostat = source;
    Redraw();
  }
  void DisconnectFromDatasource(IDataSource* source) override {
    ScopedListener::DisconnectFromDatasource(source);
    thermostat = nullptr;
    Redraw();
  }

  const char* label;
  IDataSource* thermostat = nullptr;
};

int main() {
  DataSourceProvider house(nullptr, L"house", nullptr);
  const DataSourceProviderPtr kitchen(house.CreateDataSourceProvider(L"room", nullptr));

  Thermostat* thermostat = nullptr;
  {
    Display hall("hall");
    hall.SetDataSourceProvider(&house);              // nothing to connect to yet
    thermostat = &Emplace<Thermostat>(house, 19.5);  // connects it
  }                                                  // a listener that ends takes itself off

  Display wall("kitchen");
  wall.SetDataSourceProvider(kitchen.get());  // connects to the house's, further out
  thermostat->actual.Set(20.0);

  DataSourcePtr<Thermostat> taken = TakeDataSource(house, thermostat);  // disconnects it
  taken->actual.Set(23.0);  // the display does not hear it
  GiveDataSource(*kitchen, std::move(taken));
  wall.SetDataSourceProvider(nullptr);  // leaves the kitchen
}
