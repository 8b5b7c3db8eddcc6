// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::Testing {
namespace {

class Sources : public ::testing::Test {
 protected:
  void Make() {
    source = MakeDataSource<LoggedSource>(nullptr, L"Doc", log);
    for (const auto* name : {L"Size", L"Alpha"}) source->_AddType(name, runtime_type<int>::Get());
  }
  void Listen(const VtrString& property, const RepeatingCallback<void()>& act = {}) {
    subscriptions.push_back(source->Register(
        [this, property, act] {
          log += property.ToUtf8() + " ";
          act();
        },
        property));
  }

  std::string log;
  DataSourcePtr<LoggedSource> source;
  std::vector<Subscription> subscriptions;
};

TEST_F(Sources, MayBeEndedByAListenerWhichDropsTheRestOfTheList) {
  for (const auto* names : {L"Alpha", L"Alpha,Size", L"*", L","}) {
    Make();
    Listen(L"Alpha", [this] {
      source.reset();
      throw std::runtime_error("listener");
    });
    Listen(L"Alpha");
    Listen(L"Size");
    SetListenerFailureHandler([this](const ListenerFailure& failure) {
      log.append("!").append(failure.property.ToUtf8()).append(" ");
    });
    source->UpdateListeners(names);
    SetListenerFailureHandler(nullptr);
    EXPECT_EQ(std::exchange(log, {}), "Alpha ~Doc !Alpha Alpha ") << VtrString(names).ToUtf8();
  }
}

TEST_F(Sources, TellAListenerToAnyPropertyEachNameOfAList) {
  Make();
  const auto any =
      source->RegisterAny([this](const VtrString& name) { log += "any " + name.ToUtf8() + " "; });
  Listen(L"Size");

  source->UpdateListeners(L"Size, Other,Size");
  EXPECT_EQ(std::exchange(log, {}), "Size any Size any Other Size any Size ");
  source->UpdateListeners(L"*");
  EXPECT_EQ(std::exchange(log, {}), "any Alpha Size any Size ");
}

/// Announces while it is built; its PostConstruct does not call the base.
class Hasty : public NamedDataSource {
 public:
  explicit Hasty(int& calls) : NamedDataSource(L"Hasty") {
    registered = Register([&calls] { ++calls; }, L"Size");
    UpdateListeners(L"Size");
  }
  void PostConstruct() override { UpdateListeners(L"*"); }
  IDataSourceBase* GetDataSourceBaseImpl() override { return nullptr; }

 private:
  Property<int> size{this, L"Size"};
  Subscription registered;
};

TEST(DataSource, IsSilentUntilItIsPostConstructed) {
  int calls = 0;
  const auto source = MakeDataSource<Hasty>(nullptr, calls);
  EXPECT_EQ(calls, 0);

  source->UpdateListeners(L"Size");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(source->GetDataSourceBase(), nullptr);
  EXPECT_EQ(source->GetDataContext(), nullptr);
}

TEST(DataSource, IsAbsentInItsDestructionHandlers) {
  int calls = 0;
  auto source = MakeDataSource<Hasty>(nullptr, calls);
  IDataSource* const ending = source.get();
  const auto size = FindProperty<int>(ending, L"Size");
  const auto handler = source->AddOnDestroyHandler([&, ending] {
    ++calls;
    EXPECT_EQ(size.Get().error, PropertyError::Absent);
    EXPECT_EQ(GetProperty<int>(ending, L"Size").error, PropertyError::Absent);
    EXPECT_EQ(GetProperty<int>(ending, L"Never").error, PropertyError::Absent);
  });

  source.reset();
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(size.IsThere());
  EXPECT_EQ(size.Set(3).error, PropertyError::Absent);
}

TEST_F(Sources, AnswerNothingOfAScopeThatHasEnded) {
  int context = 0;
  std::optional<DataSourceProvider> scope(std::in_place, nullptr, nullptr,
                                          reinterpret_cast<IDataContext*>(&context));

  source = MakeDataSource<LoggedSource>(&*scope, L"Doc", log);

  EXPECT_EQ(source->GetDataSourceProvider(), &*scope);
  EXPECT_EQ(source->GetDataContext(), scope->GetDataContext());

  scope.reset();
  EXPECT_EQ(source->GetDataSourceProvider(), nullptr);
  EXPECT_EQ(source->GetDataContext(), nullptr);
}

TEST_F(Sources, AreFoundByTheirOwnIdentifierOnly) {
  Make();
  IVantorGeneric& generic = *source;

  void* found = &log;

  EXPECT_FALSE(generic.FindInterfaceByIID(InterfaceId<IDataSource>::value, nullptr));
  EXPECT_FALSE(generic.FindInterfaceByIID(GUID{}, &found));
  EXPECT_EQ(found, &log);
  EXPECT_EQ(IVantorGenericDetail::FindInterfaceProxy(&generic).As<IDataSource>(), source.get());
  EXPECT_EQ(IVantorGenericDetail::FindInterfaceProxy(&generic).Find(GUID{}), nullptr);
}

TEST_F(Sources, StdExceptionOfARefusalLosesItsType) {
  Make();
  source->onPreDestroy = [] { throw std::runtime_error("derived"); };
  try {
    IDataSource::Destroy(source.get());
    FAIL();
  } catch (const std::exception& exception) {
    EXPECT_EQ(typeid(exception), typeid(std::exception));
  }
  EXPECT_EQ(log, "") << "it lives";
  source->onPreDestroy = nullptr;
}

TEST_F(Sources, LetOutWhatTheirDestructionHandlersThrowOnceTheyAreGone) {
  Make();

  subscriptions.push_back(source->AddOnDestroyedHandler([this] {
    log += "destroyed";
    throw std::runtime_error("second");
  }));
  subscriptions.push_back(source->AddOnDestroyHandler([this] {
    log += "destroy ";
    throw std::runtime_error("first");
  }));
  try {
    IDataSource::Destroy(source.release());
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "first");
  }

  EXPECT_EQ(log, "~Doc destroy destroyed");
}

}  // namespace
}  // namespace DataBinding::Testing
