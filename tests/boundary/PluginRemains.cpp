// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/AppEventListener.h"
#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/property/DataSourceConstructor.h"
#include "DataBinding/property/Property.h"
#include "Shared.h"

namespace Boundary {

using namespace DataBinding;

namespace {

class Left : public NamedDataSource {
 public:
  Left() : NamedDataSource(L"Left") {}
  Property<int> Value{this, L"Value", 0};
};

class LeftListener : public DataListener, public AppEventListener {
 public:
  LeftListener() {
    AddDataListener(L"Left", L"Value", [this] { read.Raise({++heard, L"left"}); });
    SetDataSourceProvider(IDataSourceRegistrar::GetInstance().GetRootProvider());
  }
  ~LeftListener() override { SetDataSourceProvider(nullptr); }
  void InitEventMap() override {
    if (!IsEventMapInitialised()) On(read, &LeftListener::Take);
    AppEventListener::InitEventMap();
  }
  void Take(const Reading& reading) { heard += reading.value; }
  int heard = 0;

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
};

/// Ends when the module is unloaded, and takes back by itself what refers to this module's code.
struct Remains {
  ~Remains() {
    IAppEventBroadcaster::GetInstance().DropEventsFrom(ThisModule());
    IDataSourceRegistrar::GetInstance().Shutdown();
  }
  bool initialised = (IDataSourceRegistrar::GetInstance().Initialize(), true);
  DataSourceConstructor<Left> constructor{L"Left", L"root"};
  IDataSource* source =
      IDataSourceRegistrar::GetInstance().GetRootProvider()->GetDataSource(L"Left");
  LeftListener listener;
  Subscription heard = read.Subscribe([this](const Reading&) { ++listener.heard; });
  EventHold hold{AppEvent<>(L"Held").Name()};
};

}  // namespace

/// Uses all of the library, and gives how often that was heard. Nothing is ended here: neither
/// these objects nor the singletons, nor the event that is queued last.
extern "C" BOUNDARY_API int LeaveEverythingAlive() {
  static Remains remains;
  Meter::GetInstance().count = 1;
  SetProperty(remains.source, L"Value", remains.listener.heard + 1);
  IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
  read.Raise({1, L"queued"});
  return remains.listener.heard;
}

}  // namespace Boundary
