// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Clock : public NamedDataSource {
 public:
  Clock() : NamedDataSource(L"Clock") { std::cout << "a clock is built\n"; }
  ~Clock() override { std::cout << "a clock ends\n"; }

  Property<int> hour{this, L"Hour", 9};
};

class Outline : public NamedDataSource {
 public:
  explicit Outline(IDataSourceProvider* scope) : NamedDataSource(L"Outline") {
    std::cout << "an outline of \"" << scope->GetCategories().front() << "\" is built\n";
  }
};

class Disk : public NamedDataSource {
 public:
  explicit Disk(const VtrString& mountedAt)
      : NamedDataSource(L"Disk"), path(this, L"Path", mountedAt) {}

  ReadOnlyProperty<VtrString> path;
};

// At namespace scope, most often: the constructor is there as long as its module.
const DataSourceConstructor<Clock> clocks(L"Clock", L"root");
const DataSourceConstructor<Outline> outlines(L"Outline", L"letter, report");
const DataSourceConstructor<Disk> disks(L"Disk", L"root", Placement::Back, [](auto* scope) {
  return MakeDataSource<Disk>(scope, L"/");
});

int main() {
  IDataSourceRegistrar& registrar = IDataSourceRegistrar::GetInstance();
  registrar.Initialize();  // makes the root, whose category is "root"
  IDataSourceProvider& root = *registrar.GetRootProvider();

  const DataSourceProviderPtr letter(root.CreateDataSourceProvider(L"letter", nullptr));
  const DataSourceProviderPtr memo(root.CreateDataSourceProvider(L"memo", nullptr));

  IDataSource* clock = letter->GetDataSource(L"Clock");  // built in the root, which matches
  std::cout << "the same: " << (memo->GetDataSource(L"Clock") == clock) << '\n';

  letter->GetDataSource(L"Outline");  // built in the letter
  std::cout << "in a memo: " << (memo->GetDataSource(L"Outline") != nullptr) << '\n';
  IDataSource* disk = memo->GetDataSource(L"Disk");  // built in the root, by the factory
  std::cout << "a disk at " << GetProperty<VtrString>(disk, L"Path") << '\n';

  for (const VtrString& name : letter->GetRegisteredDataSources()) {
    std::cout << "a letter could build " << name << '\n';
  }
  registrar.Shutdown();  // ends the root, and the clock with it
}
