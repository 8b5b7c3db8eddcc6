// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <iostream>

#include <DataBinding/DataBinding.h>

#include "plug-ins/Events.h"
#include "plug-ins/Module.h"

using namespace DataBinding;

void Run(IDataSourceProvider& root) {
  const Framework::DataBind<double> level(&root, L"Tide", L"Level");
  const Subscription turned =
      tideTurned.Subscribe([](double at) { std::cout << "the tide turned at " << at << '\n'; });
  {
    const Module tides(TIDES_MODULE);
    tides.Call("StartPlugin");
    IAppEventBroadcaster::GetInstance().DispatchPendingEvents();

    root.GetDataSource(L"Tide");  // built by code of the plug-in
    std::cout << "level: " << *level.Get() << '\n';
    tides.Call("StopPlugin");
  }  // its code is gone
  std::cout << level.Get() << '\n';
}

int main() {
  IDataSourceRegistrar& registrar = IDataSourceRegistrar::GetInstance();
  registrar.Initialize();
  try {
    Run(*registrar.GetRootProvider());
  } catch (const std::exception& failure) {
    std::cout << failure.what() << '\n';
  }
  registrar.Shutdown();
}
