#include "vhost/vhost_profile.h"

#include <algorithm>
#include <cstdio>
#include <regex>
#include <set>
#include <stdexcept>
#include <string_view>

#include "core/dk_pci_ids.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_pci_bridges.h"
#include "vhost/vhost_pcie_link.h"

namespace dksml::vhost {
namespace {

using nlohmann::json;

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
    throw std::runtime_error("profile: " + where + ": " + what);
}

const std::set<std::string> c_hostKeys{"name", "description", "driver_loaded", "virtual_machine",
                                       "operating_mode", "cpu_nodes", "devices", "links",
                                       "processes", "files", "bridge_links", "compute_stack"};
const std::set<std::string> c_deviceKeys{
    "bus_id", "function", "model", "vendor", "device_id", "subsystem_vendor", "subsystem_device",
    "class", "driver", "parent", "bridges", "numa_node", "local_cpulist", "dies", "attributes",
    "files", "layout_node", "node_id", "gpu_id", "unique_id", "card", "topology", "sensor_board",
    "xpu_clock", "comment", "pcie", "revision", "sgpu", "board_serial"};

void CheckKeys(const json& object, const std::set<std::string>& allowed, const std::string& where) {
    if (!object.is_object()) Fail(where, "must be an object");
    for (const auto& [key, value] : object.items()) {
        if (!allowed.contains(key)) Fail(where, "unknown key \"" + key + "\"");
    }
}

bool IsBusId(const std::string& text) {
    static const std::regex pattern("^[0-9a-f]{4}:[0-9a-f]{2}:[0-1][0-9a-f]\\.[0-7]$");
    return std::regex_match(text, pattern);
}

std::string BusIdOf(const json& value, const std::string& where) {
    if (!value.is_string() || !IsBusId(value.get<std::string>())) {
        Fail(where, "bad bus id " + value.dump() + " (expected dddd:bb:dd.f in lower-case hex)");
    }
    return value.get<std::string>();
}

uint32_t HexOf(const json& value, const std::string& where) {
    if (value.is_number_unsigned()) return value.get<uint32_t>();
    if (!value.is_string()) Fail(where, "expected a hexadecimal id, got " + value.dump());
    const std::string text = value.get<std::string>();
    size_t used = 0;
    unsigned long number = 0;
    try {
        number = std::stoul(text, &used, 16);
    } catch (const std::exception&) {
        used = 0;
    }
    if (used != text.size() || number > 0xffff) Fail(where, "bad hexadecimal id \"" + text + "\"");
    return static_cast<uint32_t>(number);
}

TextOverrides OverridesOf(const json& value, const std::string& where) {
    TextOverrides overrides;
    if (value.is_null()) return overrides;
    if (!value.is_object()) Fail(where, "must be an object of name to text (or null)");
    for (const auto& [name, text] : value.items()) {
        if (text.is_null()) {
            overrides[name] = std::nullopt;
        } else if (text.is_string()) {
            overrides[name] = text.get<std::string>();
        } else {
            Fail(where + "." + name, "must be a text or null");
        }
    }
    return overrides;
}

const DkProductRow* FindProduct(const std::string& model) {
    const auto row = std::find_if(c_productTable.begin(), c_productTable.end(),
                                  [&](const DkProductRow& r) { return r.name == model; });
    return row == c_productTable.end() ? nullptr : &*row;
}

uint32_t VendorOf(const json& device, const std::string& where) {
    if (!device.contains("vendor") || device["vendor"] == "maker") return c_makerVendorId;
    if (device["vendor"] == "partner") return c_makerPartnerVendorId;
    return HexOf(device["vendor"], where + ".vendor");
}

FunctionKind KindOf(const json& device, const std::string& where) {
    const std::string kind = device.value("function", "pf");
    if (kind == "pf") return FunctionKind::Physical;
    if (kind == "vf") return FunctionKind::Virtual;
    if (kind == "other") return FunctionKind::Other;
    Fail(where, "function must be \"pf\", \"vf\" or \"other\", not \"" + kind + "\"");
}

unsigned BusNumber(const std::string& busId) { return std::stoul(busId.substr(5, 2), nullptr, 16); }

std::string FormatHex2(unsigned value) {
    char text[8];
    std::snprintf(text, sizeof text, "%02x", value & 0xffu);
    return text;
}

// A root port on the bus just above the device, as on most server boards where
// every GPU slot has a root port of its own.
std::vector<std::string> DefaultBridges(const std::string& busId) {
    const unsigned bus = BusNumber(busId);
    if (bus == 0) return {};
    return {busId.substr(0, 5) + FormatHex2(bus - 1) + ":00.0"};
}

std::string RootComplexOf(const DeviceSpec& device) {
    const std::string& anchor = device.bridges.empty() ? device.busId : device.bridges.front();
    return "pci" + anchor.substr(0, 7);
}

uint64_t Fnv1a(std::string_view text) {
    uint64_t hash = 1469598103934665603ull;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 1099511628211ull;
    }
    return hash;
}

