// SPDX-License-Identifier: Apache-2.0
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include <DataBinding/foundation/Event.h>
#include <DataBinding/framework/Formatters.h>
#include <DataBinding/framework/IEventBind.h>
#include <gtest/gtest.h>

namespace DataBinding::Framework {
namespace {

/// A data context bind that notifies when it is told to, and notes its end and its subscribers'.
class ContextBind final : public IDataBind<IDataContext*> {
 public:
  ContextBind(char noteTag, std::string& notes) : tag(noteTag), log(notes) {}
  ~ContextBind() override { log.append({'~', tag, ' '}); }
  void Connect(IDataSourceProvider* /*provider*/) override {}
  BindTypeEnum BindType() const override { return BindTypeEnum::Data; }
  BindStatus Status() const override { return {}; }
  bool IsReadOnly() const override { return false; }
  bool HasValue() const override { return false; }
  PropertyValue<IDataContext*> Get() const override { return {shown, PropertyError::None, {}}; }
  SetResult Set(IDataContext* /*value*/) override { return {}; }
  Subscription SubscribeToChanges(const ChangeCallback& callback) override {
    if (tag == '!') throw std::runtime_error("refused");
    auto inner = std::make_shared<Subscription>(changed.Subscribe(callback));
    return Subscription([inner, note = std::string{'-', tag, ' '}, notes = &log] {
      notes->append(note);
      inner->Cancel();
    });
  }
  void Notify() { changed.Raise(BindChange::Value); }

  std::optional<IDataContext*> shown;

 private:
  char tag;
  std::string& log;
  Event<void(BindChange)> changed;
};

class Button final : public IEventBind {
 public:
  using IEventBind::DataContextBind;
  using IEventBind::IEventBind;
  void Connect(IDataSourceProvider* /*provider*/) override {}
  BindStatus Status() const override { return {}; }
  VtrString EventName() const override { return Path(); }
  bool CanRaise() const override { return false; }
  bool Raise() override { return false; }
  IDataContext* DataContext() const override { return nullptr; }
};

class EventBinds : public testing::Test {
 protected:
  /// Notes "a" when called for the button and its bind a, then runs the hook; its own end is ".".
  IEventBind::DataContextCallback Noting(char tag, RepeatingCallback<void()> then = {}) {
    std::shared_ptr<std::string> ending(&log, [](std::string* notes) { notes->append(". "); });
    return [this, tag, then = std::move(then), ending = std::move(ending)](auto* bind, auto* data) {
      const bool isRight = bind == expected && data == binds[tag];
      log.append({isRight ? tag : '?', ' '});
      then();
      log.append(")");
    };
  }
  std::unique_ptr<ContextBind> Make(char tag) {
    auto made = std::make_unique<ContextBind>(tag, log);
    binds[tag] = made.get();
    return made;
  }
  void Set(char tag, RepeatingCallback<void()> then = {}) {
    button->SetDataContextBind(Make(tag), Noting(tag, std::move(then)));
  }
  void Notify(char tag) { binds[tag]->Notify(); }
  std::string Notes() { return std::exchange(log, {}); }

