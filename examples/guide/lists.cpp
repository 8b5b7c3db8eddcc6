// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <utility>
#include <vector>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

struct Process {
  int id;
  VtrString name;
  double cpu;
};

VtrString NotNegative(const double& value) { return value < 0 ? L"It is negative." : L""; }

constexpr auto FieldsOf(const Process*) {
  return Fields(Key(L"Id", &Process::id), Field(L"Name", &Process::name, {.readOnly = true}),
                Field(L"Cpu", &Process::cpu, {.validate = NotNegative}));
}

class Machine : public NamedDataSource {
 public:
  Machine() : NamedDataSource(L"Machine") {}

  List<Process> processes{this, L"Processes"};
  ComputedProperty<int> count{this, L"Count", [this] { return static_cast<int>(processes.Size()); },
                              processes};
};

void Tell(const RowChange<Process>& change) {
  switch (change.Kind()) {
    case ListChangeKind::Inserted:
      std::cout << change.Count() << " came at " << change.At() << '\n';
      break;
    case ListChangeKind::Moved:
      std::cout << change[0].name << " moved from " << change.At() << " to " << change.To() << '\n';
      break;
    case ListChangeKind::Changed:
      for (std::size_t i = 0; i < change.Count(); ++i) {
        std::cout << change[i].name << ": " << change.Was(i).cpu << " is now " << change[i].cpu
                  << '\n';
      }
      break;
    default:
      std::cout << "the list has " << change.Node().Size() << " rows\n";
  }
}

void TellGoing(const RowChange<Process>& change) {
  if (change.Kind() != ListChangeKind::Removed) return;
  for (const Process& process : change.Rows()) std::cout << process.name << " goes\n";
}

void ChangeTheList(List<Process>& processes) {
  processes.Assign({{1, L"init", 0}, {7, L"shell", 0.1}, {9, L"editor", 0.5}});
  processes.Assign({{9, L"editor", 0.5}, {1, L"init", 0}, {7, L"shell", 0.3}});
  processes.Insert(1, Process{12, L"compiler", 0.9});
  processes.Update(12, [](Process& process) { process.cpu = 1; });
  processes.Edit([](std::vector<Process>& rows) {
    std::erase_if(rows, [](const Process& process) { return process.cpu == 0; });
  });
}

void SetCells(AnyList& list) {
  std::cout << list.Cell(0, 1) << " has " << list.Cell(0, 2) << '\n';
  std::cout << list.SetCell(0, L"Cpu", -1) << '\n';
  std::cout << list.SetCell(0, L"Name", L"vi") << '\n';
  std::cout << list.SetCell(9, L"Cpu", 1) << '\n';
}

void ChangeInACallback(List<Process>& processes) {
  const Subscription fair = processes.Observe({.after = [&](const RowChange<Process>& change) {
    if (change.Kind() != ListChangeKind::Inserted) return;
    const SetResult result = processes.Update(20, [](Process& process) { process.cpu = 0.2; });
    std::cout << (result.waits ? "The update waits.\n" : "The update is done.\n");
  }});
  processes.Insert(0, Process{20, L"daemon", 0});
}

/// The share of a processor from which on a process is shown as hot.
class Limit : public NamedDataSource {
 public:
  Limit() : NamedDataSource(L"Limit") {}

  Property<double> cpu{this, L"Cpu", 0.5};
};

void Print(const char* what, const ReadableList<Process>& list) {
  std::cout << what;
  for (const Process& process : list) std::cout << ' ' << process.name;
  std::cout << '\n';
}

void SortAndFilter() {
  ListData<Process> processes;
  processes.Assign({{1, L"init", 0}, {7, L"shell", 0.3}, {12, L"compiler", 1}});
  const auto limit = MakeDataSource<Limit>(nullptr);
  SortedList busiest(processes, By(&Process::cpu, Order::Descending).Then(&Process::name));
  FilteredList hot(
      busiest, [&](const Process& process) { return process.cpu > *limit->cpu; }, limit->cpu);
  Print("busiest:", busiest);
  Print("hot:", hot);

  limit->cpu.Set(0.2);
  processes.Update(1, [](Process& process) { process.cpu = 2; });
  Print("busiest:", busiest);
  Print("hot:", hot);
}

void SortByAnyField(AnyList& list) {
  AnySortedList shown(list);
  if (shown.SortBy(L"Name", Order::Descending)) std::cout << shown.Cell(0, 1) << " is first\n";
  if (!shown.SortBy(L"Size")) std::cout << "There is no field \"Size\".\n";
  shown.KeepOrderOfList();
  std::cout << shown.MoveRows(0, 1, 1).changed << ' ' << shown.Cell(0, 1) << " is first\n";
}

/// A download goes on by itself, and ends when it is complete.
class Download : public NamedDataSource {
 public:
  explicit Download(VtrString itsFile)
      : NamedDataSource(L"Download"), file(this, L"File", std::move(itsFile)) {}

  Property<VtrString> file;
  Property<int> percent{
      this, L"Percent", 0, {.validate = [](int n) { return n > 100 ? L"It is too much." : L""; }}};
};

constexpr auto FieldsOf(const Download*) {
  return Fields(Field(L"File", &Download::file), Field(L"Percent", &Download::percent));
}

class Downloads : public NamedDataSource {
 public:
  Downloads() : NamedDataSource(L"Downloads") {}

  SourceList<Download> all{this, L"All"};
};

void FollowSources() {
  const auto downloads = MakeDataSource<Downloads>(nullptr);
  SourceList<Download>& all = downloads->all;
  SortedList first(all, By(&Download::percent, Order::Descending));
  const Subscription seen = first.Observe({.after = [](const RowChange<Download>& change) {
    if (change.Kind() != ListChangeKind::Changed) return;
    std::cout << *change[0].file << " has " << *change[0].percent << " percent\n";
  }});
  Download& book = all.Emplace(L"book");
  all.Emplace(L"song");
  const Subscription done = book.Register(
      [&] {
        if (*book.percent == 100) all.Remove(*all.IndexOf(book));
      },
      L"Percent");

  first[1].percent.Set(40);
  book.percent.Set(50);
  std::cout << all.SetCell(1, L"Percent", 120) << '\n';
  std::cout << *first[0].file << " is first\n";
  book.percent.Set(100);
  std::cout << *first[0].file << " is first\n";
}

int main() {
  const auto machine = MakeDataSource<Machine>(nullptr);
  List<Process>& processes = machine->processes;
  const Subscription announced =
      machine->Register([&] { std::cout << "-- " << *machine->count << " processes\n"; }, L"Count");
  const Subscription seen = processes.Observe({.before = &TellGoing, .after = &Tell});

  ChangeTheList(processes);
  SetCells(processes);
  ChangeInACallback(processes);
  SortAndFilter();
  SortByAnyField(processes);
  FollowSources();
}
