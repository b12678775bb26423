"""One function per native export: device indices in, records out, errors raised.

Buffers, sizes and counts are handled here; callers never see them."""

from __future__ import annotations

import ctypes
from typing import Optional

from . import _native as n
from . import records as r
from .enums import (
    DIE_ALL, FIRST_VF_INDEX, TEMPERATURE_INVALID, Brand, PciPowerState, PmbusUnit, Return,
    TemperatureSensor, UnavailableReason, UsageIp, VersionUnit, VirtualizationMode,
)
from .errors import error_for


def _reading(value: int) -> Optional[int]:
    """65535 (and above) is the library's "no reading"."""
    return None if value >= TEMPERATURE_INVALID else value


# Library -------------------------------------------------------------------

def init(flags: int = 0) -> None:
    """Discovers the devices (again when flags is non-zero). Raises when none was found."""
    if flags:
        n.call("dkSmlInitWithFlags", flags)
    else:
        n.call("dkSmlInit")


def init_status(flags: int = 0) -> Return:
    """As init, but returns the status instead of raising (2: no device)."""
    lib = n.library()
    code = lib.dkSmlInitWithFlags(flags) if flags else lib.dkSmlInit()
    return Return(int(code))


def error_string(code: int) -> str:
    return n.error_text(code)


def op_mode() -> int:
    mode = n.u32()
    n.call("dkSmlGetOpMode", ctypes.byref(mode))
    return int(mode.value)


# Devices -------------------------------------------------------------------

def device_count() -> int:
    """Devices that are not virtual functions (indices 0 .. count-1)."""
    return int(n.library().dkSmlGetDeviceCount())


def virtual_function_count() -> int:
    """Virtual-function devices (indices from 100)."""
    return int(n.library().dkSmlGetPfDeviceCount())


def device_indices() -> list[int]:
    return list(range(device_count())) + [FIRST_VF_INDEX + i for i in range(virtual_function_count())]


def limited_device_indices() -> list[int]:
    return [int(v) for v in n.read_array("dkSmlGetAllLimitedDevices", n.u32)]


def limited_device_info(index: int) -> r.LimitedDevice:
    info = n.LimitedDeviceInfo()
    n.call("dkSmlGetLimitedDeviceInfo", index, ctypes.byref(info))
    return r.LimitedDevice(
        index=int(info.deviceIndex), bus_id=n.text(info.bdfId), vendor_id=int(info.vendorId),
        device_id=int(info.deviceId), is_virtual_function=bool(info.isVf),
        unavailable_reason=UnavailableReason(int(info.unavailableReason)),
    )


def unavailable_reason(index: int) -> r.ReasonInfo:
    info = n.UnavailableReasonInfo()
    n.call("dkSmlGetDeviceUnavailableReason", index, ctypes.byref(info))
    return r.ReasonInfo(reason=int(info.reason), text=n.text(info.reasonText))