std::string DefaultUniqueId(const DeviceSpec& device) {
    char text[24];
    std::snprintf(text, sizeof text, "%016llx",
                  static_cast<unsigned long long>(Fnv1a(device.busId + device.model)));
    return text;
}

// One board per device unless the profile says otherwise.
std::string DefaultBoardSerial(const DeviceSpec& device) {
    char text[24];
    std::snprintf(text, sizeof text, "DKB%08llx", static_cast<unsigned long long>(Fnv1a(device.busId) & 0xffffffffu));
    return text;
}

// On a board with several devices only the first one (in bus order, the
// order the driver probes them) reports the board's power readings.
void AssignBoardMasters(HostSpec& host) {
    std::set<std::string> seen;
    for (DeviceSpec& device : host.devices) {
        if (device.kind == FunctionKind::Physical) device.boardMaster = seen.insert(device.boardSerial).second;
    }
}

void ParseGpuIdentity(const json& entry, DeviceSpec& device, const std::string& where) {
    if (!entry.contains("model")) Fail(where, "a GPU function needs a \"model\"");
    device.model = entry["model"].get<std::string>();
    const DkProductRow* product = FindProduct(device.model);
    if (product == nullptr) Fail(where, "unknown model \"" + device.model + "\"");
    device.brand = product->brand;
    device.deviceId = device.kind == FunctionKind::Virtual ? product->vfDeviceId : product->pfDeviceId;
    device.pciClass = "0x120000";  // processing accelerator
}

void ParseDies(const json& entry, DeviceSpec& device, const std::string& where) {
    const json dies = entry.value("dies", json(1));
    if (dies.is_number_integer()) {
        const int count = dies.get<int>();
        if (count < 1 || count > 2) Fail(where, "dies must be 1 or 2");
        device.dies.resize(count);
        return;
    }
    if (!dies.is_array() || dies.empty() || dies.size() > 2) {
        Fail(where, "dies must be 1, 2 or an array of one or two die objects");
    }
    for (size_t i = 0; i < dies.size(); ++i) {
        const std::string dieWhere = where + ".dies[" + std::to_string(i) + "]";
        CheckKeys(dies[i], {"attributes"}, dieWhere);
        device.dies.push_back({OverridesOf(dies[i].value("attributes", json()), dieWhere + ".attributes")});
    }
}

