// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

class Room : public NamedDataSource {
 public:
  Room() : NamedDataSource(L"Room") {}

  Property<int> width{this, L"Width", 4, {.validate = [](int n) { return n > 0 ? L"" : no; }}};
  Property<int> length{this, L"Length", 5, {.validate = [](int n) { return n > 0 ? L"" : no; }}};
  ComputedProperty<int> area{this, L"Area", [this] { return *width * *length; }, width, length};
  ReadOnlyProperty<int> visitors{this, L"Visitors"};
  Property<VtrString> name{this, L"Name", L"", {.changed = [this](auto&, auto&) { ++renamed; }}};

  void LetIn() { Assign(visitors, *visitors + 1); }

  int renamed = 0;

 private:
  static constexpr const wchar_t* no = L"It must be above 0.";
};

void Tell(const char* what, const SetResult& result) {
  std::cout << what << ": " << (result.changed ? "changed" : "not changed");
  if (!result.IsAccepted()) std::cout << ". " << result;
  std::cout << '\n';
}

void SetByName(IDataSource* source) {
  Tell("width 6", SetProperty(source, L"Width", 6));
  Tell("width 6 again", SetProperty(source, L"Width", 6));
  Tell("width 0", SetProperty(source, L"Width", 0));
  Tell("width 6.5", SetProperty(source, L"Width", 6.5));
  Tell("visitors 1", SetProperty(source, L"Visitors", 1));
  Tell("height 3", SetProperty(source, L"Height", 3));
}

void ReadByName(IDataSource* source) {
  const PropertyValue<int> area = GetProperty<int>(source, L"Area");
  if (area) std::cout << "area " << *area << '\n';

  const PropertyValue<int> height = GetProperty<int>(source, L"Height");
  if (height.error == PropertyError::Absent) std::cout << "no height\n";

  const PropertyRef<int> visitors = FindProperty<int>(source, L"Visitors");  // found once
  std::cout << "visitors " << *visitors.Get() << (visitors.IsReadOnly() ? ", read-only\n" : "\n");
}

void WriteOut(IDataSource* source) {
  for (const auto& [name, item] : *source) {
    std::cout << ' ' << name << '=' << ReadPropertyText(source, name);
  }
  std::cout << '\n';
}

void Resize(Room& room) {
  PropertyBatch batch(room);
  room.width.Set(7);
  room.length.Set(8);
  batch.Commit();  // Width, Length and Area are announced here, once each
}

Subscription LogChanges(Room& room) {
  return room.RegisterAny([](const VtrString& name) { std::cout << "changed " << name << '\n'; });
}

int main() {
  const DataSourcePtr<Room> room = MakeDataSource<Room>(nullptr);
  SetByName(room.get());
  room->LetIn();
  ReadByName(room.get());
  WriteOut(room.get());

  const Subscription shown =
      room->Register([&] { std::cout << "now " << *room->area << " m2\n"; }, L"Area");
  Resize(*room);

  const Subscription logged = LogChanges(*room);
  room->name.Set(L"Kitchen");
  std::cout << "renamed " << room->renamed << " time\n";
}
