// SPDX-License-Identifier: Apache-2.0
/// A TypedEdit holds the functions and values of an edit session, for values of type T in a widget
/// that holds a W. EditCore says when they are used.
///
/// Each function of the application may end the session or the bind. So EditCore asks IsJoined
/// before each step that touches the bind, and a step of several calls asks in between.
#pragma once

#include <concepts>
#include <optional>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/framework/TextConverter.h"
#include "DataBinding/framework/details/EditCore.h"

namespace DataBinding::details {

template <class T, class W>
class TypedEdit final : public EditCore {
 public:
  TypedEdit(Framework::IDataBind<T>& joined, RepeatingCallback<W()> reader,
            RepeatingCallback<void(const W&)> writer, Converter<T, W> conversion,
            RepeatingCallback<VtrString(const T&)> check)
      : EditCore(joined, joined.GetLiveness()),
        bind(joined),
        read(std::move(reader)),
        write(std::move(writer)),
        converter(std::move(conversion)),
        validate(std::move(check)) {}

 private:
  bool Read() override {
    if (read.IsCancelled()) return false;
    held.reset();  // of no use to what the function may cause
    held.emplace(read());
    return true;
  }
  SetResult Parse() override {
    if (converter.parse.IsCancelled()) return Refused(L"The converter is gone.");
    PropertyValue<T> made = converter.parse(*held);
    if (!made) return Refused(made.text);
    parsed.emplace(std::move(*made));
    if (!IsJoined()) return {};
    const VtrString reason = ReasonAgainst(*parsed, validate);
    return reason.IsEmpty() ? SetResult() : Refused(reason);
  }
  SetResult CheckParsed() override { return bind.Check(*parsed); }
  SetResult SetParsed() override { return bind.Set(*parsed); }
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) override {
    return bind.SubscribeToChecks(callback);
  }
  bool IsReadAsShown() const override { return held && AreSame(*held, shown); }
  bool IsPresentAsShown() override {
    const PropertyValue<T> present = bind.Get();
    if (present && AreSame(*present, last)) return true;
    const auto form = FormOf(present);
    return form && AreSame(*form, shown);
  }
  bool IsPresentAsRead() override {
    const auto form = FormOf(bind.Get());
    return form && AreSame(*form, held);
  }
  bool IsPresentAsParsed() override {
    const PropertyValue<T> present = bind.Get();
    if constexpr (std::equality_comparable<T>) return present && *present == *parsed;
    return false;
  }
  void NoteReadAsShown(bool isParsed) override {
    Note(*held);
    last.reset();
    if (isParsed) last.emplace(*parsed);
  }
  void ForgetShown() override {
    shown.reset();
    last.reset();
  }
  Present ShowPresent() override {
    PropertyValue<T> present = bind.Get();
    if (!present) return Present::Nothing;
    if (converter.show.IsCancelled()) return Present::NoConverter;
    written.emplace(converter.show(*present));
    last.emplace(std::move(*present));
    return Present::Value;
  }
  /// The function may have the bind change, and then others are written meanwhile.
  void Write() override {
    const W form = std::move(*written);
    Note(form);
    write(form);
  }

  static SetResult Refused(const VtrString& reason) {
    return {false, PropertyError::Refused, reason, reason};
  }
  [[nodiscard]] std::optional<W> FormOf(const PropertyValue<T>& present) const {
    if (!present || converter.show.IsCancelled()) return std::nullopt;
    return converter.show(*present);
  }
  /// A value that cannot be copied or compared counts as another one each time.
  ///@{
  void Note([[maybe_unused]] const W& form) {
    if constexpr (std::copy_constructible<W>) shown.emplace(form);
  }
  template <class Some>
  [[nodiscard]] static bool AreSame([[maybe_unused]] const Some& one,
                                    [[maybe_unused]] const std::optional<Some>& other) {
    if constexpr (std::equality_comparable<Some>) return other && *other == one;
    return false;
  }
  ///@}

  Framework::IDataBind<T>& bind;
  RepeatingCallback<W()> read;
  RepeatingCallback<void(const W&)> write;
  Converter<T, W> converter;
  RepeatingCallback<VtrString(const T&)> validate;
  std::optional<T> last;     // the value that the widget was shown last
  std::optional<W> shown;    // its form
  std::optional<W> held;     // what was read
  std::optional<W> written;  // what Write is to show
  std::optional<T> parsed;
};

}  // namespace DataBinding::details
