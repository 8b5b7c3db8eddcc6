#include "DataBinding/MakeDataSource.h"

namespace DataBinding {

void DataSourceDeleter::operator()(IDataSource* source) const noexcept {
  try {
    IDataSource::Destroy(source);
  } catch (...) {  // a source that will not be destroyed is left alive
  }
}

}  // namespace DataBinding