  std::string log;
  std::map<char, ContextBind*> binds;
  std::unique_ptr<Button> button = std::make_unique<Button>();
  Button* expected = button.get();
};

TEST(Binds, TrackingNameKeepsTheSeparatorsOfWhatItLeavesOut) {
  struct Case {
    const wchar_t *context, *source, *path, *name;
  };

  for (const Case& each : {Case{L"", L"", L"", L""},
                           {L"Ctx", L"Src", L"a.b", L"Ctx::Src::a.b"},
                           {L"", L"Src", L"a", L"::Src::a"},
                           {L"Ctx", L"", L"a", L"Ctx::a"},
                           {nullDataMarker, nullDataMarker, nullPathMarker, L""},
                           {L"VtrFrmWk::NullPath", L"vtrfrmwk::nulldata", L"VtrFrmWk::NullData",
                            L"VtrFrmWk::NullPath::vtrfrmwk::nulldata::VtrFrmWk::NullData"}}) {
    EXPECT_EQ(Button(each.context, each.source, each.path).GetTrackingName(), each.name);
  }
}

TEST(Binds, OfOnesOwnTellTheValueThatTheyAnswerWith) {
  std::string log;
  ContextBind bind('a', log);
  const auto telling = bind.SubscribeToValue([&](IDataContext* const& now) {
    EXPECT_EQ(now, nullptr);
    log += "told";
  });
  const auto none = bind.SubscribeToValue({});

  bind.Notify();
  bind.shown = nullptr;
  bind.Notify();

  EXPECT_EQ(log, "told");
}

TEST_F(EventBinds, CallbackHearsEachNotificationUntilTheBindIsReplacedOrEnds) {
  button->SetDataContextBind(Make('a'), nullptr);
  Notify('a');
  Set('b');
  EXPECT_EQ(Notes(), "~a -a ");

  Notify('b');
  Notify('b');
  EXPECT_EQ(Notes(), "b )b )");

  Set('c');
  EXPECT_EQ(Notes(), "~b . -b ");

  button->SetDataContextBind(nullptr, Noting('?'));
  EXPECT_EQ(Notes(), "-c . ~c . ");
  EXPECT_EQ(button->DataContextBind(), nullptr);

  Set('d');
  button.reset();
  EXPECT_EQ(Notes(), "-d . ~d ") << "subscription, callback, bind";
}

TEST_F(EventBinds, CallbackMayReplaceItsBindWhichStaysUntilItReturns) {
  Set('a', [this] {
    Set('b');
    Notify('b');
    Set('c');
  });
  Notify('a');

  EXPECT_EQ(Notes(), "a -a b )~b . -b ). ~a ");

  Notify('c');
  EXPECT_EQ(Notes(), "c )");
}

TEST_F(EventBinds, CallbackGoesOnWhenItHasEndedItsEventBind) {
  for (const bool isReplacedFirst : {false, true}) {
    Set('a', [this, isReplacedFirst] {
      if (isReplacedFirst) Set('b');
      button.reset();
    });
    Notify('a');
    EXPECT_EQ(Notes(), isReplacedFirst ? "a -a -b . ~b ). ~a " : "a -a ). ~a ");
    button = std::make_unique<Button>();
    expected = button.get();
  }
}

TEST_F(EventBinds, BindsStayUntilTheOutermostNotificationReturns) {
  int depth = 0;

  Set('a', [&] {
    if (++depth == 1) return Notify('a');
    Set('b', [this] { Set('c'); });
    Notify('b');
    log += "| ";
  });
  Notify('a');

  EXPECT_EQ(Notes(), "a a -a b -b ). | )). ~a ~b ");

  Notify('c');
  EXPECT_EQ(Notes(), "c )");
}

TEST_F(EventBinds, BindThatCannotBeSubscribedToEndsTheFormerOneAll) {
  Set('a', [this] { EXPECT_THROW(Set('!'), std::runtime_error), Notify('a'); });
  Notify('a');
  EXPECT_EQ(Notes(), "a -a . ~! ). ~a ");
  EXPECT_EQ(button->DataContextBind(), nullptr);
}

TEST_F(EventBinds, CallbackThatThrowsIsCalledAgain) {
  Set('a', [] { throw std::runtime_error("refused"); });
  EXPECT_THROW(Notify('a'), std::runtime_error);
  EXPECT_THROW(Notify('a'), std::runtime_error);
  EXPECT_EQ(Notes(), "a a ");
}

TEST(Results, GoToStreamsAsTheirValueOrTheirText) {
  const SetResult refused{.error = PropertyError::Refused, .text = L"größer als 9"};
  const BindStatus absent{BindStatus::State::NoSource, L"weg"};
  const PropertyValue<double> value{2.25, PropertyError::None, {}};
  const PropertyValue<VtrString> none{{}, PropertyError::Absent, L"fehlt"};

  std::ostringstream out;
  out << refused << SetResult() << ',' << absent << ',' << value << ',' << none;
  EXPECT_EQ(out.str(), "größer als 9,weg,2.25,fehlt");
#if defined(__cpp_lib_format)
  EXPECT_EQ(std::format("{}{},{:>4},{:.1f},{:>9}", refused, SetResult(), absent, value, none),
            "größer als 9, weg,2.2,fehlt");
#endif
}

}  // namespace
}  // namespace DataBinding::Framework
