// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"
#include "DataBinding/broadcast/ListenerGuard.h"

namespace DataBinding::Testing {
namespace {

/// Notes the first category of each child that comes or goes, a child that goes with the source
/// "Doc" if it can still be found, and runs the hook with the note.
class Children : public Scopes {
 protected:
  void Observe() {
    observers.push_back(parent->ObserveChildren([this](IDataSourceProvider& scope, auto change) {
      const bool comes = change == ChildChange::Came;
      std::string note = (comes ? "+" : "-") + scope.GetCategories().front().ToUtf8();
      if (scope.GetLocalDataSourceInstance(L"Doc") != nullptr) note += ".Doc";
      log += note + " ";
      if (const auto run = std::exchange(hook, nullptr)) run(scope, comes);
    }));
  }
  std::string Visited() {
    std::string names;
    parent->VisitChildren([&](auto& scope) { names += scope.GetCategories().front().ToUtf8(); });
    return names;
  }

  ProviderPtr made;
  std::vector<Subscription> observers;
  std::function<void(IDataSourceProvider& scope, bool comes)> hook;
};

TEST_F(Children, AreToldInTheirOrderAndGoWhileTheirNamesAreFound) {
  Observe();
  std::vector<ProviderPtr> scopes;
  for (const auto* name : {L"X", L"Y", L"Z"}) scopes.push_back(MakeProvider(parent.get(), name));
  for (const auto& scope : scopes) Add(scope, L"Doc");
  EXPECT_EQ(Notes(), "+X +Y +Z");

  std::swap(scopes[0], scopes[2]);
  EXPECT_EQ(Visited(), "CXYZ");
  scopes.pop_back();
  EXPECT_EQ(Notes(), "-X.Doc ~Doc");
  scopes.push_back(MakeProvider(parent.get(), L"V"));
  scopes[1]->Shutdown();
  EXPECT_EQ(Notes(), "+V -Y.Doc ~Doc");
  EXPECT_EQ(Visited(), "CZV");

  Add(parent, L"Own");
  parent.reset();
  EXPECT_EQ(Notes(), "~Own -C -Z.Doc -V");
}

TEST_F(Children, AreNotSeenAnyMoreOnceTheyGo) {
  Observe();
  Add(child, L"Doc")->onPreDestroy = [&] { log += "(" + Visited() + ") "; };
  child.reset();
  EXPECT_EQ(Notes(), "-C.Doc () ~Doc");
}

TEST_F(Children, MayEndInACallbackWhichAllTheOthersHear) {
  Observe();
  Observe();
  hook = [](auto& scope, bool /*comes*/) { IDataSourceProvider::Destroy(&scope); };
  static_cast<void>(MakeProvider(parent.get(), L"X").release());
  EXPECT_EQ(Notes(), "+X -X -X");

  hook = [&](auto& /*scope*/, bool /*comes*/) { child.reset(); };
  child->Shutdown();
  EXPECT_EQ(Notes(), "-C -C");
  EXPECT_EQ(Visited(), "");
}

TEST_F(Children, MayEndTheirScopeInACallback) {
  Observe();
  Observe();
  hook = [&](auto& /*scope*/, bool /*comes*/) { parent.reset(); };
  made = MakeProvider(parent.get(), L"X");
  EXPECT_EQ(Notes(), "+X -C -C -X -X");
  EXPECT_EQ(made->GetParent(), nullptr);
}

TEST_F(Children, AreMadeAndEndedAlthoughACallbackThrows) {
  Observe();
  Observe();
  std::string failed;
  SetListenerFailureHandler([&](const auto& failure) { failed = failure.property.ToUtf8(); });
  hook = [](auto& /*scope*/, bool /*comes*/) { throw std::runtime_error("no"); };
  made = MakeProvider(parent.get(), L"X");
  SetListenerFailureHandler(nullptr);

  EXPECT_EQ(failed, "child scopes");
  EXPECT_EQ(Notes(), "+X +X");
  observers.clear();
  made.reset();
  EXPECT_EQ(Notes(), "");
}

}  // namespace
}  // namespace DataBinding::Testing
