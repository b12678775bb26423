"""The compatibility family (dkSmlEx*): one function per native export that
answers. Devices are opaque handles from the ex_handle_* functions; statuses
are DkSmlExReturn values (ExReturn), raised as DkSmlError (NotSupported for 3).

Its device list counts every die of a multi-die device and every slice of a
device in slice mode as a GPU of its own."""

from __future__ import annotations

import ctypes
from typing import NewType, Optional

from . import _native as n
from . import _native_families as f
from . import records as r
from .enums import (
    ExClockId, ExClockType, ExLinkDeviceType, ExP2PCaps, ExP2PStatus, ExPcieCounter, ExTemperatureThreshold,
    ExTopologyLevel,
)

ExHandle = NewType("ExHandle", int)
"""A device of the compatibility family, valid until ex_shutdown."""


def _u32(name: str, *args: object) -> int:
    value = n.u32()
    n.ex_call(name, *args, ctypes.byref(value))
    return int(value.value)


def _text(name: str, length: int, *head: object) -> str:
    buffer = ctypes.create_string_buffer(length)
    n.ex_call(name, *head, buffer, length)
    return n.text(buffer.value)


def _handle(name: str, key: object) -> ExHandle:
    handle = ctypes.c_void_p()
    n.ex_call(name, key, ctypes.byref(handle))
    return ExHandle(int(handle.value or 0))


def _pci(record: f.ExPciInfo) -> r.ExPciInfo:
    return r.ExPciInfo(bus_id=n.text(record.busId), domain=int(record.domain), bus=int(record.bus),
                       device=int(record.device), function=int(record.function),
                       pci_device_id=int(record.pciDeviceId), pci_subsystem_id=int(record.pciSubSystemId))


# Library and devices -------------------------------------------------------

def ex_init() -> None:
    n.ex_call("dkSmlExInit")


def ex_shutdown() -> None:
    n.ex_call("dkSmlExShutdown")


def ex_error_string(code: int) -> str:
    return n.ex_error_text(code)


def ex_device_count() -> int:
    """GPUs of the family: dies of multi-die devices and slices count one each."""
    return _u32("dkSmlExDeviceGetCount")


def ex_compute_stack_device_count() -> int:
    return _u32("dkSmlExVornDeviceGetCount")


def ex_handle_by_index(index: int) -> ExHandle:
    return _handle("dkSmlExGetDeviceHandleByIndex", index)


def ex_handle_by_uuid(uuid: str) -> ExHandle:
    return _handle("dkSmlExDeviceGetHandleByUUID", uuid.encode())


def ex_handle_by_bus_id(bus_id: str) -> ExHandle:
    return _handle("dkSmlExGetDeviceHandleByPciBusId", bus_id.encode())


def ex_name(device: ExHandle) -> str:
    return _text("dkSmlExDeviceGetName", f.EX_NAME_LENGTH, device)


def ex_uuid(device: ExHandle) -> str:
    return _text("dkSmlExDeviceGetUUID", f.EX_UUID_LENGTH, device)


def ex_pci_info(device: ExHandle) -> r.ExPciInfo:
    record = f.ExPciInfo()
    n.ex_call("dkSmlExDeviceGetPciInfo", device, ctypes.byref(record))
    return _pci(record)


def ex_minor_number(device: ExHandle) -> int:
    return _u32("dkSmlExDeviceGetMinorNumber", device)


def ex_compute_capability(device: ExHandle) -> tuple[int, int]:
    major, minor = n.i32(), n.i32()
    n.ex_call("dkSmlExDeviceGetComputeCapability", device, ctypes.byref(major), ctypes.byref(minor))
    return int(major.value), int(minor.value)


# Thermal, clocks, power ----------------------------------------------------

def ex_temperature_c(device: ExHandle) -> int:
    return _u32("dkSmlExDeviceGetTemperature", device, 0)


def ex_temperature_threshold_c(device: ExHandle, threshold: ExTemperatureThreshold) -> int:
    return _u32("dkSmlExDeviceGetTemperatureThreshold", device, int(threshold))


