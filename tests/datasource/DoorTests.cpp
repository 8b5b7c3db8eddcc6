// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"
#include "DataBinding/property/Property.h"

namespace DataBinding::Testing {
namespace {

class SourceDoors : public Scopes {
 protected:
  SourceDoors() {
    child->AddDataListener(&listener, {L"Doc"}, true);
    child->AddDataListener(&next, {L"Doc"}, true);
  }
  void ThrowAt(const std::string& note) {
    listener.hook = [note](const std::string& heard) {
      if (heard == note) throw note;
    };
  }
  LoggedSource& Emplaced() { return Emplace<LoggedSource>(*child, L"Doc", log); }

  LoggedListener listener{log};
  LoggedListener next{log};
};

TEST_F(SourceDoors, SourceKnowsTheScopeThatItIsGivenTo) {
  LoggedSource* doc = &Emplace<LoggedSource>(*parent, L"Doc", log);
  DataSourcePtr<IDataSource> taken = TakeDataSource(*parent, static_cast<IDataSource*>(doc));

  EXPECT_EQ(taken.get(), doc);
  EXPECT_EQ(doc->GetDataSourceProvider(), nullptr);
  EXPECT_EQ(GiveDataSource(*child, std::move(taken)), doc);
  EXPECT_EQ(doc->GetDataSourceProvider(), child.get());

  const WeakPtr<IDataSource> handle(doc->GetLiveness(), doc);
  EXPECT_EQ(handle.Get(), doc);

  child->DeleteLocalDataSourceInstance(L"Doc");
  EXPECT_EQ(handle.Get(), nullptr);
  EXPECT_EQ(GiveDataSource(*child, DataSourcePtr<LoggedSource>()), nullptr);
}

TEST_F(SourceDoors, TakeGivesNothingThatTheScopeDoesNotFindUnderItsName) {
  LoggedSource& doc = Emplaced();
  LoggedSource& twin = Emplaced();
  LoggedSource& outer = Emplace<LoggedSource>(*parent, L"Doc", log);

  EXPECT_EQ(TakeDataSource(*child, &twin), nullptr);
  EXPECT_EQ(TakeDataSource(*child, &outer), nullptr);
  EXPECT_EQ(TakeDataSource<IDataSource>(*child, nullptr), nullptr);
  EXPECT_EQ(child->GetLocalDataSourceInstance(L"Doc"), &doc);
  EXPECT_EQ(TakeDataSource(*child, &doc).get(), &doc);
  EXPECT_EQ(TakeDataSource(*child, &twin), nullptr);  // the scope has it still, and ends it
  EXPECT_EQ(Notes(), "+Doc +Doc +Doc +Doc -Doc -Doc ~Doc");
}

TEST_F(SourceDoors, ScopeOwnsASourceWhoseListenerThrowsWhenItIsGiven) {
  static_cast<void>(Emplaced());
  ThrowAt("+Doc");
  Notes();

  EXPECT_THROW(Emplaced(), std::string);  // not found by its name, but owned
  EXPECT_EQ(Notes(), "+Doc +Doc");

  child.reset();
  EXPECT_EQ(Notes(), "-Doc -Doc ~Doc -Doc -Doc ~Doc gone gone");
}

TEST_F(SourceDoors, SourceEndsWhoseListenerThrowsWhenItIsTaken) {
  LoggedSource& doc = Emplaced();
  ThrowAt("-Doc");
  EXPECT_THROW(static_cast<void>(TakeDataSource(*child, &doc)), std::string);
  EXPECT_EQ(Notes(), "+Doc +Doc -Doc -Doc ~Doc");
}

/// Sets a property while it is made, with somebody registered for it.
class Dial : public NamedDataSource {
 public:
  Dial() : NamedDataSource(L"Dial") { level.Set(1); }
  void PostConstruct() override { level.Set(2); }
  Subscription heard = Register([] {}, L"Level");
  Property<int> level{this, L"Level"};
};

template <class Act>
std::string SaidDuring(Act act) {
  testing::internal::CaptureStderr();
  act();
  return testing::internal::GetCapturedStderr();
}

TEST_F(SourceDoors, DebugBuildsSayOnceThatASourceIsSilentForGood) {
  EXPECT_EQ(SaidDuring([&] { Emplace<Dial>(*child).level.Set(3); }), "");
  const std::string said = SaidDuring([] {
    const DataSourcePtr<Dial> silent(new Dial);
    silent->level.Set(3);
  });
#if defined(NDEBUG)
  EXPECT_EQ(said, "");
#else
  EXPECT_NE(said.find("Dial"), std::string::npos);
  EXPECT_NE(said.find("make it with MakeDataSource or Emplace."), std::string::npos);
  EXPECT_EQ(said.find('\n'), said.size() - 1);
#endif
}

}  // namespace
}  // namespace DataBinding::Testing
