// The request table: driver request number -> attribute file name.
//
// One constant list feeds both the ordered map of the contract
// (m_driverInterfaceMap) and a flat array indexed by opcode that the hot path
// and static initialisers of other translation units can use safely.
#include "driver/dk_driver_interface_manager.h"

#include <array>
#include <string_view>
#include <utility>

namespace dksml {
namespace {

struct DkInterfaceEntry {
    uint32_t op;
    std::string_view name;
};

// Named requests and the reserved numbers (entered with the empty name: a
// request on them addresses the smi directory itself). Numbers not listed
// here (19, 26, 149, 159, 161-163, 165, 166) are absent, which behaves the
// same as the empty name.
constexpr DkInterfaceEntry c_driverInterfaceList[] = {
    {0u, "apuseageswitch"},  // DRAVIK_SMI_APUSEAGESWITCH
    {1u, ""},
    {2u, ""},
    {3u, "capability"},  // DRAVIK_SMI_CAPABILITY
    {4u, "cgcgcontrol"},  // DRAVIK_SMI_CGCGCONTROL
    {5u, ""},
    {6u, "counterctl"},  // DRAVIK_SMI_COUNTERCTL
    {7u, "ctfctrl"},  // DRAVIK_SMI_CTFCTRL
    {8u, "deviceinfo"},  // DRAVIK_SMI_DEVICEINFO
    {9u, "didtctl"},  // DRAVIK_SMI_DIDTCTL
    {10u, "dpmcount"},  // DRAVIK_SMI_DPMCOUNT
    {11u, "dpmctl"},  // DRAVIK_SMI_DPMCTL
    {12u, "dpmfeature"},  // DRAVIK_SMI_DPMFEATURE
    {13u, ""},
    {14u, "dpmusage"},  // DRAVIK_SMI_DPMUSAGE
    {15u, ""},
    {16u, "dumppptable"},  // DRAVIK_SMI_DUMPPPTABLE
    {17u, ""},
    {18u, "eeprom_margin_ctrl"},  // DRAVIK_SMI_EEPROM_MARGIN_CTRL
    {20u, "fan_ctrl"},  // DRAVIK_SMI_FAN_CTRL
    {21u, ""},
    {22u, "forcewarmreset"},  // DRAVIK_SMI_FORCEWARMRESET
    {23u, ""},
    {24u, "get_ecc_scrub"},  // DRAVIK_SMI_GET_ECC_SCRUB
    {25u, ""},
    {27u, "hbmeccctrl"},  // DRAVIK_SMI_HBMECCCTRL
    {28u, ""},
    {29u, "ippowerstate"},  // DRAVIK_SMI_IPPOWERSTATE
    {30u, ""},
    {31u, "loglevel"},  // DRAVIK_SMI_LOGLEVEL
    {32u, ""},
    {33u, "lp2counter"},  // DRAVIK_SMI_LP2COUNTER
    {34u, "mcctl"},  // DRAVIK_SMI_MCCTL
    {35u, "dravlink_ctrl"},  // DRAVIK_SMI_DRAVLINK_CTRL
    {36u, "dvlki_traffic_stat"},  // DRAVIK_SMI_DVLKI_TRAFFIC_STAT
    {37u, "dvlkt_traffic_stat"},  // DRAVIK_SMI_DVLKT_TRAFFIC_STAT
    {38u, "mgcgcontrol"},  // DRAVIK_SMI_MGCGCONTROL
    {39u, "pci_aer_ce"},  // DRAVIK_SMI_PCI_AER_CE
    {40u, "pci_aer_ue"},  // DRAVIK_SMI_PCI_AER_UE
    {41u, "pcicurrentlinkspeed"},  // DRAVIK_SMI_PCICURRENTLINKSPEED
    {42u, "pcicurrentlinkwidth"},  // DRAVIK_SMI_PCICURRENTLINKWIDTH
    {43u, "pci_dbe"},  // DRAVIK_SMI_PCI_DBE
    {44u, ""},
    {45u, ""},
    {46u, "pci_mmio_inv"},  // DRAVIK_SMI_PCI_MMIO_INV
    {47u, "pcipowerstate"},  // DRAVIK_SMI_PCIPOWERSTATE
    {48u, "pci_synfld"},  // DRAVIK_SMI_PCI_SYNFLD
    {49u, "pmdecsrc"},  // DRAVIK_SMI_PMDECSRC
    {50u, ""},
    {51u, "powertest"},  // DRAVIK_SMI_POWERTEST
    {52u, "pow_persist_ctrl"},  // DRAVIK_SMI_POW_PERSIST_CTRL
    {53u, ""},
    {54u, ""},
    {55u, ""},
    {56u, "qsfpstatus"},  // DRAVIK_SMI_QSFPSTATUS
    {57u, ""},
    {58u, ""},
    {59u, ""},
    {60u, "ras_show_mem_ecc_info"},  // DRAVIK_SMI_RAS_SHOW_MEM_ECC_INFO
    {61u, "rasshowcount"},  // DRAVIK_SMI_RASSHOWCOUNT
    {62u, ""},
    {63u, "rasshowstatus"},  // DRAVIK_SMI_RASSHOWSTATUS
    {64u, ""},
    {65u, ""},
    {66u, "readpd"},  // DRAVIK_SMI_READPD
    {67u, ""},
    {68u, ""},
    {69u, ""},
    {70u, ""},
    {71u, ""},
    {72u, ""},
    {73u, "set_ecc_scrub"},  // DRAVIK_SMI_SET_ECC_SCRUB
    {74u, ""},
    {75u, ""},
    {76u, ""},
    {77u, ""},
    {78u, "setperflevel"},  // DRAVIK_SMI_SETPERFLEVEL
    {79u, ""},
    {80u, ""},
    {81u, ""},
    {82u, ""},
    {83u, ""},
    {84u, ""},
    {85u, "showboardpowerinfo"},  // DRAVIK_SMI_SHOWBOARDPOWERINFO
    {86u, "showboardtype"},  // DRAVIK_SMI_SHOWBOARDTYPE
    {87u, ""},
    {88u, ""},
    {89u, "showccxuse"},  // DRAVIK_SMI_SHOWCCXUSE
    {90u, "showclkrange"},  // DRAVIK_SMI_SHOWCLKRANGE
    {91u, ""},
    {92u, "showclocks"},  // DRAVIK_SMI_SHOWCLOCKS
    {93u, ""},
    {94u, "showdmabandwidth"},  // DRAVIK_SMI_SHOWDMABANDWIDTH
    {95u, ""},
    {96u, "showdriverversion"},  // DRAVIK_SMI_SHOWDRIVERVERSION
    {97u, "showe2prominfo"},  // DRAVIK_SMI_SHOWE2PROMINFO
    {98u, "showfuseinfo"},  // DRAVIK_SMI_SHOWFUSEINFO
    {99u, "showfwinfo"},  // DRAVIK_SMI_SHOWFWINFO
    {100u, ""},
    {101u, ""},
    {102u, "showhbmtrainstatus"},  // DRAVIK_SMI_SHOWHBMTRAINSTATUS
    {103u, ""},
    {104u, "showisaversion"},  // DRAVIK_SMI_SHOWISAVERSION
    {105u, ""},
    {106u, "showmcac"},  // DRAVIK_SMI_SHOWMCAC
    {107u, "showmcbandwidth"},  // DRAVIK_SMI_SHOWMCBANDWIDTH
    {108u, "showmeminfo"},  // DRAVIK_SMI_SHOWMEMINFO
    {109u, "showmemuse"},  // DRAVIK_SMI_SHOWMEMUSE
    {110u, "showdvlkaer"},  // DRAVIK_SMI_SHOWDVLKAER
    {111u, "showdvlkibandwidth"},  // DRAVIK_SMI_SHOWDVLKIBANDWIDTH
    {112u, "showdvlkspeed"},  // DRAVIK_SMI_SHOWDVLKSPEED
    {113u, "showdvlkstatus"},  // DRAVIK_SMI_SHOWDVLKSTATUS
    {114u, "showdvlktbandwidth"},  // DRAVIK_SMI_SHOWDVLKTBANDWIDTH
    {115u, "showdvlkwidth"},  // DRAVIK_SMI_SHOWDVLKWIDTH
    {116u, "showperflevel"},  // DRAVIK_SMI_SHOWPERFLEVEL
    {117u, "showphubibandwidth"},  // DRAVIK_SMI_SHOWPHUBIBANDWIDTH
    {118u, "showpmbuscur"},  // DRAVIK_SMI_SHOWPMBUSCUR
    {119u, "showpmbuspower"},  // DRAVIK_SMI_SHOWPMBUSPOWER
    {120u, "showpmbusvol"},  // DRAVIK_SMI_SHOWPMBUSVOL
    {121u, ""},
    {122u, "showpptableversion"},  // DRAVIK_SMI_SHOWPPTABLEVERSION
    {123u, ""},
    {124u, "showspreadspectrum"},  // DRAVIK_SMI_SHOWSPREADSPECTRUM
    {125u, ""},
    {126u, "showtemp"},  // DRAVIK_SMI_SHOWTEMP
    {127u, ""},
    {128u, ""},
    {129u, ""},
    {130u, "showupstreambandwidth"},  // DRAVIK_SMI_SHOWUPSTREAMBANDWIDTH
    {131u, "showuse"},  // DRAVIK_SMI_SHOWUSE
    {132u, "showvbios"},  // DRAVIK_SMI_SHOWVBIOS
    {133u, ""},
    {134u, ""},
    {135u, ""},
    {136u, "showvmread"},  // DRAVIK_SMI_SHOWVMREAD
    {137u, "showvmtype"},  // DRAVIK_SMI_SHOWVMTYPE
    {138u, ""},
    {139u, "showvoltagerange"},  // DRAVIK_SMI_SHOWVOLTAGERANGE
    {140u, "showvpudbandwidth"},  // DRAVIK_SMI_SHOWVPUDBANDWIDTH
    {141u, "showvpuebandwidth"},  // DRAVIK_SMI_SHOWVPUEBANDWIDTH
    {142u, "showvpustatus"},  // DRAVIK_SMI_SHOWVPUSTATUS
    {143u, ""},
    {144u, "showxcuse"},  // DRAVIK_SMI_SHOWXCUSE
    {145u, ""},
    {146u, ""},
    {147u, ""},
    {148u, ""},
    {150u, ""},
    {151u, ""},
    {152u, "usageswitch"},  // DRAVIK_SMI_USAGESWITCH
    {153u, ""},
    {154u, ""},
    {155u, ""},
    {156u, "xpuusedebug"},  // DRAVIK_SMI_XPUUSEDEBUG
    {157u, "xpuusedebugmax"},  // DRAVIK_SMI_XPUUSEDEBUGMAX
    {158u, ""},
    {160u, "showetheyepattern"},  // DRAVIK_SMI_SHOWETHEYEPATTERN
    {164u, "dpm_table_ctrl"},  // DRAVIK_SMI_DPM_TABLE_CTRL
    {167u, "eth_sdk_api_proxy"},  // DRAVIK_SMI_ETH_SDK_API_PROXY
    {168u, "config_tbp"},  // DRAVIK_SMI_CONFIG_TBP
    {169u, "config_tbp_dbg"},  // DRAVIK_SMI_CONFIG_TBP_DBG
    {170u, "eth_link_train"},  // DRAVIK_SMI_ETH_LINK_TRAIN
    {171u, "eth_config_link_param"},  // DRAVIK_SMI_ETH_CONFIG_LINK_PARAM
    {172u, "update_flash_lock"},  // DRAVIK_SMI_UPDATE_FLASH_LOCK
};

constexpr std::size_t c_driverInterfaceSlots = 173;  // highest opcode + 1

constexpr bool ListIsSortedAndUnique() {
    for (std::size_t i = 1; i < std::size(c_driverInterfaceList); ++i) {
        if (c_driverInterfaceList[i - 1].op >= c_driverInterfaceList[i].op) return false;
    }
    return c_driverInterfaceList[std::size(c_driverInterfaceList) - 1].op < c_driverInterfaceSlots;
}
static_assert(ListIsSortedAndUnique(), "request table must be sorted, unique and within the slots");
static_assert(std::size(c_driverInterfaceList) == 164, "94 named requests and 70 reserved numbers");

std::map<dravik_smi_opcode, std::string> BuildMap() {
    std::map<dravik_smi_opcode, std::string> map;
    for (const DkInterfaceEntry& e : c_driverInterfaceList) {
        map.emplace(static_cast<dravik_smi_opcode>(e.op), std::string(e.name));
    }
    return map;
}

// Function-local static: safe to use from other translation units' static
// initialisers, whatever the initialisation order.
const std::array<std::string, c_driverInterfaceSlots>& FlatTable() {
    static const std::array<std::string, c_driverInterfaceSlots> table = [] {
        std::array<std::string, c_driverInterfaceSlots> t{};
        for (const DkInterfaceEntry& e : c_driverInterfaceList) t[e.op] = std::string(e.name);
        return t;
    }();
    return table;
}

}  // namespace

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
