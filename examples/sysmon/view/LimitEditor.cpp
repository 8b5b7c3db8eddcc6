// SPDX-License-Identifier: Apache-2.0
#include "LimitEditor.h"

#include <cwctype>
#include <string_view>
#include <utility>

namespace Sysmon {

namespace {

constexpr int mostCharacters = 16;

/// Refuses a limit that the line could not show. The source checks how high a limit may be.
VtrString CheckLimit(const double& limit) {
  const bool isTooFine = limit != 0 && limit > -0.01 && limit < 0.01;
  return isTooFine ? L"A limit finer than 0.01 cannot be shown." : L"";
}

}  // namespace

LimitEditor::LimitEditor(IDataSourceProvider& root, const VtrString& limitName)
    : bind(&root, limitSource, limitName),
      join(DataBinding::TwoWay(
          bind, [this] { return text; }, [this](const VtrString& shown) { Change(shown); },
          DataBinding::TextConverter<double>(), &CheckLimit)) {}

void LimitEditor::Change(VtrString newText) {
  text = std::move(newText);
  reason = {};
}

void LimitEditor::Insert(wchar_t character) {
  // On Windows a tab is both a control character and a printable one.
  const bool isShown =
      std::iswprint(std::wint_t(character)) != 0 && std::iswcntrl(std::wint_t(character)) == 0;
  if (isShown && text.GetLength() < mostCharacters) Change(text + std::wstring_view(&character, 1));
}

void LimitEditor::Erase() {
  const std::wstring_view all = text;
  if (!all.empty()) Change(VtrString(all.substr(0, all.size() - 1)));
}

bool LimitEditor::Commit() {
  const DataBinding::SetResult result = join.Commit();
  reason = result.text;
  return result.IsAccepted();
}

}  // namespace Sysmon
