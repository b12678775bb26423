"""Topology and affinity, power ways and per-IP power states, performance
levels, AP usage, versions, PCIe and the interconnect links: one function per
native export."""

from __future__ import annotations

import ctypes
from typing import Optional

from . import _native as n
from . import _native_families as f
from . import records as r
from .enums import DpmIp, LinkDirection, Return, TopologyLevel
from .errors import error_for

# A bound on what a driver may claim as the AP table's sides.
AP_TABLE_SIDE_MAX = 1024
# CPU and node masks are read in this many 32-bit words (4096 CPUs).
AFFINITY_WORDS = 128


def _mask_members(words: ctypes.Array[ctypes.c_uint32]) -> list[int]:
    return [w * 32 + bit for w, word in enumerate(words) for bit in range(32) if int(word) >> bit & 1]


# Topology and affinity -----------------------------------------------------

def topology(index1: int, index2: int) -> TopologyLevel:
    level = n.u32()
    n.call("dkSmlGetDeviceTopology", index1, index2, ctypes.byref(level))
    return TopologyLevel(int(level.value))


def distance(index1: int, index2: int) -> int:
    """Interconnect hops between two devices (raises, code 1, when unreachable)."""
    value = n.u32()
    n.call("dkSmlGetDeviceDistance", index1, index2, ctypes.byref(value))
    return int(value.value)


def cpu_affinity(index: int) -> list[int]:
    """The CPUs local to the device."""
    words = (n.u32 * AFFINITY_WORDS)()
    n.call("dkSmlGetCpuAffinity", index, AFFINITY_WORDS, words)
    return _mask_members(words)


def node_affinity(index: int) -> list[int]:
    """The NUMA nodes local to the device."""
    words = (n.u32 * AFFINITY_WORDS)()
    n.call("dkSmlGetNodeAffinity", index, AFFINITY_WORDS, words)
    return _mask_members(words)


def set_cpu_affinity(index: int) -> None:
    """Pins the calling thread to the device's local CPUs."""
    n.call("dkSmlSetCpuAffinity", index)


def clear_cpu_affinity(index: int) -> None:
    n.call("dkSmlClearCpuAffinity", index)


def link_remote(index: int, link: int) -> r.LinkRemote:
    info = f.LinkRemoteInfo()
    n.call("dkSmlGetDravikLinkRemoteInfo", index, link, ctypes.byref(info))
    return r.LinkRemote(remote_device_index=int(info.remoteDeviceIndex), remote_device_type=int(info.remoteDeviceType),
                        remote_bus_id=n.text(info.remoteBdfId))


def local_and_remote_uuid(index: int) -> r.UuidPair:
    pair = f.UuidPair()
    n.call("dkSmlGetLocalAndRemoteUuid", index, ctypes.byref(pair))
    return r.UuidPair(local_uuid=n.text(pair.localUuid), remote_uuid=n.text(pair.remoteUuid))


def local_and_remote_uuids(index: int) -> list[r.UuidPair]:
    pairs = n.fixed_array("dkSmlGetLocalAndMultipleRemoteUuid", f.UuidPair, f.LINK_MAX_PORTS * 2, index)
    return [r.UuidPair(local_uuid=n.text(p.localUuid), remote_uuid=n.text(p.remoteUuid)) for p in pairs]


# Power ways and per-IP power states ----------------------------------------

def board_power_ways(index: int) -> list[r.BoardWay]:
    ways = n.fixed_array("dkSmlGetBoardPowerInfo", f.BoardWay, 16, index)
    return [r.BoardWay(voltage_mv=int(w.values[0]), current_ma=int(w.values[1]), power_mw=int(w.values[2]))
            for w in ways]


def power_states(index: int, ip: DpmIp, die: Optional[int] = None) -> list[int]:
    """Power state of every instance of an IP (1 powered, 0 gated), on die 0 or on `die`."""
    if die is None:
        return [int(v) for v in n.read_array("dkSmlGetPowerStateInfo", n.i32, index, int(ip), count_first=False)]
    return [int(v) for v in n.read_array("dkSmlGetDiePowerStateInfo", n.i32, index, die, int(ip), count_first=False)]


# Performance levels --------------------------------------------------------