def ex_clock_mhz(device: ExHandle, clock: ExClockType, clock_id: Optional[ExClockId] = None) -> int:
    """The clock in force, or the one `clock_id` names."""
    if clock_id is None:
        return _u32("dkSmlExDeviceGetClockInfo", device, int(clock))
    return _u32("dkSmlExDeviceGetClock", device, int(clock), int(clock_id))


def ex_applications_clock_mhz(device: ExHandle, clock: ExClockType) -> int:
    return _u32("dkSmlExDeviceGetApplicationsClock", device, int(clock))


def ex_supported_memory_clocks_mhz(device: ExHandle) -> list[int]:
    return [int(v) for v in n.read_array("dkSmlExDeviceGetSupportedMemoryClocks", n.u32, device,
                                         compat=True)]


def ex_supported_graphics_clocks_mhz(device: ExHandle, memory_clock_mhz: int) -> list[int]:
    return [int(v) for v in n.read_array("dkSmlExDeviceGetSupportedGraphicsClocks_v2", n.u32, device,
                                         memory_clock_mhz, compat=True)]


def ex_performance_state(device: ExHandle) -> int:
    """0 to 15, or 32 when unknown."""
    return _u32("dkSmlExDeviceGetPerformanceState", device)


def ex_auto_boost(device: ExHandle) -> tuple[bool, bool]:
    """(enabled, enabled by default)."""
    enabled, default = n.u32(), n.u32()
    n.ex_call("dkSmlExDeviceGetAutoBoostedClocksEnabled", device, ctypes.byref(enabled), ctypes.byref(default))
    return bool(enabled.value), bool(default.value)


def _u64(name: str, device: ExHandle) -> int:
    value = n.u64()
    n.ex_call(name, device, ctypes.byref(value))
    return int(value.value)


def ex_supported_throttle_reasons(device: ExHandle) -> int:
    return _u64("dkSmlExDeviceGetSupportedClocksThrottleReasons", device)


def ex_throttle_reasons(device: ExHandle) -> int:
    return _u64("dkSmlExDeviceGetCurrentClocksThrottleReasons", device)


def ex_power_usage_w(device: ExHandle) -> int:
    return _u32("dkSmlExGetPowerUsage", device)


def ex_power_limit_mw(device: ExHandle) -> int:
    return _u32("dkSmlExGetPowerManagementLimit", device)


def ex_enforced_power_limit_mw(device: ExHandle) -> int:
    return _u32("dkSmlExDeviceGetEnforcedPowerLimit", device)


def ex_fan_speed_percent(device: ExHandle, fan: Optional[int] = None) -> int:
    if fan is None:
        return _u32("dkSmlExDeviceGetFanSpeed", device)
    return _u32("dkSmlExDeviceGetFanSpeed_v2", device, fan)


# Utilisation, memory, PCIe, processes --------------------------------------

def ex_utilization(device: ExHandle) -> r.ExUtilization:
    record = f.ExUtilization()
    n.ex_call("dkSmlExDeviceGetUtilization", device, ctypes.byref(record))
    return r.ExUtilization(gpu_percent=int(record.gpu), memory_percent=int(record.memory))


def ex_memory(device: ExHandle) -> r.ExMemory:
    record = f.ExMemory()
    n.ex_call("dkSmlExDeviceGetMemoryInfo", device, ctypes.byref(record))
    return r.ExMemory(free_bytes=int(record.free), total_bytes=int(record.total), used_bytes=int(record.used))


def ex_pcie_width_lanes(device: ExHandle, maximum: bool = False) -> int:
    return _u32("dkSmlExGetMaxPcieLinkWidth" if maximum else "dkSmlExDeviceGetCurrPcieLinkWidth", device)


def ex_pcie_throughput(device: ExHandle, counter: ExPcieCounter) -> int:
    return _u32("dkSmlExGetPcieThroughput", device, int(counter))


def ex_running_processes(device: ExHandle) -> list[r.ExProcess]:
    records = n.read_array("dkSmlExDeviceGetComputeRunningProcesses", f.ExProcessInfo, device, compat=True)
    return [r.ExProcess(pid=int(p.pid), used_gpu_memory_bytes=int(p.usedGpuMemory)) for p in records]


