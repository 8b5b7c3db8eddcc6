// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/details/InboxCore.h"

#include <utility>

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding::details {

namespace {

constexpr wchar_t inboxName[] = L"list inbox";

}  // namespace

/// Takes the request back when it is delivered, or else when it is dropped.
class InboxCore::Event final : public PendingEventBase {
 public:
  explicit Event(const InboxCore& sender)
      : PendingEventBase(&sender), inbox(sender.self), isAsked(sender.isAsked) {}
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  ~Event() override {
    if (!isDispatched) isAsked->store(false);
  }

  DATABINDING_CATCHES_CANCELLATION void Dispatch(PolicyEventBroadcaster& broadcaster) override {
    isDispatched = true;
    isAsked->store(false);  // what is posted from now on may come too late for this delivery
    const auto isThere = broadcaster.GetWeakPtr();
    try {
      if (inbox) inbox->Deliver();
    }
    DATABINDING_PASS_CANCELLATION catch (...) {
      if (isThere) ReportFailure(broadcaster, inboxName);
    }
  }

 private:
  WeakPtr<InboxCore> inbox;
  std::shared_ptr<std::atomic<bool>> isAsked;
  bool isDispatched = false;
};

InboxCore::InboxCore() : self(AsWeakPtr()), isAsked(std::make_shared<std::atomic<bool>>(false)) {}

InboxCore::~InboxCore() {
  InvalidateWeakPtrs();
  if (!isAsked->load() || !IAppEventBroadcaster::HasInstance()) return;
  FirstFailure dropped;  // an event that there is no memory to drop does nothing
  dropped.Try([this] { IAppEventBroadcaster::GetInstance().DropEventsFrom(this); });
}

void InboxCore::Ask() const {
  if (isAsked->exchange(true)) return;
  std::shared_ptr<Event> event;
  try {
    event = std::make_shared<Event>(*this);
  } catch (...) {
    isAsked->store(false);
    throw;
  }
  IAppEventBroadcaster::GetInstance().QueueEvent(inboxName, std::move(event));
}

}  // namespace DataBinding::details
