// SPDX-License-Identifier: Apache-2.0
#include "MonitorView.h"

#include <algorithm>

namespace Sysmon {

namespace {

constexpr int mostInterfaces = 4;
constexpr int widestDetails = 60;
constexpr int highestLog = 9;

constexpr Column<Process> processColumns[] = {
    {L"PID", 7, Align::Right, valueOf<&Process::id>},
    {L"USER", 9, Align::Left, valueOf<&Process::user>},
    {L"CPU", 6, Align::Right, valueOf<&Process::cpu>},
    {L"MEMORY", 10, Align::Right, valueOf<&Process::resident>},
    {L"NAME", 20, Align::Left, valueOf<&Process::name>},
    {L"STATE", 8, Align::Left, valueOf<&Process::state>},
    {L"THR", 4, Align::Right, valueOf<&Process::threads>},
    {L"TIME", 9, Align::Right, valueOf<&Process::cpuTime>},
};
constexpr Column<Interface> interfaceColumns[] = {
    {L"INTERFACE", 17, Align::Left, valueOf<&Interface::name>},
    {L"STATE", 8, Align::Left, valueOf<&Interface::state>},
    {L"RECEIVING", 12, Align::Right, valueOf<&Interface::receivedRate>},
    {L"SENDING", 12, Align::Right, valueOf<&Interface::sentRate>},
    {L"RECEIVED", 10, Align::Right, valueOf<&Interface::received>},
    {L"SENT", 10, Align::Right, valueOf<&Interface::sent>},
};

constexpr wchar_t help[] = L"enter open  c/m/p/n sort  r flip  a alarm  l log  space pause  q quit";

/// Shortens a reason that is too long to its end, which says what would be accepted.
VtrString LastPart(const VtrString& text, int width) {
  const int surplus = text.GetLength() - std::max(0, width);
  return surplus <= 0 ? text : L"..." + text.Mid(surplus + 3);
}

}  // namespace

MonitorView::MonitorView(IDataSourceProvider& rootScope, Surface& targetSurface,
                         const EventLog& eventLog, bool isInteractive)
    : root(rootScope),
      surface(targetSurface),
      interactive(isInteractive),
      summary(rootScope),
      interfaceList(&rootScope, L"Machine", L"Interfaces"),
      processList(&rootScope, L"Machine", L"Processes"),
      interfaces(interfaceList, interfaceColumns, false),
      processes(processList, processColumns, isInteractive),
      log(eventLog) {
  interfaces.SortBy(L"RECEIVED", Order::Descending);
  processes.SortBy(L"CPU", Order::Descending);
}

MonitorView::Layout MonitorView::MakeLayout() {
  const Area whole = surface.Whole();
  Layout result;
  const int footerHeight = interactive ? 1 : 0;
  int line = 0;
  const auto rest = [&] { return std::max(0, whole.height - footerHeight - line); };
  const auto take = [&](int wantedHeight) {
    const Area area{line, 0, std::min(wantedHeight, rest()), whole.width};
    line += area.height;
    return area;
  };
  result.summary = take(Summary::height);
  take(1);
  result.interfaces = take(1 + std::min(interfaces.RowCount(), mostInterfaces));
  take(1);
  const int logHeight = interactive && log.IsVisible() ? std::min(rest() / 2, highestLog) : 0;
  result.processes = take(rest() - logHeight);
  result.log = take(logHeight);
  result.footer = {line, 0, footerHeight, whole.width};
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
  log.Invalidate();
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
  log.Draw(surface, layout.log);
  if (interactive) DrawFooter();
  surface.Show();
  static_cast<void>(surface.TakeCellsWritten());  // the cells of the footer do not count
}

/// Draws the help, a message, or the line that is edited; and how many cells the rest of this
/// drawing took.
void MonitorView::DrawFooter() {
  const bool isWide = layout.footer.width >= 90;
  const int counterWidth = isWide ? 20 : 11;
  VtrString counter;
  counter.Format(isWide ? L"%d cells redrawn" : L"%d cells", surface.TakeCellsWritten());
  const int textWidth = layout.footer.width - counterWidth;
  const VtrString text = FooterText(textWidth);
  const Style style = editor != nullptr || isPaused ? Style::Chosen : Style::Label;
  if (text != footerShown) surface.Write(layout.footer.At(0, 0, textWidth), text, style);
  surface.Write(layout.footer.At(0, textWidth, counterWidth), counter, Style::Label, Align::Right);
  footerShown = text;
}

VtrString MonitorView::FooterText(int width) const {
  if (editor != nullptr) {
    const VtrString field =
        VtrString().Format(L"%s alarm at: %s_  ", editor->Limit(), editor->Text());
    if (editor->Reason().IsEmpty()) return field + L"tab next  enter set  esc leave";
    return field + LastPart(editor->Reason(), width - field.GetLength());
  }
  if (!message.IsEmpty()) return message;
  return isPaused ? L"PAUSED: what is measured stands still.  space go on  q quit" : help;
}

void MonitorView::ShowPaused(bool isNowPaused) {
  isPaused = isNowPaused;
  Redraw();
}

void MonitorView::OpenDetails() {
  const auto chosen = processes.Chosen();
  if (!chosen) return;
  details = std::make_unique<DetailPane>(root, processList, *chosen);
  Redraw();
}

void MonitorView::CloseDetails() {
  details.reset();
  Redraw();
}

/// Edits the limit after the present one, and after the last limit the first.
void MonitorView::EditNextLimit() {
  const auto names = LimitNames(root);
  if (names.empty()) return;
  const auto edited = editor == nullptr ? names.end() : std::ranges::find(names, editor->Limit());
  const bool hasNext = edited != names.end() && edited + 1 != names.end();
  editor = std::make_unique<LimitEditor>(root, hasNext ? edited[1] : names.front());
}

void MonitorView::EditLimit(const KeyPress& press) {
  switch (press.key) {
    case Key::Open:
      return CommitLimit();
    case Key::Close:
      editor.reset();
      return;
    case Key::Erase:
      return editor->Erase();
    case Key::Next:
      return EditNextLimit();
    case Key::Redraw:
      return Redraw();
    default:
      editor->Insert(press.character);
  }
}

void MonitorView::CommitLimit() {
  if (!editor->Commit()) return;
  message = VtrString().Format(L"%s alarm at %s.", editor->Limit(), editor->Text());
  editor.reset();
}

bool MonitorView::Obey(const KeyPress& press) {
  message = {};
  if (editor == nullptr) return MoveChoice(press.key) || Sort(press.key) || Change(press.key);
  EditLimit(press);
  return true;
}

bool MonitorView::MoveChoice(Key key) {
  switch (key) {
    case Key::Up:
      processes.Move(-1);
      return true;
    case Key::Down:
      processes.Move(1);
      return true;
    case Key::PageUp:
      processes.MovePages(-1);
      return true;
    case Key::PageDown:
      processes.MovePages(1);
      return true;
    case Key::First:
    case Key::Last:
      processes.MoveToEnd(key == Key::Last);
      return true;
    default:
      return false;
  }
}

bool MonitorView::Sort(Key key) {
  switch (key) {
    case Key::SortByCpu:
      processes.SortBy(L"CPU", Order::Descending);
      return true;
    case Key::SortByMemory:
      processes.SortBy(L"MEMORY", Order::Descending);
      return true;
    case Key::SortById:
      processes.SortBy(L"PID", Order::Ascending);
      return true;
    case Key::SortByName:
      processes.SortBy(L"NAME", Order::Ascending);
      return true;
    case Key::Reverse:
      processes.Reverse();
      return true;
    default:
      return false;
  }
}

bool MonitorView::Change(Key key) {
  switch (key) {
    case Key::Open:
      OpenDetails();
      return true;
    case Key::Close:
    case Key::Erase:
      CloseDetails();
      return true;
    case Key::EditLimit:
      EditNextLimit();
      return true;
    case Key::SwitchLog:
      log.Switch();
      Redraw();
      return true;
    case Key::Redraw:
      Redraw();
      return true;
    default:
      return false;
  }
}

}  // namespace Sysmon
