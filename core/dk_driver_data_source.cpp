// How a device is handed to its driver data handler: the handler lives in the
// driver layer and knows nothing of devices, so the device layer turns a
// device into the paths and directories the handler reads through.
#include <memory>
#include <utility>

#include "core/dk_host_root.h"
#include "core/dk_system_manager.h"
#include "core/idk_device.h"
#include "driver/dk_driver_data_handler.h"

namespace dksml {
namespace {

// Places under the root in force at the call, so a handler follows the host
// root as the register paths always have.
std::string PlaceDir(DkRequestPlace place) {
    switch (place) {
        case DkRequestPlace::Debug: return HostPath("/sys/kernel/debug/dkcd");
        case DkRequestPlace::LayoutNodes: return HostPath(DkSystemManager::GetInstance().GetLayoutPath());
        case DkRequestPlace::Firmware: return HostPath("/sys/firmware/dmi/tables");
        case DkRequestPlace::Smi:
        case DkRequestPlace::Function:
        case DkRequestPlace::Node: break;  // kept open by the device
    }
    return {};
}

}  // namespace

void DkLinuxDriverDataHandler::UpdateDeviceProperties(IDkDevice* device) {
    if (device == nullptr) return;
    DkDriverDataSource source;
    source.smiPath0 = device->GetSmiPath(0);
    source.smiPath1 = device->GetSmiPath(1);
    source.nodePath = device->GetNodePath();
    source.functionPath = HostPath(device->GetDeviceDir());
    // The device's own descriptors, kept alive with everything they belong to.
    source.dirs = device->GetDeviceDirs();
    source.placeDir = PlaceDir;
    Attach(std::move(source));
}

}  // namespace dksml
