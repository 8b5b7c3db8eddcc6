// SPDX-License-Identifier: Apache-2.0
#include <initializer_list>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/reflection/IReflectable.h"

namespace DataBinding {
namespace {

constexpr auto notFound = std::numeric_limits<std::size_t>::max();
const runtime_type_base& none = runtime_type<void>::Get();
const runtime_type_base& event = runtime_type<void()>::Get();
const runtime_type_base& number = runtime_type<int>::Get();
const runtime_type_base& fixed = runtime_type<const int>::Get();

/// Answers "Late" and "LateFixed" without having registered them.
class Members : public IReflectable {
 public:
  ~Members() override = default;
  using IReflectable::_AddDelegate;
  using IReflectable::_AddType;
  using IReflectable::_GetDelegate;
  using IReflectable::_GetType;
  using IReflectable::AddDelegate;

  RepeatingCallbackMemento GetDynamicDelegate(const VtrString& name,
                                              const runtime_type_base& type) override {
    const bool isLate = name == L"Late" && type.IsSameType(&event);
    return isLate ? late.GetMemento() : RepeatingCallbackMemento();
  }
  const runtime_type_base& GetDynamicType(const VtrString& name) override {
    return name == L"Late" ? event : name == L"LateFixed" ? fixed : none;
  }
  /// Runs the delegate of that name and says whether there was one.
  bool Call(const VtrString& name) {
    RepeatingCallback<void()> callback;
    callback.SetMemento(GetDelegateMemento(name, event));
    callback();
    return static_cast<bool>(callback);
  }

  std::string log;

