// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"

namespace DataBinding::Testing {
namespace {

class Wiring : public Scopes {
 protected:
  ~Wiring() override { child.reset(); }

  std::optional<LoggedListener> listener{log};
};

TEST_F(Wiring, SourceIsTakenOverAlthoughAListenerThrows) {
  listener->hook = [](const std::string& note) { throw note; };
  child->AddDataListener(&*listener, {L"Doc"}, true);
  const auto source = MakeDataSource<LoggedSource>(nullptr, L"Doc", log);

  EXPECT_THROW(child->AddDataSource(source.get()), std::string);
  EXPECT_EQ(child->GetDataSource(L"Doc"), source.get());
  EXPECT_THROW(child->RemoveDataSource(source.get()), std::string);
  EXPECT_EQ(child->GetDataSource(L"Doc"), nullptr);
  EXPECT_EQ(Notes(), "+Doc -Doc");
}

/// Its name is good until it is asked for again, and then overwritten.
class Renewing final : public LoggedSource {
 public:
  using LoggedSource::LoggedSource;
  const wchar_t* GetDataSourceName() override {
    shown[at].assign(shown[at].size(), L'?');
    at = 1 - at;
    shown[at] = LoggedSource::GetDataSourceName();
    return shown[at].c_str();
  }

 private:
  std::wstring shown[2];
  int at = 0;
};

TEST_F(Wiring, NameThatIsMadeAnewAtEachAskingServesAllListeners) {
  LoggedListener other(log);

  child->AddDataListener(&*listener, {L"Doc"}, true);
  child->AddDataListener(&other, {L"Doc"}, true);
  child->AddDataSource(MakeDataSource<Renewing>(child.get(), L"Doc", log).release());
  child->DeleteLocalDataSourceInstance(L"Doc");

  EXPECT_EQ(Notes(), "+Doc +Doc -Doc -Doc ~Doc");
}

TEST_F(Wiring, ProviderTellsWhenItMayBeChanged) {
  const auto addArt = [&] { Add(child, L"Art"); };
  listener->hook = [&](const std::string& note) {
    log += child->IsConnecting() ? "connecting " : "";
    if (note == "+Doc") child->WhenConnected(addArt);
  };
  child->AddDataListener(&*listener, {L"Art", L"Doc"}, true);
  Add(child, L"Doc");

  EXPECT_EQ(Notes(), "+Doc connecting +Art connecting");

  child->WhenConnected([&] { log += child->IsConnecting() ? "late " : "at once "; });
  EXPECT_EQ(Notes(), "at once");

  listener->hook = nullptr;
}

TEST_F(Wiring, BuiltSourceMayEndAsSoonAsItsScopeMayBeChanged) {
  LoggedConstructor doc(log, "doc", L"Doc", L"C");
  registrar.RegisterDataSource(&doc);
  child->AddDataListener(&*listener, {L"Doc"}, true);
  bool throws = false;
  listener->hook = [&](const std::string& note) {
    if (note != "+Doc") return;
    child->WhenConnected([&] { child->DeleteLocalDataSourceInstance(L"Doc"); });
    if (throws) throw note;
  };
  Notes();

  EXPECT_EQ(child->GetDataSource(L"Doc"), nullptr);
  EXPECT_EQ(Notes(), "+Doc -Doc ~Doc");

  throws = true;
  EXPECT_THROW(child->GetDataSource(L"Doc"), std::string);
  EXPECT_EQ(Notes(), "+Doc -Doc ~Doc");
}

TEST_F(Wiring, ScopeThatEndsBeforeItsChangeIsOverRunsWhatAwaitsIt) {
  child->AddDataListener(&*listener, {L"Doc"}, true);
  listener->hook = [&](const std::string& note) {
    if (note != "+Doc") return;
    child->WhenConnected([&] { child.reset(); });
    child->WhenConnected([&] { log += "late "; });
  };
  Add(child, L"Doc");

  EXPECT_EQ(Notes(), "+Doc -Doc ~Doc gone late");

  listener->hook = nullptr;
  child = MakeProvider(parent.get());
  Add(child, L"Doc")->onPreDestroy = [&] { child.reset(); };
  child->AddDataListener(&*listener, {L"Doc"}, true);
  listener->hook = [&](const std::string& note) {
    if (note == "-Doc") child->WhenConnected([&] { log += "late "; });
  };
  Notes();
  child->DeleteLocalDataSourceInstance(L"Doc");

  EXPECT_EQ(Notes(), "-Doc gone late ~Doc");
}

TEST_F(Wiring, ScopeMayEndWhileItsParentConnectsAListenerOrDisconnectsIt) {
  Add(parent, L"Doc");
  listener->hook = [&](const std::string&) { child.reset(); };
  child->AddDataListener(&*listener, {L"Doc"}, true);
  EXPECT_EQ(Notes(), "+Doc");

  listener->hook = nullptr;
  child = MakeProvider(parent.get());
  child->AddDataListener(&*listener, {L"Doc"}, true);
  listener->hook = [&](const std::string& note) {
    if (note == "-Doc") child.reset();
  };
  child->RemoveDataListener(&*listener);
  EXPECT_EQ(Notes(), "+Doc -Doc gone");
}

#if !defined(NDEBUG)
TEST_F(Wiring, ChangingTheProviderWhileItNotifiesAsserts) {
  LoggedListener other(log);
  child->AddDataListener(&*listener, {L"Doc"}, true);
  listener->hook = [&](const std::string&) { child->AddDataListener(&other, {L"Map"}, true); };

  EXPECT_DEATH(Add(child, L"Doc"), "a listener is added");

  listener->hook = [&](const std::string&) { Add(child, L"Map"); };
  EXPECT_DEATH(Add(child, L"Doc"), "a listener adds a source");

  listener->hook = nullptr;
  IDataSource* source = Add(child, L"Doc");
  listener->hook = [&](const std::string&) { child->RemoveDataSource(source); };
  EXPECT_DEATH(child->RemoveDataListener(&*listener), "a listener removes a source");

  listener->hook = nullptr;
}
#endif

}  // namespace
}  // namespace DataBinding::Testing
