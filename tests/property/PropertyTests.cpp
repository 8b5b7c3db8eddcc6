// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <DataBinding/datasource/MakeDataSource.h>
#include <DataBinding/datasource/NamedDataSource.h>
#include <DataBinding/property/Property.h>
#include <DataBinding/property/PropertyAccess.h>
#include <DataBinding/property/PropertyBatch.h>
#include <gtest/gtest.h>

namespace DataBinding {
namespace {

VtrString OnlyPositive(const int& value) { return value < 0 ? L"must not be negative" : L""; }

class Box : public NamedDataSource {
 public:
  Box() : NamedDataSource(L"Box") {}

  Property<int> Width{this, L"Width", 2, {.validate = &OnlyPositive}};
  Property<int> Height{this, L"Height", 3};
  ComputedProperty<int> Area{this, L"Area", [this] { return *Width * *Height; }, Width, Height};
  ReadOnlyProperty<VtrString> Label{this, L"Label", L"box"};

  SetResult Rename(const wchar_t* label) { return Assign(Label, label); }
  SetResult Rename(Box& other) { return Assign(other.Label, L"taken over"); }
};

/// Logs which of a box's properties are announced, by their first letters.
class PropertyTest : public testing::Test {
 protected:
  void Listen(const wchar_t* name, const RepeatingCallback<void()>& then = {}) {
    subscriptions.push_back(box->Register(
        [this, letter = static_cast<char>(*name), then] {
          log += letter;
          then();
        },
        name));
  }

