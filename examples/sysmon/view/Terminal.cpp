#include "Terminal.h"

#include <ncurses.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <iterator>
#include <stdexcept>

namespace Sysmon {

namespace {

struct Binding {
  int code;
  Key key;
};

constexpr int escape = 27;
constexpr Binding bindings[] = {
    {KEY_UP, Key::Up},           {'k', Key::Up},
    {KEY_DOWN, Key::Down},       {'j', Key::Down},
    {KEY_PPAGE, Key::PageUp},    {KEY_NPAGE, Key::PageDown},
    {KEY_HOME, Key::First},      {KEY_END, Key::Last},
    {'\r', Key::Open},           {'\n', Key::Open},
    {KEY_ENTER, Key::Open},      {escape, Key::Close},
    {KEY_BACKSPACE, Key::Close}, {'c', Key::SortByCpu},
    {'m', Key::SortByMemory},    {'p', Key::SortById},
    {'n', Key::SortByName},      {'r', Key::Reverse},
    {'L' - '@', Key::Redraw},    {'q', Key::Quit},
};

attr_t Attributes(Style style) {
  switch (style) {
    case Style::Label:
      return A_DIM;
    case Style::Title:
      return A_BOLD | A_UNDERLINE;
    case Style::Chosen:
      return A_REVERSE;
    default:
      return A_NORMAL;
  }
}

}  // namespace

Terminal::Terminal() {
  if (newterm(nullptr, stdout, stdin) == nullptr) {
    throw std::runtime_error("this terminal cannot be used; is TERM set rightly?");
  }
  cbreak();
  noecho();
  nonl();
  keypad(stdscr, TRUE);
  nodelay(stdscr, TRUE);
  set_escdelay(25);
  curs_set(0);
}

Terminal::~Terminal() {
  endwin();
  delscreen(set_term(nullptr));
}

Area Terminal::Whole() const { return {0, 0, getmaxy(stdscr), getmaxx(stdscr)}; }

void Terminal::Show() { refresh(); }

Key Terminal::ReadKey() {
  for (int code = getch(); code != ERR; code = getch()) {
    for (const Binding& binding : bindings) {
      if (binding.code == code) return binding.key;
    }
  }
  return Key::None;
}

void Terminal::Suspend() { endwin(); }

void Terminal::Resume() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
    resizeterm(size.ws_row, size.ws_col);
  }
  clearok(stdscr, TRUE);
}

void Terminal::Draw(const Place& place, const std::wstring& text, Style style) {
  attrset(static_cast<int>(Attributes(style)));
  mvaddnwstr(place.line, place.column, text.c_str(), static_cast<int>(text.size()));
}

void Terminal::Blank() {
  attrset(A_NORMAL);
  erase();
}

}  // namespace Sysmon
