// The driver's per-client debug directory of one process.
#include <string>

#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {

// Each memory domain of a GPU is a "vram_" file whose number carries the
// domain tag in its upper 16 bits and the GPU id in its lower 16 bits.
void WriteClientDirectory(const std::filesystem::path& root, const std::string& dir, const ProcessSpec& process) {
    WriteText(root, dir + "nspid", std::to_string(process.nspid) + "\n");
    WriteText(root, dir + "name", process.name + "\n");
    for (const auto& [number, bytes] : process.vram) {
        for (uint32_t tag = 0; tag < process.domains; ++tag) {
            const uint64_t n = static_cast<uint64_t>(number) + (static_cast<uint64_t>(tag) << 16);
            WriteText(root, dir + "vram_" + std::to_string(n), std::to_string(bytes + tag) + "\n");
        }
    }
    unsigned ring = 0;
    for (const uint32_t gpuId : process.ringbufGpuIds) {
        const std::string ringDir = dir + "ringbuf/" + std::to_string(ring++) + "/";
        WriteText(root, ringDir + "type", "0\n");
        WriteText(root, ringDir + "gpuid", std::to_string(gpuId) + "\n");
    }
}

}  // namespace dksml::vhost