  DataSourcePtr<Box> box = MakeDataSource<Box>(nullptr);
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(PropertyTest, ReadOnlyPropertyIsSetByItsOwnSourceOnly) {
  const auto other = MakeDataSource<Box>(nullptr);
  EXPECT_TRUE(box->Rename(L"crate").changed);
  EXPECT_EQ(other->Rename(*box).error, PropertyError::ReadOnly);
  EXPECT_EQ(*box->Label, L"crate");
}

TEST_F(PropertyTest, PropertyThatEndsWithinABatchIsLeftOut) {
  Property<int> first(box.get(), L"First");
  auto second = std::make_unique<Property<int>>(box.get(), PropertyName(L"Second"));
  auto third = std::make_unique<Property<int>>(box.get(), PropertyName(L"Third"));

  for (const auto* name : {L"First", L"Second", L"Third", L"Height"}) Listen(name);
  {
    const PropertyBatch batch(*box);
    first.Set(1);
    second->Set(1);
    box->Height.Set(5);
    third->Set(1);
    second.reset(), third.reset();
    first.Set(2);
  }

  EXPECT_EQ(log, "FH");
}

TEST_F(PropertyTest, WhatAHookThrowsArrivesAfterTheListeners) {
  const Property<int> dial(box.get(), L"Dial", 1, {.changed = [this](int before, int now) {
                             log += std::to_string(before) + ">" + std::to_string(now) + " ";
                             throw now;
                           }});
  Listen(L"Dial");

  EXPECT_THROW(SetProperty(box.get(), L"Dial", 3), int);
  EXPECT_EQ(log, "1>3 D");
  EXPECT_EQ(*dial, 3);
}

TEST_F(PropertyTest, HookMayEndItsProperty) {
  std::unique_ptr<Property<VtrString>> note;
  note = std::make_unique<Property<VtrString>>(
      box.get(), PropertyName(L"Note"), L"a",
      PropertyOptions<VtrString>{.changed = [&, later = std::string("ended")](auto&, auto&) {
        note.reset();
        log += later;
      }});
  Listen(L"Note");

  EXPECT_TRUE(note->Set(L"b").changed);
  EXPECT_EQ(log, "ended");
}

TEST_F(PropertyTest, CannotBeReadWhileItsValueOrItsFunctionEnds) {
  using Shared = std::shared_ptr<int>;
  IDataSource* const source = box.get();
  const auto askAtItsEnd = [&](auto reference) {
    return Shared(new int(0), [this, reference](const int* number) {
      log += reference().IsThere() ? '+' : '-';
      delete number;
    });
  };

  {
    Property<Shared> value(box.get(), L"Value");
    value.Set(askAtItsEnd([=] { return FindProperty<Shared>(source, L"Value"); }));
    auto captured = askAtItsEnd([=] { return FindProperty<int>(source, L"Function"); });
    const ComputedProperty<int> function(box.get(), L"Function",
                                         [held = std::move(captured)] { return *held; });
    EXPECT_EQ(*FindProperty<int>(source, L"Function").Get(), 0);
  }

  EXPECT_EQ(log, "--");
}

TEST_F(PropertyTest, AccessByNameTellsFailuresApart) {
  IDataSource* source = box.get();

  EXPECT_EQ(*GetProperty<int>(source, L"Area"), 6);
  EXPECT_EQ(*GetProperty<VtrString>(source, L"Label"), L"box");
  EXPECT_EQ(GetProperty<int>(source, L"Depth").error, PropertyError::Absent);
  EXPECT_EQ(GetProperty<double>(source, L"Width").error, PropertyError::WrongType);
  EXPECT_EQ(SetProperty(source, L"Label", L"x").error, PropertyError::ReadOnly);
  EXPECT_EQ(SetProperty(source, L"Width", 7.0).error, PropertyError::WrongType);
  EXPECT_EQ(GetProperty<int>(nullptr, L"Width").error, PropertyError::NoSource);
}

template <class Ref>
concept CanSet = requires(const Ref& reference) {
  reference.Set(7);
};

TEST_F(PropertyTest, ReferenceIntoAConstSourceReadsOnly) {
  const IDataSource* source = box.get();
  const auto width = FindProperty<const int>(source, L"Width");
  static_assert(!CanSet<decltype(width)> && CanSet<PropertyRef<int>>);
  EXPECT_EQ(*width.Get(), 2);
  EXPECT_TRUE(FindProperty<const int>(source, L"Area").IsReadOnly());
}

TEST_F(PropertyTest, MembersWithoutAnAccessorOfTheirTypeCannotBeRead) {
  class Plain : public NamedDataSource {
   public:
    Plain() : NamedDataSource(L"Plain") {
      _AddType(L"Typed", runtime_type<int>::Get());
      _AddDelegate(L"Odd", RepeatingCallback<int()>([] { return 1; }).GetMemento(),
                   runtime_type<int>::Get());
      MakeEventSource(L"Changed");
    }
  };
  const auto plain = MakeDataSource<Plain>(nullptr);

  EXPECT_EQ(GetProperty<int>(plain.get(), L"Typed").error, PropertyError::NoAccessor);
  EXPECT_EQ(GetProperty<int>(plain.get(), L"Odd").error, PropertyError::NoAccessor);
  EXPECT_EQ(GetProperty<int>(plain.get(), L"Changed").error, PropertyError::WrongType);
}

TEST_F(PropertyTest, NameOfOneThatEndedBeforeItsSourceStaysKnown) {
  std::string announced;
  auto shade = std::make_unique<ReadOnlyProperty<int>>(box.get(), PropertyName(L"Shade"));
  Listen(L"Shade");
  const auto handler = box->AddOnDestroyHandler([&, base = static_cast<IReflectable*>(box.get())] {
    for (const auto& [name, item] : *base) announced += name.ToUtf8() + ' ';
  });

  shade.reset();
  box->UpdateListeners(L"*");

  EXPECT_EQ(log, "S");
  EXPECT_FALSE(box->IsWritableProperty(L"Shade"));
  EXPECT_EQ(GetProperty<double>(box.get(), L"Shade").error, PropertyError::WrongType);
  EXPECT_EQ(GetProperty<int>(box.get(), L"Shade").error, PropertyError::Absent);

  box.reset();
  EXPECT_EQ(announced, "Area Height Label Shade Width ");
}

TEST_F(PropertyTest, MayOutliveItsSource) {
  const Property<int> late(box.get(), PropertyName(L"Late"), 7);
  const auto reference = FindProperty<const int>(box.get(), L"Late");

  box.reset();

  EXPECT_EQ(*late, 7);
  EXPECT_EQ(*reference.Get(), 7);
}

TEST_F(PropertyTest, NamesAreGivenInTheOrderOfTheirDeclaration) {
  const std::vector<VtrString> declared{L"Width", L"Height", L"Area", L"Label"};
  EXPECT_EQ(box->GetNamesInOrder(), declared);

  std::vector<std::unique_ptr<Property<int>>> more;
  for (const int i : {9, 3, 5, 1, 8, 2, 7, 6, 4, 0, 14, 11, 13, 10, 12}) {
    const VtrString name = VtrString().Format(L"N%d", i);
    more.push_back(std::make_unique<Property<int>>(box.get(), PropertyName(name), i));
  }

  const auto names = box->GetNamesInOrder();
  EXPECT_TRUE(std::equal(declared.begin(), declared.end(), names.begin()));
  EXPECT_EQ(names[4], L"N9");
  EXPECT_EQ(names.back(), L"N12");
  for (const auto& one : more) EXPECT_EQ(*GetProperty<int>(box.get(), one->Name()), **one);
}

TEST_F(PropertyTest, ManyEndInAnyOrder) {
  std::vector<std::unique_ptr<Property<int>>> more(40);
  for (int i = 0; i < 40; ++i) {
    const VtrString name = VtrString().Format(L"N%d", i);
    more[static_cast<std::size_t>(i)] =
        std::make_unique<Property<int>>(box.get(), PropertyName(name), i);
  }
  int told = 0;
  const auto heard = box->RegisterAny([&told](const VtrString&) { ++told; });

  for (std::size_t i = 0; i < 30; ++i) more[i * 7 % 40].reset();

  PropertyBatch batch(*box);
  for (const auto& left : more) EXPECT_TRUE(left == nullptr || left->Set(-1).changed);
  batch.Commit();
  EXPECT_EQ(told, 10);
  EXPECT_EQ(box->GetNamesInOrder().size(), 44U);
}

#if !defined(NDEBUG)
TEST_F(PropertyTest, SecondOneOfANameAssertsWhileTheFirstLives) {
  std::optional<Property<int>> depth;
  depth.emplace(box.get(), PropertyName(L"Depth"), 1);
  depth.emplace(box.get(), PropertyName(L"Depth"), 2);
  EXPECT_EQ(*GetProperty<int>(box.get(), L"Depth"), 2);
  EXPECT_DEATH(Property<double>(box.get(), L"Depth"), "two properties of one name");
}
#endif

template <class Text>
concept CanNameAProperty = std::is_convertible_v<Text, PropertyName>;

TEST(PropertyNames, UnfitNamesAreRefused) {
  static_assert(CanNameAProperty<const wchar_t(&)[5]>);
  static_assert(!CanNameAProperty<const wchar_t*>, "only literals are checked by the compiler");

  for (const auto* name : {L"", L"*", L"a,b", L",", L" a", L"a\t", L"\r"}) {
    EXPECT_THROW(PropertyName{VtrString(name)}, std::invalid_argument);
  }

  EXPECT_THROW(PropertyName{std::wstring_view(L"a\0b", 3)}, std::invalid_argument);

  for (const auto* name : {L"a", L"a b", L"**", L"*a", L"größe"}) {
    EXPECT_EQ(PropertyName{VtrString(name)}.Get(), name);
  }
}

TEST(PropertyNames, LiteralsAreOneStringInTheProcessAndOtherTextsAreNot) {
  const auto text = [](const VtrString& name) { return static_cast<const wchar_t*>(name); };
  const VtrString made = L"Width";
  Box first;
  Box second;
  const Property<int> third(&first, PropertyName(VtrString(L"Third")));
  const Property<int> again(&second, PropertyName(VtrString(L"Third")));

  EXPECT_EQ(text(first.Width.Name()), text(second.Width.Name()));
  EXPECT_NE(text(first.Width.Name()), text(made));
  EXPECT_NE(text(third.Name()), text(again.Name()));
  EXPECT_EQ(first.GetDataSourceName(), second.GetDataSourceName());
}

}  // namespace
}  // namespace DataBinding
