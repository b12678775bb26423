// Creates the per-device driver data handler.
#pragma once

#include <memory>

#include "driver/dk_driver_data_handler.h"

namespace dksml {

class DkDriverDataHandlerFactory {
public:
    static std::shared_ptr<IDkDriverDataHandler> CreateDriverDataHandler();
};

}  // namespace dksml