DeviceSpec ParseDevice(const json& entry, const HostSpec& host) {
    if (!entry.is_object() || !entry.contains("bus_id")) Fail("devices", "every device needs a \"bus_id\"");
    DeviceSpec device;
    device.busId = BusIdOf(entry["bus_id"], "devices");
    const std::string where = "device " + device.busId;
    CheckKeys(entry, c_deviceKeys, where);
    device.kind = KindOf(entry, where);
    device.vendorId = VendorOf(entry, where);

    if (device.IsGpu()) {
        ParseGpuIdentity(entry, device, where);
        ParseDies(entry, device, where);
        if (host.driverLoaded) device.driver = device.kind == FunctionKind::Virtual ? "DKGVM" : "dkcd";
    } else {
        if (!entry.contains("device_id")) Fail(where, "a non-GPU function needs a \"device_id\"");
        device.pciClass = entry.value("class", "0x020000");
        device.layoutNode = false;
    }
    if (entry.contains("device_id")) device.deviceId = HexOf(entry["device_id"], where + ".device_id");
    device.subsystemVendorId = entry.contains("subsystem_vendor")
        ? HexOf(entry["subsystem_vendor"], where + ".subsystem_vendor") : device.vendorId;
    device.subsystemDeviceId = entry.contains("subsystem_device")
        ? HexOf(entry["subsystem_device"], where + ".subsystem_device") : device.deviceId;
    if (entry.contains("class")) device.pciClass = entry["class"].get<std::string>();
    if (entry.contains("driver")) device.driver = entry["driver"].is_null() ? "" : entry["driver"].get<std::string>();
    if (entry.contains("parent")) device.parent = BusIdOf(entry["parent"], where + ".parent");

    device.bridges = DefaultBridges(device.busId);
    if (entry.contains("bridges")) {
        device.bridges.clear();
        for (const json& bridge : entry.value("bridges", json::array())) {
            device.bridges.push_back(BusIdOf(bridge, where + ".bridges"));
        }
    }
    device.numaNode = entry.value("numa_node", -1);
    device.localCpuList = entry.value("local_cpulist", "");
    device.attributes = OverridesOf(entry.value("attributes", json()), where + ".attributes");
    device.files = OverridesOf(entry.value("files", json()), where + ".files");
    device.layoutNode = entry.value("layout_node", device.layoutNode);
    device.sensorBoard = entry.value("sensor_board", "emc");
    if (device.sensorBoard != "emc" && device.sensorBoard != "tmp435") {
        Fail(where, "sensor_board must be \"emc\" or \"tmp435\"");
    }
    device.xpuClock = entry.value("xpu_clock", false);
    device.link = DefaultFunctionLink(device.brand);
    if (entry.contains("pcie")) device.link = ParsePcieLink(entry["pcie"], device.link, where + ".pcie");
    if (entry.contains("revision")) device.revision = HexOf(entry["revision"], where + ".revision") & 0xffu;
    if (entry.contains("sgpu")) device.sgpu = ParseSgpu(entry["sgpu"], where + ".sgpu");
    if (device.kind == FunctionKind::Physical) device.boardSerial = entry.value("board_serial", DefaultBoardSerial(device));
    if (device.boardSerial.size() > 31) Fail(where, "board_serial is longer than 31 characters");
    return device;
}

std::string AllCpus(const HostSpec& host) {
    std::string list;
    for (const CpuNodeSpec& node : host.cpuNodes) list += (list.empty() ? "" : ",") + node.cpuList;
    return list.empty() ? "0-15" : list;
}

std::string CpusOfNode(const HostSpec& host, int numaNode) {
    for (const CpuNodeSpec& node : host.cpuNodes) {
        if (static_cast<int>(node.nodeId) == numaNode) return node.cpuList;
    }
    return AllCpus(host);
}

// Ids the driver would hand out: layout node numbers after the CPU nodes,
// card numbers and GPU ids in probe order.
void AssignDriverIds(HostSpec& host, const std::vector<json>& entries) {
    uint32_t nextNode = 0;
    for (const CpuNodeSpec& cpu : host.cpuNodes) nextNode = std::max(nextNode, cpu.nodeId + 1);
    int nextCard = 0;
    unsigned seed = 0;
    uint32_t physicalOrdinal = 0;
    std::set<uint32_t> gpuIds;
    std::set<uint32_t> nodeIds;
    for (const CpuNodeSpec& cpu : host.cpuNodes) nodeIds.insert(cpu.nodeId);
    for (size_t i = 0; i < host.devices.size(); ++i) {
        DeviceSpec& device = host.devices[i];
        const json& entry = entries[i];
        const std::string where = "device " + device.busId;
        if (!device.IsGpu()) continue;
        device.seed = seed++;
        device.nodeId = entry.value("node_id", nextNode);
        nextNode = std::max(nextNode, device.nodeId + 1);
        if (device.layoutNode && !nodeIds.insert(device.nodeId).second) {
            Fail(where, "layout node " + std::to_string(device.nodeId) + " is taken");
        }
        device.gpuId = entry.value("gpu_id", static_cast<uint32_t>(40000 + (Fnv1a(device.busId) % 20000)));
        if (device.gpuId == 0 || device.gpuId > 0xffff) Fail(where, "gpu_id must be 1 to 65535");
        if (!gpuIds.insert(device.gpuId).second) Fail(where, "duplicate gpu_id " + std::to_string(device.gpuId));
        device.uniqueId = entry.value("unique_id", DefaultUniqueId(device));
        if (host.driverLoaded) device.card = entry.value("card", nextCard);
        nextCard = std::max(nextCard, device.card + 1);
        const json topology = entry.value("topology", json::array({physicalOrdinal, std::max(device.numaNode, 0)}));
        if (!topology.is_array() || topology.size() != 2) Fail(where, "topology must be [position, socket]");
        device.topologyPosition = topology[0].get<uint32_t>();
        device.socket = topology[1].get<uint32_t>();
        if (device.kind == FunctionKind::Physical) ++physicalOrdinal;
    }
}

