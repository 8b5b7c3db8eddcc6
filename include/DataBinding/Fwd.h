// SPDX-License-Identifier: Apache-2.0
/// Names of the library's classes, for headers that only pass them through.
#pragma once

namespace DataBinding {

template <class... Args>
class AppEvent;
class AppEventListener;
class DataListener;
class DataSourceImpl;
class DataSourceProvider;
class DataSourceRegistrar;
class IAppEventBroadcaster;
class IAppEventListener;
class IBroadcaster;
class IDataContext;  // the application's own; declared here, never defined
class IDataListener;
class IDataSourceBase;
class IDataSourceConstructor;
class IDataSourceProvider;
class IDataSourceRegistrar;
class IReflectable;
class ScopedListener;
class Value;
class WAppEventRegistrar;
struct IDataSource;

namespace AEB {
struct ThreadingPolicy;
struct UpdatePolicy;
}  // namespace AEB

namespace Framework {
class IBaseBind;
class IBaseDataBind;
class IEventBind;
template <class T>
class IDataBind;
}  // namespace Framework

}  // namespace DataBinding
