// SPDX-License-Identifier: Apache-2.0
#include <ncurses.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

#include "Terminal.h"

namespace Sysmon {

namespace {

struct Binding {
  int code;
  Key key;
};

constexpr int escape = 27;
constexpr int backspace = 127;
constexpr Binding bindings[] = {
    {KEY_UP, Key::Up},           {'k', Key::Up},
    {KEY_DOWN, Key::Down},       {'j', Key::Down},
    {KEY_PPAGE, Key::PageUp},    {KEY_NPAGE, Key::PageDown},
    {KEY_HOME, Key::First},      {KEY_END, Key::Last},
    {'\r', Key::Open},           {'\n', Key::Open},
    {KEY_ENTER, Key::Open},      {escape, Key::Close},
    {KEY_BACKSPACE, Key::Erase}, {backspace, Key::Erase},
    {'\b', Key::Erase},          {'\t', Key::Next},
    {'c', Key::SortByCpu},       {'m', Key::SortByMemory},
    {'p', Key::SortById},        {'n', Key::SortByName},
    {'r', Key::Reverse},         {'a', Key::EditLimit},
    {'l', Key::SwitchLog},       {' ', Key::Pause},
    {'L' - '@', Key::Redraw},    {'q', Key::Quit},
};

/// Tells function keys from characters, because some of their codes are equal.
Key FindKey(wint_t code, bool isFunction) {
  for (const Binding& binding : bindings) {
    const bool isBoundFunction = binding.code >= KEY_MIN;
    if (binding.code == static_cast<int>(code) && isBoundFunction == isFunction) return binding.key;
  }
  return Key::Other;
}

attr_t Attributes(Style style) {
  switch (style) {
    case Style::Label:
      return A_DIM;
    case Style::Title:
      return A_BOLD | A_UNDERLINE;
    case Style::Chosen:
      return A_REVERSE;
    case Style::Alarm:
      return A_REVERSE | A_BOLD;
    default:
      return A_NORMAL;
  }
}

}  // namespace

/// The library's own screen, which is a process-wide one.
class Terminal::Screen {
 public:
  Screen() {
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
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen() {
    endwin();
    delscreen(set_term(nullptr));
  }
};

bool Terminal::IsThere() { return isatty(STDOUT_FILENO) != 0; }

Terminal::Terminal() : screen(std::make_unique<Screen>()) {}
Terminal::~Terminal() = default;

bool Terminal::HasKeys() const { return isatty(STDIN_FILENO) != 0; }

Area Terminal::Whole() const { return {0, 0, getmaxy(stdscr), getmaxx(stdscr)}; }

void Terminal::Show() { refresh(); }

KeyPress Terminal::ReadKey() {
  wint_t code = 0;
  const int kind = get_wch(&code);
  if (kind == ERR) return {};
  const bool isFunction = kind == KEY_CODE_YES;
  return {FindKey(code, isFunction), isFunction ? L'\0' : static_cast<wchar_t>(code)};
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
