// The request table: driver request number -> attribute file name.
//
// Two constant lists (named requests, reserved numbers) feed both the ordered map of the contract
// (m_driverInterfaceMap) and a flat array indexed by opcode that the hot path
// and static initialisers of other translation units can use safely.
#include "driver/dk_driver_interface_manager.h"

#include <array>
#include <string_view>
#include <utility>

namespace dksml {
namespace {

struct DkInterfaceEntry {
    dravik_smi_opcode op;
    std::string_view name;
    DkRequestPlace place = DkRequestPlace::Smi;
};

// Named requests, in opcode order.
constexpr DkInterfaceEntry c_namedRequests[] = {
    {DRAVIK_SMI_APUSEAGESWITCH, "apuseageswitch"},
    {DRAVIK_SMI_CAPABILITY, "capability"},
    {DRAVIK_SMI_CGCGCONTROL, "cgcgcontrol"},
    {DRAVIK_SMI_COUNTERCTL, "counterctl"},
    {DRAVIK_SMI_CTFCTRL, "ctfctrl"},
    {DRAVIK_SMI_DEVICEINFO, "deviceinfo"},
    {DRAVIK_SMI_DIDTCTL, "didtctl"},
    {DRAVIK_SMI_DPMCOUNT, "dpmcount"},
    {DRAVIK_SMI_DPMCTL, "dpmctl"},
    {DRAVIK_SMI_DPMFEATURE, "dpmfeature"},
    {DRAVIK_SMI_DPMUSAGE, "dpmusage"},
    {DRAVIK_SMI_DUMPPPTABLE, "dumppptable"},
    {DRAVIK_SMI_EEPROM_MARGIN_CTRL, "eeprom_margin_ctrl"},
    {DRAVIK_SMI_FAN_CTRL, "fan_ctrl"},
    {DRAVIK_SMI_FORCEWARMRESET, "forcewarmreset"},
    {DRAVIK_SMI_GET_ECC_SCRUB, "get_ecc_scrub"},
    {DRAVIK_SMI_HBMECCCTRL, "hbmeccctrl"},
    {DRAVIK_SMI_IPPOWERSTATE, "ippowerstate"},
    {DRAVIK_SMI_LOGLEVEL, "loglevel"},
    {DRAVIK_SMI_LP2COUNTER, "lp2counter"},
    {DRAVIK_SMI_MCCTL, "mcctl"},
    {DRAVIK_SMI_DRAVLINK_CTRL, "dravlink_ctrl"},
    {DRAVIK_SMI_DVLKI_TRAFFIC_STAT, "dvlki_traffic_stat"},
    {DRAVIK_SMI_DVLKT_TRAFFIC_STAT, "dvlkt_traffic_stat"},
    {DRAVIK_SMI_MGCGCONTROL, "mgcgcontrol"},
    {DRAVIK_SMI_PCI_AER_CE, "pci_aer_ce"},
    {DRAVIK_SMI_PCI_AER_UE, "pci_aer_ue"},
    {DRAVIK_SMI_PCICURRENTLINKSPEED, "pcicurrentlinkspeed"},
    {DRAVIK_SMI_PCICURRENTLINKWIDTH, "pcicurrentlinkwidth"},
    {DRAVIK_SMI_PCI_DBE, "pci_dbe"},
    {DRAVIK_SMI_PCI_MMIO_INV, "pci_mmio_inv"},
    {DRAVIK_SMI_PCIPOWERSTATE, "pcipowerstate"},
    {DRAVIK_SMI_PCI_SYNFLD, "pci_synfld"},
    {DRAVIK_SMI_PMDECSRC, "pmdecsrc"},
    {DRAVIK_SMI_POWERTEST, "powertest"},
    {DRAVIK_SMI_POW_PERSIST_CTRL, "pow_persist_ctrl"},
    {DRAVIK_SMI_QSFPSTATUS, "qsfpstatus"},
    {DRAVIK_SMI_RAS_SHOW_MEM_ECC_INFO, "ras_show_mem_ecc_info"},
    {DRAVIK_SMI_RASSHOWCOUNT, "rasshowcount"},
    {DRAVIK_SMI_RASSHOWSTATUS, "rasshowstatus"},
    {DRAVIK_SMI_READPD, "readpd"},
    {DRAVIK_SMI_SET_ECC_SCRUB, "set_ecc_scrub"},
    {DRAVIK_SMI_SETPERFLEVEL, "setperflevel"},
    {DRAVIK_SMI_SHOWBOARDPOWERINFO, "showboardpowerinfo"},
    {DRAVIK_SMI_SHOWBOARDTYPE, "showboardtype"},
    {DRAVIK_SMI_SHOWCCXUSE, "showccxuse"},
    {DRAVIK_SMI_SHOWCLKRANGE, "showclkrange"},
    {DRAVIK_SMI_SHOWCLOCKS, "showclocks"},
    {DRAVIK_SMI_SHOWDMABANDWIDTH, "showdmabandwidth"},
    {DRAVIK_SMI_SHOWDRIVERVERSION, "showdriverversion"},
    {DRAVIK_SMI_SHOWE2PROMINFO, "showe2prominfo"},
    {DRAVIK_SMI_SHOWFUSEINFO, "showfuseinfo"},
    {DRAVIK_SMI_SHOWFWINFO, "showfwinfo"},
    {DRAVIK_SMI_SHOWHBMTRAINSTATUS, "showhbmtrainstatus"},
    {DRAVIK_SMI_SHOWISAVERSION, "showisaversion"},
    {DRAVIK_SMI_SHOWMCAC, "showmcac"},
    {DRAVIK_SMI_SHOWMCBANDWIDTH, "showmcbandwidth"},
    {DRAVIK_SMI_SHOWMEMINFO, "showmeminfo"},
    {DRAVIK_SMI_SHOWMEMUSE, "showmemuse"},
    {DRAVIK_SMI_SHOWDVLKAER, "showdvlkaer"},
    {DRAVIK_SMI_SHOWDVLKIBANDWIDTH, "showdvlkibandwidth"},
    {DRAVIK_SMI_SHOWDVLKSPEED, "showdvlkspeed"},
    {DRAVIK_SMI_SHOWDVLKSTATUS, "showdvlkstatus"},
    {DRAVIK_SMI_SHOWDVLKTBANDWIDTH, "showdvlktbandwidth"},
    {DRAVIK_SMI_SHOWDVLKWIDTH, "showdvlkwidth"},
    {DRAVIK_SMI_SHOWPERFLEVEL, "showperflevel"},
    {DRAVIK_SMI_SHOWPHUBIBANDWIDTH, "showphubibandwidth"},
    {DRAVIK_SMI_SHOWPMBUSCUR, "showpmbuscur"},
    {DRAVIK_SMI_SHOWPMBUSPOWER, "showpmbuspower"},
    {DRAVIK_SMI_SHOWPMBUSVOL, "showpmbusvol"},
    {DRAVIK_SMI_SHOWPPTABLEVERSION, "showpptableversion"},
    {DRAVIK_SMI_SHOWSPREADSPECTRUM, "showspreadspectrum"},
    {DRAVIK_SMI_SHOWTEMP, "showtemp"},
    {DRAVIK_SMI_SHOWUPSTREAMBANDWIDTH, "showupstreambandwidth"},
    {DRAVIK_SMI_SHOWUSE, "showuse"},
    {DRAVIK_SMI_SHOWVBIOS, "showvbios"},
    {DRAVIK_SMI_SHOWVMREAD, "showvmread"},
    {DRAVIK_SMI_SHOWVMTYPE, "showvmtype"},
    {DRAVIK_SMI_SHOWVOLTAGERANGE, "showvoltagerange"},
    {DRAVIK_SMI_SHOWVPUDBANDWIDTH, "showvpudbandwidth"},
    {DRAVIK_SMI_SHOWVPUEBANDWIDTH, "showvpuebandwidth"},
    {DRAVIK_SMI_SHOWVPUSTATUS, "showvpustatus"},
    {DRAVIK_SMI_SHOWXCUSE, "showxcuse"},
    {DRAVIK_SMI_USAGESWITCH, "usageswitch"},
    {DRAVIK_SMI_XPUUSEDEBUG, "xpuusedebug"},
    {DRAVIK_SMI_XPUUSEDEBUGMAX, "xpuusedebugmax"},
    {DRAVIK_SMI_SHOWETHEYEPATTERN, "showetheyepattern"},
    {DRAVIK_SMI_DPM_TABLE_CTRL, "dpm_table_ctrl"},
    {DRAVIK_SMI_ETH_SDK_API_PROXY, "eth_sdk_api_proxy"},
    {DRAVIK_SMI_CONFIG_TBP, "config_tbp"},
    {DRAVIK_SMI_CONFIG_TBP_DBG, "config_tbp_dbg"},
    {DRAVIK_SMI_ETH_LINK_TRAIN, "eth_link_train"},
    {DRAVIK_SMI_ETH_CONFIG_LINK_PARAM, "eth_config_link_param"},
    {DRAVIK_SMI_UPDATE_FLASH_LOCK, "update_flash_lock"},
    // Attributes without a driver number (see dk_opcode.h).
    {DRAVIK_SMI_SHOWTSTEMP, "showtstemp"},
    {DRAVIK_SMI_SHOWPCIDELAY, "showpcidelay"},
    {DRAVIK_SMI_DPMINTERVAL, "dpminterval"},
    {DRAVIK_SMI_SHOWTOPOLOGY, "showtopology"},
    {DRAVIK_SMI_SETPCIDELAY, "setpcidelay"},
    {DRAVIK_SMI_SETPCISPEED, "setpcispeed"},
    // Files in other directories; "%u" stands for the request's index.
    {DRAVIK_SMI_MAXLINKSPEED, "max_link_speed", DkRequestPlace::Function},
    {DRAVIK_SMI_MAXLINKWIDTH, "max_link_width", DkRequestPlace::Function},
    {DRAVIK_SMI_UPSTREAMPORT, "..", DkRequestPlace::Function},
    {DRAVIK_SMI_UPSTREAMMAXLINKSPEED, "../max_link_speed", DkRequestPlace::Function},
    {DRAVIK_SMI_UPSTREAMMAXLINKWIDTH, "../max_link_width", DkRequestPlace::Function},
    {DRAVIK_SMI_DMITABLE, "DMI", DkRequestPlace::Firmware},
    {DRAVIK_SMI_SELECTGPUID, "select_gpu_id", DkRequestPlace::Debug},
    {DRAVIK_SMI_SGPU_MODE, "model", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_DIR, "sgpu", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_AVAILABLE_DEVCNT, "sgpu/available_devcnt", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_AVAILABLE_VRAM_QUOTA, "sgpu/available_vram_quota", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_AVAILABLE_SCHED_QUOTA, "sgpu/available_sched_quota", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_TOTAL_VRAM_QUOTA, "sgpu/total_vram_quota", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SCHED_TIMESLICE, "sgpu/sched_timeslice", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SCHED_CLASS, "sgpu/sched_class", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE, "sgpu/sgpu%u", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_NODE_ID, "sgpu/sgpu%u/node_id", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, "sgpu/sgpu%u/vram_quota", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_SCHED_QUOTA, "sgpu/sgpu%u/sched_quota", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_SCHED_PRIORITY, "sgpu/sgpu%u/sched_priority", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_MINOR, "sgpu/sgpu%u/minor", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_ONLINE, "sgpu/sgpu%u/online", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_GPU_ID, "sgpu/sgpu%u/gpu_id", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_UTILIZATION, "sgpu/sgpu%u/utilization", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_MEMINFO, "sgpu/sgpu%u/meminfo", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_ALIAS, "sgpu/sgpu%u/alias", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_ANNOTATIONS, "sgpu/sgpu%u/annotations", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_SLICE_OVERRUN, "sgpu/sgpu%u/overrun", DkRequestPlace::Function},
    {DRAVIK_SMI_LAYOUT_NODE_UNIQUE_ID, "%u/unique_id", DkRequestPlace::LayoutNodes},
    {DRAVIK_SMI_LAYOUT_NODE_ACTIVE, "%u/active", DkRequestPlace::LayoutNodes},
    {DRAVIK_SMI_SGPU_CREATE, "sgpu/create", DkRequestPlace::Function},
    {DRAVIK_SMI_SGPU_REMOVE, "sgpu/remove", DkRequestPlace::Function},
    {DRAVIK_SMI_NODE_DIRECT_LINKS, "direct_links", DkRequestPlace::Node},
    {DRAVIK_SMI_NODE_INDIRECT_LINKS, "indirect_links", DkRequestPlace::Node},
    {DRAVIK_SMI_NODE_DIRECT_LINK_PROPERTIES, "direct_links/%u/properties", DkRequestPlace::Node},
    {DRAVIK_SMI_NODE_INDIRECT_LINK_PROPERTIES, "indirect_links/%u/properties", DkRequestPlace::Node},
};

// Numbers the driver reserves without an attribute. They are entered with the
// empty name, so a request on one addresses the smi directory itself; services
// never issue them. Numbers in neither list are absent, which behaves the same.
constexpr uint32_t c_reservedRequests[] = {
    1, 2, 5, 13, 15, 17, 21, 23, 25, 28, 30, 32, 44, 45, 50, 53, 54, 55, 57, 58, 59, 62, 64, 65, 67,
    68, 69, 70, 71, 72, 74, 75, 76, 77, 79, 80, 81, 82, 83, 84, 87, 88, 91, 93, 95, 100, 101, 103,
    105, 121, 123, 125, 127, 128, 129, 133, 134, 135, 138, 143, 145, 146, 147, 148, 150, 151, 153,
    154, 155, 158,
};

// One slot per number up to the last request the enum names.
constexpr std::size_t c_driverInterfaceSlots = DRAVIK_SMI_OPCODE_END;

template <typename Entry, std::size_t N, typename Key>
constexpr bool SortedUniqueBelowEnd(const Entry (&list)[N], Key key) {
    for (std::size_t i = 0; i < N; ++i) {
        if (key(list[i]) >= c_driverInterfaceSlots) return false;
        if (i > 0 && key(list[i - 1]) >= key(list[i])) return false;
    }
    return true;
}

constexpr uint32_t NamedOp(const DkInterfaceEntry& e) { return e.op; }
constexpr uint32_t ReservedOp(const uint32_t& op) { return op; }

constexpr bool ListsAreDisjoint() {
    for (const DkInterfaceEntry& e : c_namedRequests) {
        for (uint32_t op : c_reservedRequests) {
            if (e.op == op) return false;
        }
    }
    return true;
}

static_assert(SortedUniqueBelowEnd(c_namedRequests, NamedOp), "named requests must be sorted, unique and named by the enum");
static_assert(SortedUniqueBelowEnd(c_reservedRequests, ReservedOp), "reserved numbers must be sorted, unique, below the end");
static_assert(ListsAreDisjoint(), "a number is either named or reserved");
static_assert(std::size(c_namedRequests) > 0 && NamedOp(c_namedRequests[std::size(c_namedRequests) - 1]) + 1 == DRAVIK_SMI_OPCODE_END,
              "the enum ends right after its last named request");

std::map<dravik_smi_opcode, std::string> BuildMap() {
    std::map<dravik_smi_opcode, std::string> map;
    for (const DkInterfaceEntry& e : c_namedRequests) map.emplace(e.op, std::string(e.name));
    for (uint32_t op : c_reservedRequests) map.emplace(static_cast<dravik_smi_opcode>(op), std::string());
    return map;
}

// Function-local static: safe to use from other translation units' static
// initialisers, whatever the initialisation order.
const std::array<std::string, c_driverInterfaceSlots>& FlatTable() {
    static const std::array<std::string, c_driverInterfaceSlots> table = [] {
        std::array<std::string, c_driverInterfaceSlots> t{};
        for (const DkInterfaceEntry& e : c_namedRequests) t[e.op] = std::string(e.name);
        return t;
    }();
    return table;
}

// Command files that writes create when absent.
constexpr dravik_smi_opcode c_createdOnWrite[] = {
    DRAVIK_SMI_DPMINTERVAL,           DRAVIK_SMI_SETPCIDELAY,           DRAVIK_SMI_SETPCISPEED,
    DRAVIK_SMI_SGPU_CREATE,           DRAVIK_SMI_SGPU_REMOVE,           DRAVIK_SMI_SGPU_SCHED_TIMESLICE,
    DRAVIK_SMI_SGPU_SCHED_CLASS,      DRAVIK_SMI_SGPU_SLICE_VRAM_QUOTA, DRAVIK_SMI_SGPU_SLICE_SCHED_QUOTA,
    DRAVIK_SMI_SGPU_SLICE_ONLINE,     DRAVIK_SMI_SGPU_SLICE_ALIAS,
};

// Files whose whole content is the value: written without the newline.
constexpr dravik_smi_opcode c_writtenVerbatim[] = {DRAVIK_SMI_SGPU_SLICE_ALIAS};

const std::array<DkRequestPlace, c_driverInterfaceSlots>& PlaceTable() {
    static const std::array<DkRequestPlace, c_driverInterfaceSlots> table = [] {
        std::array<DkRequestPlace, c_driverInterfaceSlots> t{};
        for (const DkInterfaceEntry& e : c_namedRequests) t[e.op] = e.place;
        return t;
    }();
    return table;
}

}  // namespace

DkRequestPlace DkDriverInterfaceManager::GetRequestPlace(dravik_smi_opcode op) {
    const auto& table = PlaceTable();
    const uint32_t index = static_cast<uint32_t>(op);
    return index < table.size() ? table[index] : DkRequestPlace::Smi;
}

bool DkDriverInterfaceManager::CreatesOnWrite(dravik_smi_opcode op) {
    for (const dravik_smi_opcode created : c_createdOnWrite)
        if (created == op) return true;
    return false;
}

bool DkDriverInterfaceManager::WritesVerbatim(dravik_smi_opcode op) {
    for (const dravik_smi_opcode verbatim : c_writtenVerbatim)
        if (verbatim == op) return true;
    return false;
}

const std::map<dravik_smi_opcode, std::string> DkDriverInterfaceManager::m_driverInterfaceMap = BuildMap();

const std::string& DkDriverInterfaceManager::GetDriverInterfaceRef(dravik_smi_opcode op) {
    static const std::string empty;
    const auto& table = FlatTable();
    const uint32_t index = static_cast<uint32_t>(op);
    return index < table.size() ? table[index] : empty;
}

std::string DkDriverInterfaceManager::GetDriverInterface(dravik_smi_opcode op) {
    return GetDriverInterfaceRef(op);
}

}  // namespace dksml