# Topology and links --------------------------------------------------------

def ex_cpu_affinity(device: ExHandle) -> list[int]:
    words = (n.u32 * 128)()
    n.ex_call("dkSmlExDeviceGetCpuAffinity", device, 128, words)
    return [w * 32 + bit for w, word in enumerate(words) for bit in range(32) if int(word) >> bit & 1]


def ex_common_ancestor(device1: ExHandle, device2: ExHandle) -> ExTopologyLevel:
    return ExTopologyLevel(_u32("dkSmlExDeviceGetTopologyCommonAncestor", device1, device2))


def ex_p2p_status(device1: ExHandle, device2: ExHandle, caps: ExP2PCaps) -> ExP2PStatus:
    return ExP2PStatus(_u32("dkSmlExDeviceGetP2PStatus", device1, device2, int(caps)))


def ex_link_active(device: ExHandle, link: int) -> bool:
    return bool(_u32("dkSmlExDeviceGetDravikLinkState", device, link))


def ex_link_remote_pci_info(device: ExHandle, link: int) -> r.ExPciInfo:
    record = f.ExPciInfo()
    n.ex_call("dkSmlExDeviceGetDravikLinkRemotePciInfo_v2", device, link, ctypes.byref(record))
    return _pci(record)


def ex_link_remote_device_type(device: ExHandle, link: int) -> ExLinkDeviceType:
    return ExLinkDeviceType(_u32("dkSmlExDeviceGetDravikLinkRemoteDeviceType", device, link))


def ex_field_values(device: ExHandle, field_ids: list[int], scope_id: int = 0) -> list[r.ExFieldValue]:
    """One record per field id asked for; each carries its own status."""
    records = (f.ExFieldValue * len(field_ids))()
    for record, field_id in zip(records, field_ids):
        record.fieldId = field_id
        record.scopeId = scope_id
    n.ex_call("dkSmlExDeviceGetFieldValues", device, len(field_ids), records)
    out = []
    for record in records:
        kind = int(record.valueType)
        value: float | int = {0: record.value.dVal, 1: record.value.uiVal, 3: record.value.ullVal}.get(
            kind, record.value.sllVal)
        out.append(r.ExFieldValue(field_id=int(record.fieldId), scope_id=int(record.scopeId),
                                  timestamp_us=int(record.timestamp), latency_us=int(record.latencyUsec),
                                  status=int(record.dkSmlReturn), value=value))
    return out


# System --------------------------------------------------------------------

def ex_driver_version() -> str:
    return _text("dkSmlExSystemGetDriverVersion", f.EX_DRIVER_VERSION_LENGTH)


def ex_compute_stack_driver_version() -> int:
    return _u32("dkSmlExSystemGetVornDriverVersion")


def ex_library_version() -> str:
    return _text("dkSmlExSystemGetDksmlVersion", f.EX_LIBRARY_VERSION_LENGTH)


__all__ = [
    "ExHandle", "ex_init", "ex_shutdown", "ex_error_string", "ex_device_count", "ex_compute_stack_device_count",
    "ex_handle_by_index", "ex_handle_by_uuid", "ex_handle_by_bus_id", "ex_name", "ex_uuid", "ex_pci_info",
    "ex_minor_number", "ex_compute_capability", "ex_temperature_c", "ex_temperature_threshold_c", "ex_clock_mhz",
    "ex_applications_clock_mhz", "ex_supported_memory_clocks_mhz", "ex_supported_graphics_clocks_mhz",
    "ex_performance_state", "ex_auto_boost", "ex_supported_throttle_reasons", "ex_throttle_reasons",
    "ex_power_usage_w", "ex_power_limit_mw", "ex_enforced_power_limit_mw", "ex_fan_speed_percent", "ex_utilization",
    "ex_memory", "ex_pcie_width_lanes", "ex_pcie_throughput", "ex_running_processes", "ex_cpu_affinity",
    "ex_common_ancestor", "ex_p2p_status", "ex_link_active", "ex_link_remote_pci_info",
    "ex_link_remote_device_type", "ex_field_values", "ex_driver_version", "ex_compute_stack_driver_version",
    "ex_library_version",
]
