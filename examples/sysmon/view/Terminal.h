// SPDX-License-Identifier: Apache-2.0
/// The terminal, or the console of Windows, as a surface and a source of keys. When this object
/// ends, it puts the terminal back as it was.
///
/// Only one object may exist at a time. It handles no signals: the code that does calls Suspend and
/// Resume around a stop, and Resume also when the size of the terminal has changed.
#pragma once

#include <memory>

#include "Keys.h"
#include "Surface.h"

namespace Sysmon {

class Terminal final : public Surface {
 public:
  /// True when standard output goes to a terminal.
  [[nodiscard]] static bool IsThere();

  /// Throws std::runtime_error for a terminal that cannot be used.
  Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() override;

  [[nodiscard]] Area Whole() const override;
  void Show() override;

  /// False when standard input comes from elsewhere.
  [[nodiscard]] bool HasKeys() const;
  /// The next known or writing key that was pressed; Key::None when there is none.
  [[nodiscard]] KeyPress ReadKey();
  /// Gives the terminal back for a while.
  void Suspend();
  /// Takes the terminal again, in its present size, and forgets what it shows.
  void Resume();

 private:
  void Draw(const Place& place, const std::wstring& text, Style style) override;
  void Blank() override;

  class Screen;
  std::unique_ptr<Screen> screen;
};

}  // namespace Sysmon
