#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <DataBinding/MakeDataSource.h>
#include <DataBinding/NamedDataSource.h>
#include <DataBinding/Property.h>
#include <DataBinding/PropertyAccess.h>
#include <DataBinding/PropertyBatch.h>
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
  void Listen(
      const wchar_t* name, std::function<void()> then = [] {}) {
    subscriptions.push_back(box->Register(
        [this, letter = static_cast<char>(*name), then] {
          log += letter;
          then();
        },
        name));
  }
  void ListenToAll() {
    for (const auto* name : {L"Width", L"Height", L"Area", L"Label"}) Listen(name);
  }

  DataSourcePtr<Box> box = MakeDataSource<Box>(nullptr);
  std::vector<Subscription> subscriptions;
  std::string log;
};

TEST_F(PropertyTest, SetTellsWhetherTheValueChangedAndNotifiesOnce) {
  ListenToAll();
  EXPECT_TRUE(box->Height.Set(4).changed);
  EXPECT_EQ(log, "HA");
  EXPECT_FALSE(box->Height.Set(4).changed);
  EXPECT_EQ(log, "HA");
  EXPECT_EQ(box->Area.Get(), 8);
}

TEST_F(PropertyTest, RefusedValueChangesNothingAndGivesTheReason) {
  ListenToAll();
  const SetResult refused = box->Width.Set(-1);
  EXPECT_FALSE(refused.changed);
  EXPECT_EQ(refused.error, PropertyError::Refused);
  EXPECT_EQ(refused.text,
            L"Property \"Width\" of data source \"Box\" refuses the value: must not be negative");
  EXPECT_EQ(refused.reason, L"must not be negative");
  EXPECT_EQ(*box->Width, 2);
  EXPECT_EQ(log, "");
}

TEST_F(PropertyTest, ValidatorWhoseObjectIsGoneRefusesEverything) {
  struct Rules : SupportsWeakPtr<Rules> {
    VtrString Check(const int& /*value*/) { return {}; }
  };
  auto rules = std::make_unique<Rules>();
  Property<int> depth(box.get(), L"Depth", 1,
                      {.validate = BindWeak(rules->AsWeakPtr(), &Rules::Check)});
  EXPECT_TRUE(depth.Set(2).changed);
  rules.reset();
  EXPECT_EQ(depth.Set(3).reason, L"its validator is gone");
  EXPECT_EQ(*depth, 2);
}

TEST_F(PropertyTest, ReadOnlyPropertyIsSetByItsOwnSourceOnly) {
  const auto other = MakeDataSource<Box>(nullptr);
  EXPECT_TRUE(box->Rename(L"crate").changed);
  EXPECT_EQ(other->Rename(*box).error, PropertyError::ReadOnly);
  EXPECT_EQ(*box->Label, L"crate");
  EXPECT_FALSE(box->IsWritableProperty(L"Label"));
  EXPECT_TRUE(box->IsWritableProperty(L"Width"));
}

TEST_F(PropertyTest, BatchNotifiesEachChangedNameOnceAtItsEnd) {
  ListenToAll();
  {
    const PropertyBatch outer(*box);
    box->Height.Set(5);
    {
      const PropertyBatch inner(*box);
      box->Width.Set(6);
      box->Height.Set(7);
    }
    EXPECT_EQ(log, "");
  }
  EXPECT_EQ(log, "HWA");
  EXPECT_EQ(*box->Area, 42);
}

TEST_F(PropertyTest, ListenerOfABatchMaySetAndOpenAnother) {
  Listen(L"Height", [this] {
    const PropertyBatch inner(*box);
    box->Width.Set(10);
  });
  Listen(L"Width");
  {
    const PropertyBatch batch(*box);
    box->Height.Set(5);
    box->Rename(L"x");
  }
  EXPECT_EQ(log, "HW");
}

TEST_F(PropertyTest, SourceMayEndWithinABatchOrBeEndedByItsFirstNotification) {
  ListenToAll();
  {
    const PropertyBatch batch(*box);
    box->Height.Set(5);
    box.reset();
  }
  EXPECT_EQ(log, "");
  box = MakeDataSource<Box>(nullptr);
  Listen(L"Height", [this] { box.reset(); });
  Listen(L"Width");
  {
    const PropertyBatch batch(*box);
    box->Height.Set(5);
    box->Width.Set(5);
  }
  EXPECT_EQ(log, "H");
}

TEST_F(PropertyTest, ComputedPropertyFollowsThoseOfOtherSources) {
  class Lid : public NamedDataSource {
   public:
    explicit Lid(Box& box)
        : NamedDataSource(L"Lid"),
          Size(
              this, L"Size", [&box] { return *box.Area; }, box.Area) {}
    ComputedProperty<int> Size;
  };
  auto lid = MakeDataSource<Lid>(nullptr, *box);
  int runs = 0;
  const auto subscription = lid->Register([&] { ++runs; }, L"Size");
  box->Width.Set(8);
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(*GetProperty<int>(lid.get(), L"Size"), 24);
  lid.reset();
  box->Width.Set(9);
  lid = MakeDataSource<Lid>(nullptr, *box);
  box.reset();
}

