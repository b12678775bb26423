// The GPU-to-GPU interconnect (DravikLink): per-link bandwidth, traffic and
// error counters, port information and states, link topology, and the on/off
// switch of a die's interconnect. Device forms combine both dies on a
// multi-chip device and act on die 0 otherwise.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkDravLink {
public:
    virtual ~DkDravLink() = default;

    virtual DkSmlReturn GetDravLinkBandwidth(IDkDevice* device, DkSmlDravikLinkType type, uint32_t* count, DkSmlDravikLinkBandwidth* links);
    virtual DkSmlReturn GetDieDravLinkBandwidth(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkType type, uint32_t* count, DkSmlDravikLinkBandwidth* links);
    virtual DkSmlReturn GetDravLinkTrafficStat(IDkDevice* device, DkSmlDravikLinkType type, uint32_t* count, DkSmlDravikLinkTrafficStat* links);
    virtual DkSmlReturn GetDieDravLinkTrafficStat(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkType type, uint32_t* count, DkSmlDravikLinkTrafficStat* links);
    virtual DkSmlReturn GetDravLinkAer(IDkDevice* device, uint32_t* count, DkSmlDravikLinkAer* links);
    virtual DkSmlReturn GetDieDravLinkAer(IDkDevice* device, unsigned int dieId, uint32_t* count, DkSmlDravikLinkAer* links);
    virtual DkSmlReturn GetDravLinkInfo(IDkDevice* device, DkSmlDravikLinkInfo* info);
    virtual DkSmlReturn GetDieDravLinkInfo(IDkDevice* device, unsigned int dieId, DkSmlDravikLinkInfo* info);
    virtual DkSmlReturn GetDklkInfo(IDkDevice* device, DkSmlDravikLinkInfo_v2* info);
    virtual DkSmlReturn GetDravLinkTopo(IDkDevice* device, uint32_t* count, DkSmlDravikLinkTopo* ports);
    virtual DkSmlReturn GetDieDravLinkTopo(IDkDevice* device, unsigned int dieId, uint32_t* count, DkSmlDravikLinkTopo* ports);
    virtual DkSmlReturn GetDravikLinkState(IDkDevice* device, uint32_t* state, char* text, uint32_t* size);
    virtual DkSmlReturn GetDieDravikLinkState(IDkDevice* device, unsigned int dieId, uint32_t* state, char* text, uint32_t* size);
    virtual DkSmlReturn SetDravikLinkState(IDkDevice* device, uint32_t state);
    virtual DkSmlReturn SetDieDravikLinkState(IDkDevice* device, unsigned int dieId, uint32_t state);
    virtual DkSmlReturn GetDravikLinkPortState(IDkDevice* device, uint32_t* states, uint32_t* count);
    virtual DkSmlReturn GetDieDravikLinkPortState(IDkDevice* device, unsigned int dieId, uint32_t* states, uint32_t* count);
};

}  // namespace dksml
