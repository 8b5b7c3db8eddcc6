// SPDX-License-Identifier: Apache-2.0
// This program measures what the adapter for Qt costs. It shows a table beside one over a
// QStandardItemModel, and a window of 10,000 rows while a thread raises events, and prints a row
// for each figure with what is to be reached.

#include <sys/resource.h>

#include <QtWidgets>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <span>
#include <thread>
#include <vector>

#include <DataBinding/DataBinding.h>
#include <DataBindingQt6/DataBindingQt6.h>

using namespace DataBinding;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int rowCount = 10'000;

struct Row {
  int id = 0;
  VtrString name;
  double value = 0;
};
constexpr auto FieldsOf(const Row* /*row*/) {
  return Fields(Key(L"Id", &Row::id), Field(L"Name", &Row::name), Field(L"Value", &Row::value));
}

struct Model : NamedDataSource {
  Model() : NamedDataSource(L"Model") {
    std::vector<Row> made;
    made.reserve(rowCount);
    for (int i = 0; i < rowCount; ++i)
      made.push_back({i, VtrString().Format(L"Row %d", i), i / 2.0});
    rows.Assign(std::move(made));
  }
  List<Row> rows{this, L"Rows"};
  Property<int> count{this, L"Count", 0};
};

constinit const AppEvent<int> tick{L"Tick"};

double MillisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// Returns the value below which this share of the values lies.
double Quantile(std::span<double> values, double share) {
  std::ranges::sort(values);
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

double ProcessorMilliseconds() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(used.ru_utime) + milliseconds(used.ru_stime);
}

void Print(const char* what, double figure, const char* unit, double goal) {
  std::printf("| %s | %.1f %s | ≤ %.1f | %s |\n", what, figure, unit, goal,
              figure <= goal ? "yes" : "**no**");
}

/// Makes a model of the rows and shows it in a table, and returns how long that took.
double TimeToShow(const std::function<QAbstractItemModel*(QObject*)>& makeModel) {
  const auto begin = Clock::now();
  QTableView table;
  table.resize(900, 700);
  table.setModel(makeModel(&table));
  static_cast<void>(table.grab());
  return MillisecondsSince(begin);
}

QAbstractItemModel* MakeStandardModel(const List<Row>& rows, QObject* parent) {
  auto* model = new QStandardItemModel(static_cast<int>(rows.Size()), 3, parent);
  int at = 0;
  for (const Row& row : rows) {
    const std::array<QVariant, 3> cells{row.id, Qt6::ToQString(row.name), row.value};
    for (int column = 0; column < 3; ++column) {
      auto* item = new QStandardItem;
      item->setData(cells.at(static_cast<std::size_t>(column)), Qt::DisplayRole);
      model->setItem(at, column, item);
    }
    ++at;
  }
  return model;
}

void MeasureShowing(Model& model) {
  std::vector<double> ratios;
  for (int i = 0; i < 9; ++i) {
    const double ours =
        TimeToShow([&](QObject* parent) { return new Qt6::ListModel(model.rows, {}, parent); });
    const double peers =
        TimeToShow([&](QObject* parent) { return MakeStandardModel(model.rows, parent); });
    ratios.push_back(ours / peers);
  }
  Print("10,000 rows shown in a table", Quantile(ratios, 0.5), "× QStandardItemModel", 1.5);
}

void MeasureCells(Model& model) {
  const Qt6::ListModel shown(model.rows);
  const std::array names{"a cell of a whole number", "a cell of text", "a cell of a double"};
  for (int column = 0; column < 3; ++column) {
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
      const auto begin = Clock::now();
      for (int row = 0; row < rowCount; ++row) {
        if (!shown.data(shown.index(row, column)).isValid()) return;
      }
      times.push_back(MillisecondsSince(begin) * 1e6 / rowCount);
    }
    Print(names.at(static_cast<std::size_t>(column)), Quantile(times, 0.5), "ns", 40);
  }
}

/// Raises so many events a second until it is told to stop.
void RaiseTicks(int perSecond, const std::atomic<bool>& isOver) {
  auto next = Clock::now();
  for (int raised = 0; !isOver; next += std::chrono::milliseconds(1)) {
    for (int i = 0; i < perSecond / 1000; ++i) tick.Raise(++raised);
    std::this_thread::sleep_until(next);
  }
}

struct Load {
  double processor = 0;  // percent of a core
  double late = 0;       // milliseconds, in 99 of 100 cases
  double latest = 0;
};

/// Shows the window for five seconds under events, and measures how late a timer of 10 ms is.
Load MeasureUnderEvents(int perSecond) {
  const std::chrono::seconds duration(5);
  std::atomic<bool> isOver{false};
  std::vector<double> lateness;
  QTimer timer;
  timer.setTimerType(Qt::PreciseTimer);
  auto due = Clock::now() + std::chrono::milliseconds(10);
  QObject::connect(&timer, &QTimer::timeout, [&] {
    lateness.push_back(MillisecondsSince(due));
    due = Clock::now() + std::chrono::milliseconds(10);
  });
  timer.start(10);
  QTimer::singleShot(duration, [] { QCoreApplication::quit(); });
  const double before = ProcessorMilliseconds();
  std::thread worker(RaiseTicks, perSecond, std::cref(isOver));
  QCoreApplication::exec();
  const double spent = ProcessorMilliseconds() - before;
  isOver = true;
  worker.join();
  return {spent / 10 / static_cast<double>(duration.count()), Quantile(lateness, 0.99),
          lateness.back()};
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  Qt6::Install();
  const Qt6::QtIdlePass pass;
  DataSourceProvider scope(nullptr, L"", nullptr);
  auto& model = Emplace<Model>(scope);
  const Subscription counting = tick.Subscribe([&](const int& count) { model.count.Set(count); });

  std::puts("| what | measured | to reach | reached |\n|---|---|---|---|");
  MeasureShowing(model);
  MeasureCells(model);

  QWidget window;
  Qt6::SetScope(&window, &scope);
  QVBoxLayout layout(&window);
  QTableView table;
  QLabel label;
  layout.addWidget(&table);
  layout.addWidget(&label);
  Qt6::ListModel shown(model.rows);
  table.setModel(&shown);
  Qt6::Bind(&label, L"Model", L"Count");
  window.resize(900, 700);
  window.show();

  const Load some = MeasureUnderEvents(10'000);
  Print("10,000 events a second: processor", some.processor, "% of a core", 8);
  Print("10,000 events a second: a 10 ms timer late in 99 %", some.late, "ms", 5);
  const Load many = MeasureUnderEvents(1'000'000);
  Print("1,000,000 events a second: the window answers within", many.latest, "ms", 50);
  return 0;
}
