// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/property/DelegateAccess.h"
#include "DataBinding/property/Property.h"

namespace DataBinding {
namespace {

class Door : public NamedDataSource {
 public:
  Door() : NamedDataSource(L"Door") {
    AddDelegate<int(int)>(L"Open", [this](int by) { return *width += by; });
    AddDelegate<void(std::string&)>(L"Name", [](std::string& name) { name = "door"; });
    AddDelegate<void()>(L"Knock", BindWeak(knocker.AsWeakPtr(), &Knocker::Knock));
    MakeEventSource(L"Opened");
  }
  RepeatingCallbackMemento GetDynamicDelegate(const VtrString& name,
                                              const runtime_type_base& type) override {
    const RepeatingCallback<int()> late = [] { return 7; };
    const bool isLate = name == L"Late" && type.IsSameType(&runtime_type<int()>::Get());
    return isLate ? late.GetMemento() : RepeatingCallbackMemento();
  }

  struct Knocker : SupportsWeakPtr<Knocker> {
    using SupportsWeakPtr::InvalidateWeakPtrs;
    void Knock() { ++knocks; }
    int knocks = 0;
  };
  std::unique_ptr<int> width = std::make_unique<int>(1);
  Knocker knocker;
  Property<int> height{this, L"Height"};
};

class Delegates : public ::testing::Test {
 protected:
  DataSourcePtr<Door> door = MakeDataSource<Door>(nullptr);
};

TEST_F(Delegates, AreCalledByNameWithTheirSignature) {
  std::string name;
  const auto open = FindDelegate<int(int)>(door.get(), L"Open");

  EXPECT_TRUE(open && open.IsThere());
  EXPECT_EQ(open(2).value, 3);
  EXPECT_EQ(*open(2), 5);
  EXPECT_TRUE(FindDelegate<void(std::string&)>(door.get(), L"Name")(name));
  EXPECT_EQ(name, "door");
  EXPECT_EQ(*FindDelegate<int()>(door.get(), L"Late")(), 7);
}

TEST_F(Delegates, TellAbsentFromWrongType) {
  constexpr auto wrong = PropertyError::WrongType;
  const std::tuple<const wchar_t*, PropertyError, const char*> cases[] = {
      {L"Opne", PropertyError::Absent,
       "Data source \"Door\" has no delegate \"Opne\" (wanted type void ())."},
      {L"Open", wrong, "\"Open\" of data source \"Door\" has type int (int), not void ()."},
      {L"Height", wrong, "\"Height\" of data source \"Door\" has type int, not void ()."},
      {L"Opened", PropertyError::NoAccessor,
       "\"Opened\" of data source \"Door\" has type void () but nothing to call."},
  };

  for (const auto& [name, error, text] : cases) {
    const auto found = FindDelegate<void()>(door.get(), name);
    EXPECT_EQ(found.Error(), error) << text;
    EXPECT_EQ(found.Text().ToUtf8(), text);
    const PropertyValue<void> called = found();
    EXPECT_FALSE(found || found.IsThere() || called);
    EXPECT_EQ(called.text, found.Text());
  }

  EXPECT_EQ(FindDelegate<int(int)>(nullptr, L"Open")(1).error, PropertyError::NoSource);
}

TEST_F(Delegates, AreAbsentOnceTheirSourceIsGone) {
  IDataSource* const ending = door.get();
  const auto open = FindDelegate<int(int)>(ending, L"Open");
  const auto isGone = [&] {
    EXPECT_TRUE(open);
    EXPECT_FALSE(open.IsThere());
    EXPECT_EQ(open(1).error, PropertyError::Absent);
    EXPECT_FALSE(open(1).text.IsEmpty());
  };
  const auto handler = door->AddOnDestroyHandler([&] {
    isGone();
    EXPECT_EQ(FindDelegate<int(int)>(ending, L"Open").Error(), PropertyError::Absent);
  });

  door.reset();
  isGone();
}

TEST_F(Delegates, AreAbsentOnceWhatTheyAreWeaklyBoundToIsGone) {
  const auto knock = FindDelegate<void()>(door.get(), L"Knock");

  EXPECT_TRUE(knock());

  door->knocker.InvalidateWeakPtrs();
  EXPECT_EQ(knock().error, PropertyError::Absent);
  EXPECT_EQ(FindDelegate<void()>(door.get(), L"Knock").Error(), PropertyError::Absent);
  EXPECT_EQ(door->knocker.knocks, 1);
}

}  // namespace
}  // namespace DataBinding
