// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <string>
#include <vector>

#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/Diagnose.h"
#include "DataBinding/framework/EventBind.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using State = Framework::BindStatus::State;
using Framework::DataBind;

/// A child scope with a gauge, in a parent with a "Shared" one and two that can be built.
class BindStates : public BindTest {
 protected:
  BindStates() {
    registrar.RegisterDataSource(&late);
    registrar.RegisterDataSource(&foreign);
    AddGauge(child);
    AddGauge(parent, 2, L"Shared");
  }

  LoggedConstructor late{log, "late", L"Late", L"A"};
  LoggedConstructor foreign{log, "foreign", L"Foreign", L"Elsewhere"};
};

struct StatusCase {
  const wchar_t *context, *source, *property;
  State state;
  const wchar_t* text;
};

const std::vector<StatusCase>& Cases() {
  static const std::vector<StatusCase> cases{
      {L"", L"Gauge", L"Level", State::Connected, L""},
      {L"", L"Gauge", L"Limit", State::ReadOnly,
       L"Property \"Limit\" of data source \"Gauge\" can be read, but only its data source sets "
       L"it."},
      {L"", L"", L"Level", State::Unbound, L"The bind names no data source."},
      {L"", L"Gauge", L"VtrFrmWk::NullPath", State::Unbound,
       L"The bind to data source \"Gauge\" names no property."},
      {L"D", L"Gauge", L"Level", State::NoContext,
       L"No scope here or further out has the category \"D\", where data source \"Gauge\" "
       L"with its property \"Level\" is looked for."},
      {L"A", L"Gauge", L"Level", State::NoSource,
       L"There is no data source \"Gauge\" to have a property \"Level\"."},
      {L"", L"Foreign", L"Level", State::NoSource,
       L"There is no data source \"Foreign\" to have a property \"Level\"."},
      {L"", L"FOREIGN", L"Level", State::NoSource,
       L"There is no data source \"FOREIGN\" to have a property \"Level\"."},
      {L"", L"Late", L"Level", State::NotBuilt,
       L"Data source \"Late\" could be built, but nobody has asked for it."},
      {L"", L"shared", L"Level", State::CaseDiffers,
       L"There is no data source \"shared\", but one named \"Shared\"."},
      {L"", L"LATE", L"Level", State::CaseDiffers,
       L"There is no data source \"LATE\", but one named \"Late\"."},
      {L"", L"Gauge", L"level", State::CaseDiffers,
       L"Data source \"Gauge\" has no property \"level\", but one named \"Level\"."},
      {L"", L"Gauge", L"Ratio", State::WrongType,
       L"Property \"Ratio\" of data source \"Gauge\" has type double, not int."},
      {L"", L"Gauge", L"Unit", State::WrongType,
       L"Property \"Unit\" of data source \"Gauge\" has type VtrString, not int."},
      {L"", L"Gauge", L"Depth", State::NoProperty,
       L"Data source \"Gauge\" has no property \"Depth\" (wanted type int, actual none)."}};
  return cases;
}

TEST_F(BindStates, TellWhyABindShowsNothing) {
  for (const StatusCase& each : Cases()) {
    const DataBind<int> bind(child.get(), each.context, each.source, each.property);
    const auto status = bind.Status();
    EXPECT_EQ(status.state, each.state) << each.text;
    EXPECT_EQ(status.text, each.text);
    EXPECT_EQ(status.IsConnected(), bind.HasValue());
    EXPECT_EQ(status.state == State::ReadOnly, bind.IsReadOnly());
  }

  EXPECT_EQ(Notes(), "late:registered foreign:registered");
}

TEST_F(BindStates, TellAShadowedSource) {
  child->AddDataSource(MakeDataSource<LoggedSource>(child.get(), L"Shared", log).release());
  const auto inner = MakeProvider(child.get(), L"Row");
  DataBind<int> shared(inner.get(), L"Shared", L"Level");

  EXPECT_EQ(shared.Status().state, State::Shadowed);
  EXPECT_EQ(shared.Status().text,
            L"A data source \"Shared\" in scope \"A,B\" is hidden by a nearer one of that name in "
            L"scope \"C\".");

  AddGauge(child, 2, L"Shared");
  EXPECT_EQ(shared.Status().text,
            L"A data source \"Shared\" in scope \"C\" cannot be found: another one has its name.");

  for (int i = 0; i < 2; ++i) AddGauge(parent), AddGauge(child);
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  EXPECT_EQ(bind.Status().state, State::Connected);

  for (const auto& scope : {&parent, &child}) (*scope)->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(bind.Status().state, State::Shadowed);
  EXPECT_EQ(
      bind.Status().text,
      L"A data source \"Gauge\" in scope \"C\" cannot be found: another one had its name when "
      L"it was added.");
}

