// SPDX-License-Identifier: Apache-2.0
// This file holds the part of event binds that follows a data context. The callback that it runs
// may replace or end everything here, so each call that is under way is noted in a Run.

#include "DataBinding/framework/IEventBind.h"

#include <utility>
#include <vector>

#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding::Framework {

/// A Run is a call of the data context callback that is under way. It holds the callback meanwhile,
/// so that the event bind may be given another one, or end, inside the call.
class IEventBind::Run {
 public:
  explicit Run(IEventBind& ofBind)
      : bind(&ofBind), outer(ofBind.running), subject(ofBind.dataContextBind.get()) {
    ReserveRetired(this);
    callback = std::move(ofBind.dataContextCallback);
    ofBind.running = this;
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run() {
    if (bind == nullptr) return;
    bind->running = outer;
    if (!isReplaced) bind->dataContextCallback = std::move(callback);
  }

  void Call() { callback(bind, subject); }
  [[nodiscard]] bool IsReplaced() const noexcept { return isReplaced; }

  /// Makes room to retire one more bind.
  static void ReserveRetired(Run* innermost) {
    if (innermost == nullptr) return;
    Run& outermost = innermost->Outermost();
    outermost.retired.reserve(outermost.retired.size() + 1);
  }
  /// Tells all calls that bind and callback are being replaced. If one of the calls was made for
  /// the replaced bind, the outermost call keeps that bind; room for it has been made.
  static void Retire(Run* innermost, std::unique_ptr<IDataBind<IDataContext*>>& replaced) noexcept {
    for (Run* run = innermost; run != nullptr; run = run->outer) {
      run->isReplaced = true;
      if (replaced == nullptr || run->subject != replaced.get()) continue;
      run->Outermost().retired.push_back(std::move(replaced));
    }
  }
  static void ForgetBind(Run* innermost) noexcept {
    for (Run* run = innermost; run != nullptr; run = run->outer) run->bind = nullptr;
  }

 private:
  Run& Outermost() noexcept {
    Run* run = this;
    while (run->outer != nullptr) run = run->outer;
    return *run;
  }

  /// Ends the binds in the order in which they were replaced. The order in which a vector ends its
  /// elements depends on the C++ library.
  struct RetiredBinds : std::vector<std::unique_ptr<IDataBind<IDataContext*>>> {
    ~RetiredBinds() {
      for (auto& ended : *this) ended.reset();
    }
  };

  IEventBind* bind;
  Run* outer;
  IDataBind<IDataContext*>* subject;
  bool isReplaced = false;
  RetiredBinds retired;
  DataContextCallback callback;
};

IEventBind::IEventBind() = default;
IEventBind::IEventBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
                       const VtrStringT<wchar_t>& pathInSource)
    : IBaseBind(context, source, pathInSource) {}

IEventBind::~IEventBind() {
  EndDataContextBind();
  Run::ForgetBind(running);
}

Subscription IEventBind::SubscribeToChanges(const RepeatingCallback<void()>& callback) {
  return changes.Add(callback);
}

BindTypeEnum IEventBind::BindType() const { return BindTypeEnum::Event; }

void IEventBind::SetDataContextBind(std::unique_ptr<Framework::IDataBind<IDataContext*>> bind,
                                    DataContextCallback callback) {
  Run::ReserveRetired(running);
  if (bind == nullptr) {
    EndDataContextBind();
    return TellChange();
  }
  Run::Retire(running, dataContextBind);
  try {
    dataContextBind = std::move(bind);
    Run::ReserveRetired(running);
    dataContextCallback = std::move(callback);
    dataContextSubscription =
        dataContextBind->SubscribeToChanges([this] { OnDataContextChanged(); });
  } catch (...) {
    EndDataContextBind();
    FirstFailure dropped;
    dropped.Try([this] { TellChange(); });
    throw;
  }
  TellChange();
}

void IEventBind::EndDataContextBind() noexcept {
  dataContextSubscription.Cancel();
  dataContextCallback = nullptr;
  Run::Retire(running, dataContextBind);
  dataContextBind.reset();
}

// The walk knows when the callback has ended this bind: then it comes to no further callback.
void IEventBind::OnDataContextChanged() {
  details::CallbackWalk walk(changes.Core());
  FirstFailure failure;
  failure.Try([this] { RunDataContextCallback(); });
  while (!failure.Try([&walk] { CallbackList<>::CallRest(walk); })) {
  }
  failure.Rethrow();
}

void IEventBind::RunDataContextCallback() {
  if (running != nullptr && !running->IsReplaced()) return running->Call();
  if (!dataContextCallback) return;
  Run run(*this);
  run.Call();
}

}  // namespace DataBinding::Framework