void CheckRelations(const HostSpec& host) {
    std::set<std::string> seen;
    for (const DeviceSpec& device : host.devices) {
        const std::string where = "device " + device.busId;
        if (!seen.insert(device.busId).second) Fail(where, "duplicate bus id");
        if (device.parent.empty()) continue;
        const DeviceSpec* parent = host.FindDevice(device.parent);
        if (device.kind != FunctionKind::Virtual) Fail(where, "only a virtual function has a parent");
        if (parent == nullptr || parent->kind != FunctionKind::Physical) {
            Fail(where, "parent " + device.parent + " is not a physical function of this profile");
        }
    }
}

std::vector<CpuNodeSpec> ParseCpuNodes(const json& nodes) {
    std::vector<CpuNodeSpec> result;
    for (const json& node : nodes) {
        CheckKeys(node, {"node", "cpus", "threads_per_core"}, "cpu_nodes");
        CpuNodeSpec parsed{node.at("node").get<uint32_t>(), node.at("cpus").get<std::string>()};
        parsed.threadsPerCore = node.value("threads_per_core", 1u);
        const size_t cpuCount = ParseCpuList(parsed.cpuList).size();
        const std::string where = "cpu_nodes: node " + std::to_string(parsed.nodeId);
        if (cpuCount == 0) Fail(where, "bad cpu list \"" + parsed.cpuList + "\"");
        if (parsed.threadsPerCore == 0 || cpuCount % parsed.threadsPerCore != 0) {
            Fail(where, "threads_per_core must divide the node's CPU count");
        }
        result.push_back(parsed);
    }
    return result;
}

std::vector<LinkSpec> ParseLinks(const json& links, const HostSpec& host) {
    std::vector<LinkSpec> result;
    for (const json& link : links) {
        CheckKeys(link, {"from", "to", "type", "distance"}, "links");
        LinkSpec parsed{BusIdOf(link.at("from"), "links.from"), link.at("to").get<std::string>(),
                      link.at("type").get<uint32_t>(), link.value("distance", 0u)};
        const std::string where = "link " + parsed.from + " -> " + parsed.to;
        const DeviceSpec* from = host.FindDevice(parsed.from);
        if (from == nullptr || !from->IsGpu()) Fail(where, "from is not a GPU function of this profile");
        if (parsed.to.rfind("cpu:", 0) == 0) {
            const std::string number = parsed.to.substr(4);
            if (number.empty() || number.find_first_not_of("0123456789") != std::string::npos) {
                Fail(where, "a CPU node is written cpu:N");
            }
            const uint32_t cpu = std::stoul(number);
            const bool known = std::any_of(host.cpuNodes.begin(), host.cpuNodes.end(),
                                           [&](const CpuNodeSpec& n) { return n.nodeId == cpu; });
            if (!known) Fail(where, "no CPU node " + std::to_string(cpu));
        } else {
            const DeviceSpec* to = host.FindDevice(BusIdOf(parsed.to, where));
            if (to == nullptr || !to->IsGpu()) Fail(where, "to is not a GPU function of this profile");
        }
        result.push_back(parsed);
    }
    return result;
}