def _levels(name: str, index: int, ip: DpmIp) -> r.DpmLevels:
    levels = f.DpmPerfLevel()
    n.call(name, index, int(ip), ctypes.byref(levels))
    return r.DpmLevels(values=tuple(int(v) for v in levels.values[: min(int(levels.count), f.DPM_MAX_LEVELS)]))


def dpm_clocks_mhz(index: int, ip: DpmIp) -> r.DpmLevels:
    return _levels("dkSmlGetDpmIpClockInfo", index, ip)


def dpm_voltages_mv(index: int, ip: DpmIp) -> r.DpmLevels:
    return _levels("dkSmlGetDpmIpVddInfo", index, ip)


def current_perf_level(index: int, ip: DpmIp, die: Optional[int] = None) -> int:
    value = n.u32()
    if die is None:
        n.call("dkSmlGetCurrentDpmIpPerfLevel", index, int(ip), ctypes.byref(value))
    else:
        n.call("dkSmlGetCurrentDieDpmIpPerfLevel", index, die, int(ip), ctypes.byref(value))
    return int(value.value)


def max_perf_level(index: int, ip: DpmIp, die: Optional[int] = None) -> int:
    value = n.u32()
    if die is None:
        n.call("dkSmlGetDpmIpMaxPerfLevel", index, int(ip), ctypes.byref(value))
    else:
        n.call("dkSmlGetDieDpmIpMaxPerfLevel", index, die, int(ip), ctypes.byref(value))
    return int(value.value)


def max_perf_levels(index: int) -> dict[DpmIp, Optional[int]]:
    """Maximum level of every domain; None for a domain the driver does not list."""
    record = f.DpmForAll()
    n.call("dkSmlGetDpmMaxPerfLevel", index, ctypes.byref(record))
    return {ip: (None if int(record.level[ip]) == 0xFFFFFFFF else int(record.level[ip])) for ip in DpmIp}


def set_max_perf_level(index: int, ip: DpmIp, level: int) -> None:
    n.call("dkSmlSetDpmIpMaxPerfLevel", index, int(ip), level)


# AP usage ------------------------------------------------------------------

def ap_usage(index: int, die: Optional[int] = None) -> r.ApUsage:
    """Per-AP usage of the compute cores: a first call learns the table's sides."""
    name, head = ("dkSmlGetXcoreApUsage", (index,)) if die is None else ("dkSmlGetDieXcoreApUsage", (index, die))
    probe, dpcs, aps = n.u32(), n.u32(0), n.u32(0)
    code = int(getattr(n.library(), name)(*head, ctypes.byref(probe), ctypes.byref(dpcs), ctypes.byref(aps)))
    if code != Return.ERROR_INSUFFICIENT_SIZE:
        raise error_for(code if code != Return.SUCCESS else Return.ERROR_SYSFS, n.error_text(code), name)
    sides = (int(dpcs.value), int(aps.value))
    if not all(0 < side <= AP_TABLE_SIDE_MAX for side in sides):
        raise error_for(Return.ERROR_SYSFS, n.error_text(Return.ERROR_SYSFS), name)
    table = (n.u32 * (sides[0] * sides[1]))()
    reported, stored = n.u32(sides[0]), n.u32(sides[1])
    n.call(name, *head, table, ctypes.byref(reported), ctypes.byref(stored))
    return r.ApUsage(dpc_count=sides[0], ap_per_dpc=sides[1], reported_dpc_count=int(reported.value),
                     values_percent=tuple(int(v) for v in table[: min(int(stored.value), len(table))]))


def ap_usage_enabled(index: int, die: Optional[int] = None) -> bool:
    value = n.u32()
    if die is None:
        n.call("dkSmlGetApUsageToggle", index, ctypes.byref(value))
    else:
        n.call("dkSmlGetDieApUsageToggle", index, die, ctypes.byref(value))
    return bool(value.value)


# Versions and serials ------------------------------------------------------

def die_versions(index: int, die: int = 0) -> r.Versions:
    record = f.Version()
    n.call("dkSmlGetDeviceDieVersion", index, die, ctypes.byref(record))
    firmware = {member.upper(): n.text(getattr(record.fwVersion, member)) for member in f.FIRMWARE_MEMBERS}
    return r.Versions(vbios=n.text(record.vbiosVersion), driver=n.text(record.driverVersion),
                      compute_stack=n.text(record.vornVersion), firmware=firmware)