def board_id(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetDeviceBoardId", index, ctypes.byref(value))
    return int(value.value)


def device_info(index: int) -> r.DeviceInfo:
    info = n.DeviceInfo()
    n.call("dkSmlGetDeviceInfo", index, ctypes.byref(info))
    return r.DeviceInfo(
        index=int(info.deviceIndex), bus_id=n.text(info.bdfId), gpu_id=int(info.gpuId), node_id=int(info.nodeId),
        uuid=n.text(info.uuid), brand=Brand(int(info.brand)),
        virtualization_mode=VirtualizationMode(int(info.virtualizationMode)), name=n.text(info.deviceName),
    )


def virtual_functions(index: int) -> list[int]:
    """Device indices of the virtual functions a physical function hosts."""
    return [int(v) for v in n.read_array("dkSmlGetVirtualDevicesByPhysicalId", n.u32, index)]


def real_path(index: int) -> str:
    return n.read_text("dkSmlGetDeviceRealPath", index)


def state(index: int) -> int:
    value = n.i32()
    n.call("dkSmlGetDeviceState", index, ctypes.byref(value))
    return int(value.value)


def isa_version(index: int) -> r.IsaVersion:
    isa = n.IsaVersion()
    n.call("dkSmlGetDeviceIsaVersion", index, ctypes.byref(isa))
    return r.IsaVersion(major=int(isa.major), minor=int(isa.minor))


def die_count(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetDeviceDieCount", index, ctypes.byref(value))
    return int(value.value)


# Clocks --------------------------------------------------------------------

def clocks(index: int, die: int = DIE_ALL) -> r.Clocks:
    """Clocks of one die; DIE_ALL reads the device."""
    record = n.ClocksFreqForAll()
    n.call("dkSmlGetClocks", index, die, ctypes.byref(record))
    values = {}
    for member in n.CLOCK_MEMBERS:
        freq = getattr(record, member)
        count = min(int(freq.count), n.CLOCK_MAX_VALUES)
        values[member + "_mhz"] = tuple(int(v) for v in freq.freq[:count])
    return r.Clocks(**values)


def throttle_reasons(index: int, die: int = DIE_ALL) -> int:
    """Throttle-reason mask of one die; DIE_ALL ORs every die."""
    mask = n.u64()
    n.call("dkSmlGetCurrentClocksThrottleReason", index, die, ctypes.byref(mask))
    return int(mask.value)


# Temperature, fan and voltage ---------------------------------------------

def temperature_c(index: int, sensor: TemperatureSensor = TemperatureSensor.HOTSPOT) -> Optional[int]:
    value = n.i32()
    n.call("dkSmlGetTemperatureInfo", index, int(sensor), ctypes.byref(value))
    return _reading(int(value.value))


def die_temperature_c(index: int, die: int, sensor: TemperatureSensor) -> Optional[int]:
    value = n.i32()
    n.call("dkSmlGetDieTemperatureInfo", index, die, int(sensor), ctypes.byref(value))
    return _reading(int(value.value))


def die_temperatures(index: int, die: int) -> r.Temperatures:
    t = n.Temperature()
    n.call("dkSmlGetDieTemperatureRecord", index, die, ctypes.byref(t))
    return r.Temperatures(
        hotspot_c=_reading(t.hotspot), hot_limit_c=_reading(t.hotLimit), soc_c=_reading(t.soc),
        core_c=_reading(t.core), emc_remote_c=_reading(t.emcRemote), mem_ctrl_max_c=_reading(t.memCtrlMax),
        mc0_c=_reading(t.mc0), mc1_c=_reading(t.mc1), hottest_sensor_index=_reading(t.hottestSensorIndex),
        emc_local_c=_reading(t.emcLocal), sgm_c=_reading(t.sgm), tmp435_u1_remote_c=_reading(t.tmp435U1Remote),
        tmp435_u2_remote_c=_reading(t.tmp435U2Remote),
    )


def die_sensor_table_c(index: int, die: int) -> list[list[int]]:
    """The die's temperature-sensor table, one list of readings per row."""
    table = n.SensorTable()
    n.call("dkSmlGetDieTemperatureSensor", index, die, ctypes.byref(table))
    rows = []
    for row in table.rows[: min(int(table.rowCount), n.SENSOR_ROWS)]:
        rows.append([int(v) for v in row.readings[: min(int(row.count), n.SENSOR_READINGS)]])
    return rows


def die_voltage_monitor_raw(index: int, die: int) -> list[list[int]]:
    """The die's voltage-monitor rows, raw readings as the driver gives them."""
    rows = n.read_array("dkSmlGetDieVmInfo", n.VmInfo, index, die)
    return [[int(v) for v in row.readings[: max(0, min(int(row.count), n.VM_READINGS))]] for row in rows]


def fan(index: int) -> r.Fan:
    rpm, pwm = n.u32(), n.u32()
    n.call("dkSmlGetFanSpeedInfo", index, ctypes.byref(rpm), ctypes.byref(pwm))
    return r.Fan(speed_rpm=int(rpm.value), duty_pwm=int(pwm.value))


# Power ---------------------------------------------------------------------

def _pmbus(record: n.PmbusInfo) -> r.Pmbus:
    return r.Pmbus(voltage_driver_units=int(record.voltage), current_driver_units=int(record.current),
                   power_driver_units=int(record.power))


def pmbus(index: int, unit: PmbusUnit, die: Optional[int] = None) -> r.Pmbus:
    """PMBus readings of a power unit: of one die, or of the first die that has it."""
    record = n.PmbusInfo()
    if die is None:
        n.call("dkSmlGetPmbusInfo", index, int(unit), ctypes.byref(record))
    else:
        n.call("dkSmlGetDiePmbusInfo", index, die, int(unit), ctypes.byref(record))
    return _pmbus(record)


def board_power_limit_mw(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetBoardPowerLimit", index, ctypes.byref(value))
    return int(value.value)


def pci_power_state(index: int) -> PciPowerState:
    value = n.u32()
    n.call("dkSmlGetPciPowerState", index, ctypes.byref(value))
    return PciPowerState(int(value.value))


# Memory and utilisation ----------------------------------------------------

def memory(index: int, die: Optional[int] = None) -> r.Memory:
    info = n.MemoryInfo()
    if die is None:
        n.call("dkSmlGetMemoryInfo", index, ctypes.byref(info))
    else:
        n.call("dkSmlGetDieMemoryInfo", index, die, ctypes.byref(info))
    pools = [r.MemoryPool(total_kib=int(p.total), used_kib=int(p.used)) for p in info.pool]
    return r.Memory(vram=pools[0], visible_vram=pools[1], gtt=pools[2])


def usage_percent(index: int, ip: UsageIp, die: Optional[int] = None) -> int:
    value = n.i32()
    if die is None:
        n.call("dkSmlGetDeviceIpUsage", index, int(ip), ctypes.byref(value))
    else:
        n.call("dkSmlGetDieIpUsage", index, die, int(ip), ctypes.byref(value))
    return int(value.value)


# PCIe ----------------------------------------------------------------------

def pcie_link(index: int, maximum: bool = False) -> r.PcieLink:
    info = n.PcieInfo()
    n.call("dkSmlGetPcieMaxLinkInfo" if maximum else "dkSmlGetPcieInfo", index, ctypes.byref(info))
    return r.PcieLink(speed_gts=float(info.speed), width_lanes=int(info.width))


# Versions ------------------------------------------------------------------

def version(index: int, unit: VersionUnit) -> str:
    return n.read_text("dkSmlGetDeviceVersion", index, int(unit))


def pptable_version(index: int) -> str:
    return n.read_text("dkSmlGetPptableVersion", index)


# The later families live in their own modules; dksml.api offers them all.
from .api_compat import *  # noqa: E402,F401,F403
from .api_platform import *  # noqa: E402,F401,F403
from .api_processes import *  # noqa: E402,F401,F403
from .api_units import *  # noqa: E402,F401,F403

__all__ = [name for name in dir() if not name.startswith("_") and name not in ("annotations", "ctypes", "n", "r",
                                                                              "Optional", "error_for")]
