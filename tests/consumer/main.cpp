// Writes a data source, finds it by name and hears of a change, with the installed package alone.
#include <DataBinding/DataBinding.h>

using namespace DataBinding;

namespace {

class Lamp : public NamedDataSource {
 public:
  Lamp() : NamedDataSource(L"Lamp") {}
  Property<bool> on{this, L"On", false};
};

}  // namespace

int main() {
  DataSourceProvider house(nullptr, L"house", nullptr);
  const DataSourceConstructor<Lamp> registration(L"Lamp", L"house");
  bool lit = false;
  IDataSource& lamp = house.GetDataSourceReference(L"Lamp");
  const auto subscription = lamp.Register([&] { lit = *GetProperty<bool>(&lamp, L"On"); }, L"On");
  return SetProperty(&lamp, L"On", true).changed && lit ? 0 : 1;
}