 private:
  RepeatingCallback<void()> late = [this] { log += "late;"; };
};

TEST(Reflection, TellsWhatEachMemberIs) {
  Members members;
  members.MakeEventSource(L"Changed");
  members._AddType(L"Fixed", fixed);
  members._AddType(L"Size", number);
  const std::tuple<const wchar_t*, bool, bool, const runtime_type_base*> cases[] = {
      {L"Changed", false, false, &event}, {L"Fixed", true, false, &fixed},
      {L"Size", true, true, &number},     {L"Unknown", true, true, &none},
      {L"size", true, true, &none},       {L"Late", false, false, &event},
      {nullptr, true, true, &none},       {L"LateFixed", true, false, &fixed},
  };

  for (const auto& [name, isProperty, isWritable, type] : cases) {
    EXPECT_EQ(members.IsProperty(name), isProperty) << VtrString(name).ToUtf8();
    EXPECT_EQ(members.IsWritableProperty(name), isWritable) << VtrString(name).ToUtf8();
    EXPECT_TRUE(members.GetDelegateType(name).IsSameType(type)) << VtrString(name).ToUtf8();
  }

  EXPECT_FALSE(number.IsSameType(nullptr) || number.IsSameType(&none) || number.IsSameType(&fixed));
}

TEST(Reflection, DelegateLookUpEndsAtTheFirstKnownName) {
  Members members;
  const RepeatingCallback<void()> ring = [&] { members.log += "ring;"; };
  members._AddDelegate(L"Ring", ring.GetMemento(), event);
  members._AddDelegate(L"Count", ring.GetMemento(), number);
  const auto find = [&](std::initializer_list<IReflectable::DelegateTag> tags) {
    const auto [index, memento] = members._GetDelegate(tags);
    return std::pair(index, !memento.IsEmpty());
  };
  const VtrString absent = L"Absent", count = L"Count", late = L"Late", ringName = L"Ring";

  EXPECT_EQ(find({{absent, event}, {ringName, event}}), std::pair(std::size_t{1}, true));
  EXPECT_EQ(find({{count, event}, {ringName, event}}), std::pair(std::size_t{0}, false));
  EXPECT_EQ(find({{late, number}, {late, event}}), std::pair(std::size_t{1}, true));
  EXPECT_EQ(find({{absent, event}}), std::pair(notFound, false));
  EXPECT_EQ(find({}), std::pair(notFound, false));
  EXPECT_TRUE(members.Call(L"Ring") && members.Call(L"Late") && !members.Call(L"Count"));
  EXPECT_EQ(members.log, "ring;late;");
}

TEST(Reflection, TypeLookUpEndsAtTheFirstKnownName) {
  Members members;

  members._AddType(L"Size", number);

  EXPECT_EQ(members._GetType({L"Absent", L"Late", L"Size"}).first, 1U);
  EXPECT_EQ(members._GetType({}).first, notFound);
  EXPECT_TRUE(members.GetDelegatesType({L"Absent", L"Size"}).IsSameType(&number));
  EXPECT_TRUE(members.GetDelegatesType({L"Absent"}).IsSameType(&none));
}

TEST(Reflection, LastRegistrationOfANameReleasesTheFormer) {
  Members members;
  const auto witness = std::make_shared<int>();

  for (const wchar_t* name : {L"b", L"a", L"B", L"a"})
    members.AddDelegate<void()>(name, [witness] {});

  EXPECT_EQ(witness.use_count(), 4);

  members._AddType(L"a", number);
  members.MakeEventSource(L"B");
  EXPECT_EQ(witness.use_count(), 2);
  EXPECT_TRUE(members.IsProperty(L"a") && !members.Call(L"a") && !members.Call(L"B"));

  std::string order;
  for (const auto& [name, item] : std::as_const(members)) order += name.ToUtf8();
  EXPECT_EQ(order, "Bab");
}

/// Reads and changes the table, by which it is held, when it is released.
struct Reentrant {
  explicit Reentrant(Members& held) : members(held) {}
  ~Reentrant() {
    members.log = members.IsProperty(L"Ring") ? "new" : "former";
    members._AddType(L"Ring", fixed);
  }
  Members& members;
};

TEST(Reflection, CapturesOfAReplacedDelegateEndWhenTheNewMemberIsInTheTable) {
  Members members;
  auto captured = std::make_shared<Reentrant>(members);

  members.AddDelegate<void()>(L"Ring", [captured] {});
  captured.reset();
  members._AddType(L"Ring", number);

  EXPECT_EQ(members.log, "new");
  EXPECT_TRUE(members.GetDelegateType(L"Ring").IsSameType(&fixed));
}

TEST(Reflection, EndIsToldToAllHandlersInOrderWhileTheTableStands) {
  std::string log;
  std::vector<Subscription> handlers;
  auto members = std::make_unique<Members>();
  IReflectable* const base = members.get();
  members->_AddType(L"Size", number);
  const auto alive = members->GetLiveness();

  handlers.push_back(members->AddOnDestroyedHandler([&] { log += "destroyed;"; }));
  handlers.push_back(members->AddOnDestroyHandler([&] {
    log += base->begin()->first.ToUtf8() + ";";
    log += alive.IsValid() || base->GetLiveness().IsValid() ? "alive;" : "";
    handlers[2].Cancel();
    throw std::runtime_error("handler");
  }));
  handlers.push_back(members->AddOnDestroyHandler([&] { log += "cancelled;"; }));
  handlers.push_back(members->AddOnDestroyHandler([&] { log += "second;"; }));

  EXPECT_TRUE(alive.IsValid());

  members.reset();
  EXPECT_EQ(log, "Size;second;destroyed;");
}

/// Ends a source and says what that has thrown.
std::string EndOf(IDataSource* source) {
  try {
    IDataSource::Destroy(source);
    return "nothing";
  } catch (const char* thrown) {
    return thrown;
  }
}

TEST(Reflection, OfSourcesThatEndOneWithinTheOtherEachThrowsWhatItsOwnHandlersThrew) {
  IDataSource* const inner = MakeDataSource<NamedDataSource>(nullptr, L"Inner").release();
  IDataSource* const outer = MakeDataSource<NamedDataSource>(nullptr, L"Outer").release();
  std::string fromInner;
  const auto first = inner->AddOnDestroyHandler([] { throw "inner"; });
  const auto second = outer->AddOnDestroyHandler([&] { fromInner = EndOf(inner); });
  const auto third = outer->AddOnDestroyedHandler([] { throw "outer"; });

  EXPECT_EQ(EndOf(outer), "outer");
  EXPECT_EQ(fromInner, "inner");
}

}  // namespace
}  // namespace DataBinding