def compute_stack_version() -> str:
    return n.read_text("dkSmlGetVornVersion")


def board_serial(index: int) -> str:
    return n.read_text("dkSmlGetBoardSerial", index)


def chip_serial(index: int) -> str:
    return n.read_text("dkSmlGetChipSerial", index)


# PCIe ----------------------------------------------------------------------

def pcie_throughput(index: int) -> r.PcieThroughput:
    record = f.PcieThroughput()
    n.call("dkSmlGetPcieThroughput", index, ctypes.byref(record))
    return r.PcieThroughput(rx_bytes=int(record.rx), tx_bytes=int(record.tx))


def pci_delay(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetPciDelay", index, ctypes.byref(value))
    return int(value.value)


def slot(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetDeviceSlot", index, ctypes.byref(value))
    return int(value.value)


def pci_mmio_state(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetPciMmioState", index, ctypes.byref(value))
    return int(value.value)


# Interconnect links --------------------------------------------------------

def link_bandwidth(index: int, direction: LinkDirection) -> list[r.LinkBandwidth]:
    links = n.fixed_array("dkSmlGetDravikLinkBandwidth", f.LinkBandwidth, f.LINK_MAX_PORTS, index, int(direction))
    return [r.LinkBandwidth(current_driver_units=int(l.values[0]), maximum_driver_units=int(l.values[1]))
            for l in links]


def link_traffic(index: int, direction: LinkDirection) -> list[r.LinkTraffic]:
    links = n.fixed_array("dkSmlGetDravikLinkTrafficStat", f.LinkTrafficStat, f.LINK_MAX_PORTS, index,
                          int(direction))
    return [r.LinkTraffic(packets=int(l.packets), bytes=int(l.bytes)) for l in links]


def link_aer(index: int) -> list[r.LinkAer]:
    links = n.fixed_array("dkSmlGetDravikLinkAer", f.LinkAer, f.LINK_MAX_PORTS, index)
    return [r.LinkAer(correctable=int(l.correctable), uncorrectable=int(l.uncorrectable)) for l in links]


def link_ports(index: int) -> list[r.LinkPort]:
    info = f.LinkInfoV2()
    n.call("dkSmlGetDravikLinkInfo_v2", index, ctypes.byref(info))
    return [r.LinkPort(speed_gts=float(info.speed[p]), width_lanes=int(info.width[p]), state=int(info.state[p]))
            for p in range(min(int(info.portCount), f.LINK_MAX_PORTS))]


def link_state(index: int) -> r.LinkState:
    state = n.u32()
    text = ctypes.create_string_buffer(128)
    size = n.u32(len(text))
    n.call("dkSmlGetDravikLinkState", index, ctypes.byref(state), text, ctypes.byref(size))
    return r.LinkState(state=int(state.value), text=n.text(text.value))


def link_port_states(index: int) -> list[int]:
    """The driver's state (0..4) of every port; 5 when it states none."""
    return [int(v) for v in n.fixed_array("dkSmlGetDravikLinkPortState", n.u32, f.LINK_MAX_PORTS, index)]


def link_topology(index: int) -> list[r.LinkTopo]:
    ports = n.fixed_array("dkSmlGetDravikLinkTopo", f.LinkTopo, f.LINK_MAX_PORTS * 2, index)
    return [r.LinkTopo(local_port=int(p.localPort), remote_device_index=int(p.remoteDeviceIndex),
                       remote_port=int(p.remotePort)) for p in ports]


__all__ = [
    "AP_TABLE_SIDE_MAX", "AFFINITY_WORDS", "topology", "distance", "cpu_affinity", "node_affinity",
    "set_cpu_affinity", "clear_cpu_affinity", "link_remote", "local_and_remote_uuid", "local_and_remote_uuids",
    "board_power_ways", "power_states", "dpm_clocks_mhz", "dpm_voltages_mv", "current_perf_level", "max_perf_level",
    "max_perf_levels", "set_max_perf_level", "ap_usage", "ap_usage_enabled", "die_versions",
    "compute_stack_version", "board_serial", "chip_serial", "pcie_throughput", "pci_delay", "slot",
    "pci_mmio_state", "link_bandwidth", "link_traffic", "link_aer", "link_ports", "link_state", "link_port_states",
    "link_topology",
]