TEST_F(PropertyTest, DependentThatEndsAnotherLeavesTheRestToBeNotified) {
  class Copy : public NamedDataSource {
   public:
    explicit Copy(Box& box)
        : NamedDataSource(L"Copy"),
          Value(
              this, L"Value", [&box] { return *box.Height; }, box.Height) {}
    ComputedProperty<int> Value;
  };
  std::vector<DataSourcePtr<Copy>> copies;
  for (int i = 0; i < 4; ++i) {
    copies.push_back(MakeDataSource<Copy>(nullptr, *box));
    subscriptions.push_back(copies.back()->Register(
        [&, i] {
          log += static_cast<char>('0' + i);
          if (i == 1) copies[0].reset(), copies[1].reset();
        },
        L"Value"));
  }
  box->Height.Set(4);
  EXPECT_EQ(log, "0123");
}

TEST_F(PropertyTest, HookHearsOldAndNewValueAndItsExceptionArrivesAfterTheListeners) {
  std::string heard;
  class Dial : public NamedDataSource {
   public:
    explicit Dial(std::string& heard) : NamedDataSource(L"Dial"), log(heard) {}
    Property<int> At{this, L"At", 1, {.changed = [this](int before, int now) {
                       log += std::to_string(before) + ">" + std::to_string(now) + " ";
                       if (now == 3) throw now;
                     }}};
    std::string& log;
  };
  const auto dial = MakeDataSource<Dial>(nullptr, heard);
  const auto subscription = dial->Register([&] { heard += "told "; }, L"At");
  dial->At.Set(2);
  EXPECT_THROW(dial->At.Set(3), int);
  EXPECT_EQ(heard, "1>2 told 2>3 told ");
  EXPECT_EQ(*dial->At, 3);
}

TEST_F(PropertyTest, ReadingByNameTellsFailuresApart) {
  IDataSource* source = box.get();
  EXPECT_EQ(*GetProperty<int>(source, L"Area"), 6);
  EXPECT_EQ(*GetProperty<VtrString>(source, L"Label"), L"box");
  const auto absent = GetProperty<int>(source, L"Depth");
  EXPECT_EQ(absent.error, PropertyError::Absent);
  EXPECT_EQ(absent.text,
            L"Data source \"Box\" has no property \"Depth\" (wanted type int, actual none).");
  const auto wrong = GetProperty<double>(source, L"Width");
  EXPECT_EQ(wrong.error, PropertyError::WrongType);
  EXPECT_EQ(wrong.text, L"Property \"Width\" of data source \"Box\" has type int, not double.");
  EXPECT_EQ(GetProperty<int>(nullptr, L"Width").error, PropertyError::NoSource);
}

TEST_F(PropertyTest, SettingByNameTellsFailuresApart) {
  IDataSource* source = box.get();
  ListenToAll();
  EXPECT_TRUE(SetProperty(source, L"Width", 7).changed);
  EXPECT_EQ(log, "WA");
  const auto readOnly = SetProperty(source, L"Area", 7);
  EXPECT_EQ(readOnly.error, PropertyError::ReadOnly);
  EXPECT_EQ(
      readOnly.text,
      L"Property \"Area\" of data source \"Box\" can be read, but only its data source sets it.");
  EXPECT_EQ(SetProperty(source, L"Width", -7).error, PropertyError::Refused);
  EXPECT_EQ(SetProperty(source, L"Width", 7.0).error, PropertyError::WrongType);
  EXPECT_EQ(SetProperty(source, L"Depth", 7).error, PropertyError::Absent);
  EXPECT_EQ(*box->Width, 7);
}

TEST_F(PropertyTest, DeclarationsWithoutAnAccessorAndFunctionsCannotBeRead) {
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

TEST_F(PropertyTest, ReferenceAnswersAbsentOnceItsPropertyIsGone) {
  const auto width = FindProperty<int>(box.get(), L"Width");
  std::optional<PropertyError> whileEnding;
  const auto handler = box->AddOnDestroyHandler([&] { whileEnding = width.Get().error; });
  EXPECT_EQ(*width.Get(), 2);
  box.reset();
  EXPECT_EQ(whileEnding, PropertyError::Absent);
  EXPECT_EQ(width.Set(3).error, PropertyError::Absent);
}

template <class Text>
concept CanNameAProperty = std::is_convertible_v<Text, PropertyName>;

TEST(PropertyNames, UnfitNamesAreRefused) {
  static_assert(CanNameAProperty<const wchar_t(&)[5]>);
  static_assert(!CanNameAProperty<const wchar_t*>, "only literals are checked by the compiler");
  for (const auto* name : {L"", L"*", L"a,b", L",", L" a", L"a\t", L"\r"}) {
    EXPECT_THROW(PropertyName{VtrString(name)}, std::invalid_argument);
  }
  for (const auto* name : {L"a", L"a b", L"**", L"*a", L"größe"}) {
    EXPECT_EQ(PropertyName{VtrString(name)}.Get(), name);
  }
}

}  // namespace
}  // namespace DataBinding
