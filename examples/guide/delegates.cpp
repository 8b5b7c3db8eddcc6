// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Player : public NamedDataSource {
 public:
  Player() : NamedDataSource(L"Player") {
    AddDelegate<int(int)>(L"Skip", [this](int titles) { return title += titles; });
    AddDelegate<void()>(L"Stop", [] { std::cout << "silence\n"; });
  }

 private:
  int title = 1;
};

void Use(IDataSource* source) {
  FindDelegate<void()>(source, L"Stop")();

  const DelegateRef<int(int)> skip = FindDelegate<int(int)>(source, L"Skip");  // found once
  for (const int by : {1, 2}) {
    if (const PropertyValue<int> title = skip(by)) std::cout << "title " << *title << '\n';
  }
}

void Explain(IDataSource* source) {
  const auto misspelt = FindDelegate<int(int)>(source, L"Skpi");
  if (misspelt.Error() == PropertyError::Absent) std::cout << misspelt.Text() << '\n';

  const auto mistyped = FindDelegate<int(long)>(source, L"Skip");
  if (mistyped.Error() == PropertyError::WrongType) std::cout << mistyped.Text() << '\n';
}

int main() {
  DataSourcePtr<Player> player = MakeDataSource<Player>(nullptr);
  Use(player.get());
  Explain(player.get());

  const auto stop = FindDelegate<void()>(player.get(), L"Stop");
  player.reset();
  std::cout << stop().text << '\n';
}
