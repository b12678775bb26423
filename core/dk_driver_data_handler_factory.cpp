#include "core/dk_driver_data_handler_factory.h"

namespace dksml {

std::shared_ptr<IDkDriverDataHandler> DkDriverDataHandlerFactory::CreateDriverDataHandler() {
    return std::make_shared<DkLinuxDriverDataHandler>();
}

}  // namespace dksml
