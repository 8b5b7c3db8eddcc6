// SPDX-License-Identifier: Apache-2.0
#include <string>

#include <gtest/gtest.h>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/property/CopyProperties.h"
#include "DataBinding/property/Property.h"
#include "DataBinding/property/PropertyAccess.h"
#include "DataBinding/property/PropertyBatch.h"
#include "Processes.h"

namespace DataBinding::Testing {
namespace {

struct Machine : NamedDataSource {
  Machine() : NamedDataSource(L"Machine") {}
  SetResult Fill(std::vector<Process> rows) { return Assign(fixed, std::move(rows)); }

  List<Process> processes{this, L"Processes"};
  ReadOnlyList<Process> fixed{this, L"Fixed"};
  ComputedProperty<int> count{this, L"Count", [this] { return static_cast<int>(processes.Size()); },
                              processes};
};

struct ListProperty : testing::Test {
  ListProperty() : machine(MakeDataSource<Machine>(nullptr)) {
    for (const wchar_t* name : {L"Processes", L"Fixed", L"Count"}) {
      heard.push_back(
          machine->Register([this, name] { log += VtrString(name).ToUtf8() + " "; }, name));
    }
  }

  DataSourcePtr<Machine> machine;
  std::vector<Subscription> heard;
  std::string log;
};

TEST_F(ListProperty, AnnouncesItsNameOnceForAnOutermostOperation) {
  const Subscription seen =
      machine->processes.Observe({.after = [this](const RowChange<Process>& change) {
        if (change.Kind() != ListChangeKind::Inserted) return;
        machine->processes.Remove(0);
        EXPECT_EQ(log, "");
      }});

  machine->processes.Assign(Processes({1, 2}));
  machine->processes.Assign(Processes({2}));

  EXPECT_EQ(log, "Processes Count ");
}

TEST_F(ListProperty, WaitsForTheEndOfABatch) {
  PropertyBatch batch(*machine);
  machine->processes.Assign(Processes({1, 2}));
  machine->processes.Remove(0);
  EXPECT_EQ(log, "");

  batch.Commit();

  EXPECT_EQ(log, "Processes Count ");
}

TEST_F(ListProperty, LetsOnlyItsSourceChangeAReadOnlyList) {
  EXPECT_TRUE(machine->Fill(Processes({1})).changed);

  const SetResult refused = machine->fixed.SetCell(0, L"Cpu", 1.0);

  EXPECT_EQ(refused.error, PropertyError::ReadOnly);
  EXPECT_EQ(log, "Fixed ");
}

TEST_F(ListProperty, IsFoundAsAListWithoutItsRowType) {
  EXPECT_TRUE(runtime_type<AnyList>::Get().IsSameType(&machine->GetDelegateType(L"Processes")));
  EXPECT_TRUE(runtime_type<const AnyList>::Get().IsSameType(&machine->GetDelegateType(L"Fixed")));
  const AnyPropertyRef found(machine.get(), L"Processes");
  EXPECT_EQ(found.Read().error, PropertyError::WrongType);
  EXPECT_EQ(found.ReadText()->ToUtf8(), "<DataBinding::AnyList>");
  const auto leftOut = CopyProperties(machine.get(), machine.get()).leftOut;
  EXPECT_EQ(leftOut.at(0).result.text, found.Write(1).text);
}

}  // namespace
}  // namespace DataBinding::Testing
