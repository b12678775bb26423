// Interconnect (DravikLink) exports.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/links/dk_links.h"

using namespace dksml;

namespace {

constexpr auto c_links = &DkServiceManager::GetDkDravLink;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetDravikLinkBandwidth(uint32_t deviceIndex, DkSmlDravikLinkType type, uint32_t* count,
                                                  DkSmlDravikLinkBandwidth* links) {
    if (AnyNull(count, links)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravLinkBandwidth(d, type, count, links); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkTrafficStat(uint32_t deviceIndex, DkSmlDravikLinkType type, uint32_t* count,
                                                    DkSmlDravikLinkTrafficStat* links) {
    if (AnyNull(count, links)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravLinkTrafficStat(d, type, count, links); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkAer(uint32_t deviceIndex, uint32_t* count, DkSmlDravikLinkAer* links) {
    if (AnyNull(count, links)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravLinkAer(d, count, links); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkInfo(uint32_t deviceIndex, DkSmlDravikLinkInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links, [&](DkDravLink& s, IDkDevice* d) { return s.GetDravLinkInfo(d, info); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkInfo_v2(uint32_t deviceIndex, DkSmlDravikLinkInfo_v2* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links, [&](DkDravLink& s, IDkDevice* d) { return s.GetDklkInfo(d, info); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkState(uint32_t deviceIndex, uint32_t* state, char* text, uint32_t* size) {
    if (AnyNull(state, text, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravikLinkState(d, state, text, size); });
}

DKSML_API DkSmlReturn dkSmlSetDravikLinkState(uint32_t deviceIndex, uint32_t state) {
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.SetDravikLinkState(d, state); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkPortState(uint32_t deviceIndex, uint32_t* count, uint32_t* states) {
    if (AnyNull(count, states)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravikLinkPortState(d, states, count); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkTopo(uint32_t deviceIndex, uint32_t* count, DkSmlDravikLinkTopo* ports) {
    if (AnyNull(count, ports)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_links,
                       [&](DkDravLink& s, IDkDevice* d) { return s.GetDravLinkTopo(d, count, ports); });
}

}  // extern "C"
