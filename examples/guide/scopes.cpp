// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Named : public NamedDataSource {
 public:
  Named(const VtrString& name, const VtrString& text)
      : NamedDataSource(name), value(this, L"Value", text) {}

  Property<VtrString> value;
};

void Ask(IDataSourceProvider& scope, const wchar_t* name) {
  const auto value = GetProperty<VtrString>(scope.GetDataSource(name), L"Value");
  std::cout << VtrString(name) << ": " << (value ? *value : L"nothing") << '\n';
}

struct Theme {
  const char* ink;
};
constexpr CustomDataKey<Theme> themeKey{
    Guid{0x2f3c1a90, 0x11d2, 0x4b7e, {0x9c, 0x01, 0x02, 0x03, 4, 5, 6, 7}}};

int main() {
  DataSourceProvider application(nullptr, L"application", nullptr);
  const DataSourceProviderPtr document(application.CreateDataSourceProvider(L"document", nullptr));

  Emplace<Named>(application, L"Language", L"English");
  Emplace<Named>(application, L"Title", L"Editor");
  Named& title = Emplace<Named>(*document, L"Title", L"Letter");

  Ask(*document, L"Title");     // held by the document
  Ask(*document, L"Language");  // held further out
  Ask(*document, L"Author");    // held nowhere
  std::cout << "held here: " << (document->GetLocalDataSourceInstance(L"Language") != nullptr)
            << '\n';

  DataSourcePtr<Named> taken = TakeDataSource(*document, &title);
  Ask(*document, L"Title");  // the application's is seen again
  taken->value.Set(L"Report");
  GiveDataSource(*document, std::move(taken));
  Ask(*document, L"Title");

  Theme dark{"white"};
  application.GetCustomData().Set(themeKey, &dark);
  std::cout << "ink: " << document->GetCustomData().Get(themeKey)->ink << '\n';

  try {
    document->GetDataSourceReference(L"Author");
  } catch (const VtrString& text) {
    std::cout << text << '\n';
  }
}