TEST_F(BindStates, LeaveScopesWithoutACategoryUnnamed) {
  const auto inner = MakeProvider(child.get());
  Add(inner, L"Shared");
  EXPECT_EQ(DataBind<int>(inner.get(), L"Shared", L"Level").Status().text,
            L"A data source \"Shared\" in scope \"A,B\" is hidden by a nearer one of that name.");
}

TEST_F(BindStates, TellOfAPropertyThatIsFiledUnderAnotherType) {
  struct Mislabelled : LoggedSource {
    explicit Mislabelled(std::string& notes) : LoggedSource(L"Odd", notes) {
      const RepeatingCallback<double()> accessor = [] { return 1.0; };
      _AddDelegate(L"Level", accessor.GetMemento(), runtime_type<int>::Get());
    }
  };
  child->AddDataSource(MakeDataSource<Mislabelled>(child.get(), log).release());
  const DataBind<int> bind(child.get(), L"Odd", L"Level");

  EXPECT_EQ(bind.Status().state, State::WrongType);
  EXPECT_EQ(bind.Get().text,
            L"Property \"Level\" of data source \"Odd\" has type int but no accessor for int.");
}

TEST_F(BindStates, TellThatThereIsNoScopeOrNoneAnyMore) {
  DataBind<int> bind(L"Ctx", L"Gauge", L"Level");

  for (const bool isScopeGone : {false, true}) {
    if (isScopeGone) {
      bind.Connect(child.get());
      EXPECT_EQ(bind.Status().state, State::NoContext);
      child.reset();
    }
    EXPECT_EQ(bind.Status().state, State::NoProvider);
    EXPECT_EQ(bind.Status().text,
              L"There is no scope to look for data source \"Gauge\" with its property \"Level\".");
  }

  EXPECT_EQ(DataBind<int>().Status().state, State::Unbound);
}

class Label : public DataListener {
 public:
  using DataListener::AddDataListener;
  Label(const VtrString& source, const VtrString& property) {
    AddDataListener(source, property, [] {});
  }
  void OnDataSourceProviderChanging(IDataSourceProvider* /*next*/) override {}
};

/// Scope, names and state of each bind and entry.
std::string Rows(IDataSourceProvider& provider) {
  std::string rows;
  for (const BindDiagnosis& each : Diagnose(provider)) {
    rows += each.scopeName.ToUtf8() + ":" + each.source.ToUtf8() + "." + each.property.ToUtf8() +
            "=" + std::to_string(static_cast<int>(each.status.state)) + " ";
  }
  return rows;
}

TEST_F(BindStates, AreListedForTheBindsOfATree) {
  DataBind<int> inner(child.get(), L"Gauge", L"Level");
  DataBind<int> byContext(child.get(), L"B", L"Shared", L"Depth");
  DataBind<int> outer(parent.get(), L"Late", L"Level");
  DataBind<int> nowhere(L"Gauge", L"Level", L"");

  Framework::EventBind remove(L"", L"", L"Remove");
  remove.Connect(child.get());

  EXPECT_EQ(Rows(*parent), "A,B:Late.Level=6 C:.Remove=0 C:Gauge.Level=0 C:Shared.Depth=9 ");

  child.reset();
  EXPECT_EQ(Rows(*parent), "A,B:Late.Level=6 ");
}

TEST_F(BindStates, AreListedForTheEntriesOfListeners) {
  std::array<Label, 3> labels{Label(L"Gauge", L"Limit"), Label(L"Gauge", L"Length"),
                              Label(L"Tardy", L"Level")};
  labels[0].AddDataListener(L"gauge", L"Limit", [] {});
  for (Label& label : labels) label.SetDataSourceProvider(child.get());
  AddGauge(parent, 1, L"Tardy");
  Add(parent, L"GAUGE");

  EXPECT_EQ(Rows(*parent), "C:Gauge.Length=0 C:Gauge.Limit=0 C:Tardy.Level=5 C:gauge.Limit=0 ");

  const auto rows = Diagnose(*child);
  EXPECT_EQ(rows.at(0).status.text,
            L"Changes of \"Length\" are listened for, but data source \"Gauge\" lists no property "
            L"of that name.");
  EXPECT_EQ(rows.at(1).status.text, L"");
  EXPECT_EQ(rows.at(2).status.text,
            L"Data source \"Tardy\" is there, but came unheard: in an outer scope, after the "
            L"listener had been given its provider, or the entry was added later.");
}

}  // namespace
}  // namespace DataBinding::Testing
