// SPDX-License-Identifier: Apache-2.0
#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "Terminal.h"

namespace Sysmon {

namespace {

struct Binding {
  WORD code;
  Key key;
};

constexpr Binding functionKeys[] = {
    {VK_UP, Key::Up},      {VK_DOWN, Key::Down}, {VK_PRIOR, Key::PageUp}, {VK_NEXT, Key::PageDown},
    {VK_HOME, Key::First}, {VK_END, Key::Last},  {VK_RETURN, Key::Open},  {VK_ESCAPE, Key::Close},
    {VK_BACK, Key::Erase}, {VK_TAB, Key::Next}};
constexpr Binding letters[] = {
    {'k', Key::Up},        {'j', Key::Down},       {'c', Key::SortByCpu}, {'m', Key::SortByMemory},
    {'p', Key::SortById},  {'n', Key::SortByName}, {'r', Key::Reverse},   {'a', Key::EditLimit},
    {'l', Key::SwitchLog}, {' ', Key::Pause},      {'q', Key::Quit},      {'L' - '@', Key::Redraw}};

template <std::size_t size>
Key Find(const Binding (&bindings)[size], WORD code) {
  const auto* const found = std::ranges::find(bindings, code, &Binding::code);
  return found == std::end(bindings) ? Key::Other : found->key;
}

constexpr WORD plain = FOREGROUND_RED | FOREGROUND_GREEN | FOREGROUND_BLUE;
constexpr WORD reversed = BACKGROUND_RED | BACKGROUND_GREEN | BACKGROUND_BLUE;

WORD Attributes(Style style) {
  switch (style) {
    case Style::Label:
      return FOREGROUND_INTENSITY;
    case Style::Title:
      return plain | FOREGROUND_INTENSITY;
    case Style::Chosen:
      return reversed;
    case Style::Alarm:
      return BACKGROUND_RED | plain | FOREGROUND_INTENSITY;
    default:
      return plain;
  }
}

}  // namespace

/// A screen buffer of its own beside the console's, and the cells that are to appear in it.
class Terminal::Screen {
 public:
  Screen() {
    if (output == INVALID_HANDLE_VALUE || SetConsoleActiveScreenBuffer(output) == 0) {
      throw std::runtime_error("this console cannot be used");
    }
    constexpr CONSOLE_CURSOR_INFO noCursor{1, FALSE};
    SetConsoleCursorInfo(output, &noCursor);
    GetConsoleMode(input, &formerMode);
    SetConsoleMode(input, ENABLE_PROCESSED_INPUT | ENABLE_WINDOW_INPUT | ENABLE_EXTENDED_FLAGS);
    Refit();
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen() {
    SetConsoleMode(input, formerMode);
    SetConsoleActiveScreenBuffer(GetStdHandle(STD_OUTPUT_HANDLE));
    CloseHandle(output);
  }

  /// Takes over the size of the window, and forgets what it shows.
  void Refit() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    GetConsoleScreenBufferInfo(output, &info);
    window = info.srWindow;
    Blank();
  }
  void Blank() { cells.assign(static_cast<std::size_t>(Height() * Width()), {{L' '}, plain}); }
  void Show() {
    SMALL_RECT region = window;
    const COORD size{static_cast<SHORT>(Width()), static_cast<SHORT>(Height())};
    WriteConsoleOutputW(output, cells.data(), size, {0, 0}, &region);
  }

  [[nodiscard]] int Width() const { return window.Right - window.Left + 1; }
  [[nodiscard]] int Height() const { return window.Bottom - window.Top + 1; }
  [[nodiscard]] CHAR_INFO* At(const Place& place) {
    return &cells[static_cast<std::size_t>(place.line * Width() + place.column)];
  }
  [[nodiscard]] HANDLE Input() const { return input; }

 private:
  HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  HANDLE output =
      CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr);
  DWORD formerMode = 0;
  SMALL_RECT window{};
  std::vector<CHAR_INFO> cells;
};

bool Terminal::IsThere() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

Terminal::Terminal() : screen(std::make_unique<Screen>()) {}
Terminal::~Terminal() = default;

Area Terminal::Whole() const { return {0, 0, screen->Height(), screen->Width()}; }

void Terminal::Show() { screen->Show(); }

bool Terminal::HasKeys() const {
  DWORD mode = 0;
  return GetConsoleMode(screen->Input(), &mode) != 0;
}

KeyPress Terminal::ReadKey() {
  INPUT_RECORD record{};
  for (DWORD count = 0; GetNumberOfConsoleInputEvents(screen->Input(), &count) != 0 && count > 0;) {
    ReadConsoleInputW(screen->Input(), &record, 1, &count);
    if (record.EventType == WINDOW_BUFFER_SIZE_EVENT) {
      screen->Refit();
      return {Key::Redraw, L'\0'};
    }
    const KEY_EVENT_RECORD& event = record.Event.KeyEvent;
    if (record.EventType != KEY_EVENT || event.bKeyDown == 0) continue;
    const wchar_t character = event.uChar.UnicodeChar;
    const Key function = Find(functionKeys, event.wVirtualKeyCode);
    if (function != Key::Other) return {function, L'\0'};
    if (character != 0) return {Find(letters, character), character};
  }
  return {};
}

void Terminal::Suspend() {}
void Terminal::Resume() { screen->Refit(); }

void Terminal::Draw(const Place& place, const std::wstring& text, Style style) {
  const WORD attributes = Attributes(style);
  CHAR_INFO* cell = screen->At(place);
  for (const wchar_t character : text) {
    const bool isWide = CellsOf(character) == 2;
    const auto put = [&](int half) {
      *cell++ = {{character}, static_cast<WORD>(attributes | half)};
    };
    put(isWide ? COMMON_LVB_LEADING_BYTE : 0);
    if (isWide) put(COMMON_LVB_TRAILING_BYTE);
  }
}

void Terminal::Blank() { screen->Blank(); }

}  // namespace Sysmon