std::vector<ProcessSpec> ParseProcesses(const json& processes) {
    std::vector<ProcessSpec> result;
    for (const json& entry : processes) {
        CheckKeys(entry, {"pid", "nspid", "name", "vram", "ringbuf", "holds_device_node", "driver_dir", "domains"},
                  "processes");
        ProcessSpec process;
        process.pid = entry.at("pid").get<uint32_t>();
        process.nspid = entry.value("nspid", process.pid);
        process.name = entry.value("name", "");
        const json vram = entry.value("vram", json::object());
        for (const auto& [gpuId, bytes] : vram.items()) {
            process.vram[std::stoul(gpuId)] = bytes.get<uint64_t>();
        }
        process.ringbufGpuIds = entry.value("ringbuf", std::vector<uint32_t>{});
        process.holdsDeviceNode = entry.value("holds_device_node", true);
        process.driverDir = entry.value("driver_dir", true);
        process.domains = entry.value("domains", 1u);
        if (process.domains < 1 || process.domains > 0xffff) Fail("processes", "domains must be 1 to 65535");
        result.push_back(process);
    }
    return result;
}

}  // namespace

const DeviceSpec* HostSpec::FindDevice(const std::string& busId) const {
    const auto it = std::find_if(devices.begin(), devices.end(),
                                 [&](const DeviceSpec& d) { return d.busId == busId; });
    return it == devices.end() ? nullptr : &*it;
}

HostSpec ParseProfile(const json& profile) {
    CheckKeys(profile, c_hostKeys, "top level");
    HostSpec host;
    try {
        host.name = profile.value("name", "");
        host.driverLoaded = profile.value("driver_loaded", true);
        host.virtualMachine = profile.value("virtual_machine", false);
        host.operatingMode = profile.value("operating_mode", 0u);
        host.cpuNodes = ParseCpuNodes(profile.value("cpu_nodes", json::array()));

        const std::vector<json> entries = profile.value("devices", std::vector<json>{});
        for (const json& entry : entries) host.devices.push_back(ParseDevice(entry, host));
        std::sort(host.devices.begin(), host.devices.end(), [](const DeviceSpec& a, const DeviceSpec& b) {
            return a.busId < b.busId;
        });
        std::vector<json> sortedEntries;
        for (const DeviceSpec& device : host.devices) {
            sortedEntries.push_back(*std::find_if(entries.begin(), entries.end(), [&](const json& e) {
                return e["bus_id"] == device.busId;
            }));
        }
        CheckRelations(host);
        AssignDriverIds(host, sortedEntries);
        AssignBoardMasters(host);
        for (size_t i = 0; i < host.devices.size(); ++i) {
            DeviceSpec& device = host.devices[i];
            // A virtual function sits beside its physical function.
            if (!device.parent.empty() && !sortedEntries[i].contains("bridges")) {
                device.bridges = host.FindDevice(device.parent)->bridges;
            }
            device.rootComplex = RootComplexOf(device);
            if (!device.parent.empty() && !sortedEntries[i].contains("pcie")) {
                device.link = host.FindDevice(device.parent)->link;  // a VF reports its PF's link
            }
            if (device.localCpuList.empty()) device.localCpuList = CpusOfNode(host, device.numaNode);
        }
        host.links = ParseLinks(profile.value("links", json::array()), host);
        host.processes = ParseProcesses(profile.value("processes", json::array()));
        host.files = OverridesOf(profile.value("files", json()), "files");
        const json bridgeLinks = profile.contains("bridge_links") ? profile["bridge_links"] : json::object();
        if (!bridgeLinks.is_object()) Fail("bridge_links", "must be an object of bridge bus id to link");
        for (const auto& [busId, link] : bridgeLinks.items()) {
            const std::string where = "bridge_links." + busId;
            host.bridgeLinks[BusIdOf(busId, where)] = ParsePcieLink(link, DefaultBridgeLink(), where);
        }
        CollectBridges(host);  // rejects bridges whose placement no PCI bus numbering can give
        host.computeStack = ParseComputeStack(profile.value("compute_stack", json::object()));
    } catch (const json::exception& error) {
        // Type errors of nlohmann carry no context of ours; keep their text.
        throw std::runtime_error(std::string("profile: ") + error.what());
    }
    return host;
}

}  // namespace dksml::vhost
