// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <locale>
#include <string>

#include <DataBinding/DataBinding.h>

using namespace DataBinding;

enum class Mode { Off, Eco, Full };
constexpr auto NamesOf(const Mode* /*type*/) {
  return EnumNames<Mode>({{Mode::Off, L"Off"}, {Mode::Eco, L"Eco"}, {Mode::Full, L"Full"}});
}

struct Celsius {
  double degrees = 0;
  bool operator==(const Celsius&) const = default;
};
template <>
struct DataBinding::ValueForm<Celsius> {
  static constexpr auto kind = ValueKind::Double;
  static Value ToValue(const Celsius& heat) { return heat.degrees; }
  static PropertyValue<Celsius> FromValue(const Value& value) {
    const auto degrees = DataBinding::FromValue<double>(value);
    if (!degrees) return {{}, degrees.error, degrees.text};
    return {Celsius{*degrees}, PropertyError::None, {}};
  }
};

struct Curve {};  // has no form

class Heater : public NamedDataSource {
 public:
  Heater() : NamedDataSource(L"Heater") { low.ValidatorReads(high); }

  Property<Mode> mode{this, L"Mode", Mode::Eco};
  Property<Celsius> low{
      this, L"Low", {16}, {.validate = [this](auto& t) { return Why(t, *high); }}};
  Property<Celsius> high{
      this, L"High", {22}, {.validate = [this](auto& t) { return Why(*low, t); }}, low};
  Property<Curve> curve{this, L"Curve"};

 private:
  static const wchar_t* Why(const Celsius& lower, const Celsius& upper) {
    return lower.degrees < upper.degrees ? L"" : L"Low must be below High.";
  }
};

void WriteOut(IDataSource* source) {
  for (const VtrString& name : source->GetNamesInOrder()) {
    const AnyPropertyRef property(source, name);
    std::cout << name << " = " << property.ReadText();
    if (const auto value = property.Read(); !value) std::cout << " (" << value << ')';
    std::cout << '\n';
  }
}

void Set(Framework::AnyBind& bind, const Value& value) {
  const SetResult result = bind.Write(value);
  std::cout << bind.Path() << " to " << value << ": " << (result.changed ? L"changed" : result.text)
            << '\n';
}

void EditByName(IDataSourceProvider& scope) {
  Framework::AnyBind mode(&scope, L"Heater", L"Mode");
  Framework::AnyBind low(&scope, L"Heater", L"Low");
  Set(mode, L"Full");
  Set(mode, L"Warm");
  Set(low, 17);
  Set(low, L"17");
  if (low.WriteText(L"17.5").changed) std::cout << "Low is " << low.Read() << '\n';
  std::cout << "Low of 25: " << low.CheckText(L"25").reason << '\n';
}

void TypeTooMuch(IDataSourceProvider& scope) {
  Framework::AnyBind low(&scope, L"Heater", L"Low");
  Framework::AnyBind high(&scope, L"Heater", L"High");
  Value box;
  auto join = TwoWay(
      low, [&] { return box; }, [&](const Value& shown) { box = shown; });
  join.WhenAskedAgain([](const SetResult& result) {
    std::cout << "asked again: " << (result.IsAccepted() ? L"it fits" : result.reason) << '\n';
  });

  box = 30;
  std::cout << "typed 30: " << join.Commit().reason << '\n';
  high.Write(28);
  high.Write(35);
}

void EditADraft(Heater& heater) {
  const auto draft = MakeDataSource<Heater>(nullptr);
  CopyProperties(&heater, draft.get());
  draft->high.Set({60});
  draft->low.Set({50});

  const CopyResult saved = CopyProperties(draft.get(), &heater);
  std::cout << "saved: " << saved.changed << ", now from " << heater.low->degrees << '\n';
}

/// A country's marks, as a locale that need not be installed.
struct Commas : std::numpunct<wchar_t> {
  wchar_t do_decimal_point() const override { return L','; }
  wchar_t do_thousands_sep() const override { return L'.'; }
  std::string do_grouping() const override { return "\3"; }
};

void ShowNumbers() {
  const auto dial = NumberConverter<double, int>();  // a double on a widget of int
  std::cout << "dial: " << dial.show(21.6) << '\n';
  const auto box = NumberConverter<int, double>();
  std::cout << "box: " << box.parse(21.5) << '\n';

  const auto field = LocaleConverter<double>(std::locale(std::locale::classic(), new Commas));
  std::cout << "field: " << field.show(1234.5) << '\n';
  std::cout << "typed 1.234,75: " << field.parse(L"1.234,75") << '\n';
  std::cout << "typed 1.5: " << field.parse(L"1.5") << '\n';
}

int main() {
  DataSourceProvider scope(nullptr, L"house", nullptr);
  auto& heater = Emplace<Heater>(scope);
  WriteOut(&heater);
  EditByName(scope);
  TypeTooMuch(scope);
  EditADraft(heater);
  ShowNumbers();
}
