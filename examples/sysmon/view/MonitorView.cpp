#include "MonitorView.h"

#include <algorithm>

namespace Sysmon {

namespace {

constexpr int mostInterfaces = 4;
constexpr int widestDetails = 60;

constexpr Column processColumns[] = {
    {L"PID", L"Id", 7, Align::Right},      {L"USER", L"User", 9, Align::Left},
    {L"CPU", L"Cpu", 6, Align::Right},     {L"MEMORY", L"Resident", 10, Align::Right},
    {L"NAME", L"Name", 20, Align::Left},   {L"STATE", L"State", 8, Align::Left},
    {L"THR", L"Threads", 4, Align::Right}, {L"TIME", L"CpuTime", 9, Align::Right},
};
constexpr RowKind processRows{L"process", L"Process", L"Host", L"ProcessesChanged", processColumns};

constexpr Column interfaceColumns[] = {
    {L"INTERFACE", L"Name", 17, Align::Left},          {L"STATE", L"State", 8, Align::Left},
    {L"RECEIVING", L"ReceivedRate", 12, Align::Right}, {L"SENDING", L"SentRate", 12, Align::Right},
    {L"RECEIVED", L"Received", 10, Align::Right},      {L"SENT", L"Sent", 10, Align::Right},
};
constexpr RowKind interfaceRows{L"interface", L"Interface", L"Host", L"InterfacesChanged",
                                interfaceColumns};

constexpr wchar_t help[] = L"arrows move  enter open  esc close  c m p n sort  r reverse  q quit";

}  // namespace

MonitorView::MonitorView(IDataSourceProvider& root, Surface& targetSurface, bool isInteractive)
    : surface(targetSurface),
      interactive(isInteractive),
      summary(root),
      interfaces(root, interfaceRows, false),
      processes(root, processRows, isInteractive) {
  interfaces.SortBy(L"Received", true);
  processes.SortBy(L"Cpu", true);
}

MonitorView::Layout MonitorView::MakeLayout() {
  const Area whole = surface.Whole();
  Layout result;
  int line = 0;
  const auto take = [&](int height) {
    const Area area{line, 0, height, whole.width};
    line += height;
    return area;
  };
  const int footerHeight = interactive ? 1 : 0;
  result.summary = take(Summary::height);
  ++line;
  result.interfaces = take(1 + std::min(interfaces.RowCount(), mostInterfaces));
  ++line;
  result.processes = take(std::max(0, whole.height - footerHeight - line));
  result.footer = take(footerHeight);
  if (details != nullptr) {
    result.details = result.processes;
    result.details.width = std::min(whole.width / 2, widestDetails);
    result.details.column = whole.width - result.details.width;
    result.processes.width = result.details.column - 1;
  }
  return result;
}

void MonitorView::Invalidate() {
  surface.Clear();
  summary.Invalidate();
  interfaces.Invalidate();
  processes.Invalidate();
  if (details != nullptr) details->Invalidate();
  footerShown = {};
}

void MonitorView::Draw() {
  if (details != nullptr && details->IsEnded()) {
    CloseDetails();
    message = L"The process has ended.";
  }
  const Layout wanted = MakeLayout();
  if (wanted != layout) Invalidate();
  layout = wanted;
  summary.Draw(surface, layout.summary);
  interfaces.Draw(surface, layout.interfaces);
  processes.Draw(surface, layout.processes);
  if (details != nullptr) details->Draw(surface, layout.details);
  if (interactive) DrawFooter();
  surface.Show();
  static_cast<void>(surface.TakeCellsWritten());  // the footer's own are not counted
}

/// Help or a message, and how many cells the rest of this drawing took.
void MonitorView::DrawFooter() {
  constexpr int counterWidth = 12;
  VtrString counter;
  counter.Format(L"%d cells", surface.TakeCellsWritten());
  const VtrString text = message.IsEmpty() ? VtrString(help) : message;
  const int textWidth = layout.footer.width - counterWidth;
  if (text != footerShown) surface.Write(layout.footer.At(0, 0, textWidth), text, Style::Label);
  surface.Write(layout.footer.At(0, textWidth, counterWidth), counter, Style::Label, Align::Right);
  footerShown = text;
}

void MonitorView::OpenDetails() {
  IDataSourceProvider* const scope = processes.Chosen();
  if (scope == nullptr) return;
  details = std::make_unique<DetailPane>(*scope);
  layout = {};
}

void MonitorView::CloseDetails() {
  details.reset();
  layout = {};
}

void MonitorView::Obey(Key key) {
  message = {};
  switch (key) {
    case Key::Up:
      return processes.Move(-1);
    case Key::Down:
      return processes.Move(1);
    case Key::PageUp:
      return processes.MovePages(-1);
    case Key::PageDown:
      return processes.MovePages(1);
    case Key::First:
      return processes.MoveToEnd(false);
    case Key::Last:
      return processes.MoveToEnd(true);
    case Key::Open:
      return OpenDetails();
    case Key::Close:
      return CloseDetails();
    case Key::SortByCpu:
      return processes.SortBy(L"Cpu", true);
    case Key::SortByMemory:
      return processes.SortBy(L"Resident", true);
    case Key::SortById:
      return processes.SortBy(L"Id", false);
    case Key::SortByName:
      return processes.SortBy(L"Name", false);
    case Key::Reverse:
      return processes.Reverse();
    case Key::Redraw:
      layout = {};
      return;
    default:
      return;
  }
}

}  // namespace Sysmon
