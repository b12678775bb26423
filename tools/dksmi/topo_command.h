// `dksmi topo`: the GPU/NIC topology matrix with its legend, and the CPU and
// NUMA affinity of every GPU.
#pragma once

namespace dksmi {

// argv[0] is "topo"; returns the exit code.
int RunTopo(int argc, char** argv);

}  // namespace dksmi
