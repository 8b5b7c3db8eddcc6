/// Names of the library's classes, for headers that only pass them through.
#pragma once

namespace DataBinding {

class DataListener;
class DataSourceImpl;
class DataSourceProvider;
class DataSourceRegistrar;
class IBroadcaster;
class IDataContext;  // the application's own; declared here, never defined
class IDataListener;
class IDataSourceBase;
class IDataSourceConstructor;
class IDataSourceProvider;
class IDataSourceRegistrar;
class IReflectable;
struct IDataSource;

}  // namespace DataBinding
