"""Python interface to libdksml.so.2, the system-management library for the maker's GPUs.

    import dksml
    for device in dksml.devices():
        print(device.index, device.name, device.temperature, device.clocks.xcore_mhz)

The library is loaded from the file named by DKSML_LIBRARY, else found by the
dynamic loader. DK_SMI_FSROOT points it at a virtual host, as for dksmi.
Every failure raises DkSmlError (NotSupported when the device does not have
the feature); the low-level functions, one per export, are in dksml.api.
"""

from . import api
from .device import Device, devices, ensure_initialised
from .enums import (
    DIE_ALL, FIRST_VF_INDEX, Brand, ClockIp, DpmIp, ExClockId, ExClockType, ExLinkDeviceType, ExP2PCaps, ExP2PStatus,
    ExPcieCounter, ExReturn, ExTemperatureThreshold, ExTopologyLevel, LinkDirection, PciPowerState, PmbusUnit, Return,
    TemperatureSensor, TopologyLevel, UnavailableReason, UsageIp, VersionUnit, VirtualizationMode,
)
from .errors import DeviceNotAvailable, DkSmlError, NotSupported
from .records import (
    ApUsage, Bandwidth, BoardWay, Clocks, DeviceInfo, DpmLevels, EccErrors, EthernetThroughput, ExFieldValue,
    ExMemory, ExPciInfo, ExProcess, ExUtilization, Fan, IsaVersion, LimitedDevice, LinkAer, LinkBandwidth, LinkPort,
    LinkRemote, LinkState, LinkTopo, LinkTraffic, Memory, MemoryPool, PcieLink, PcieThroughput, Pmbus, Process,
    ProcessGpuUse, RasErrors, ReasonInfo, SliceInfo, SliceMemory, SliceQuota, Temperatures, UuidPair, Versions,
)


def limited_devices() -> list[LimitedDevice]:
    """GPU functions found but not served, each with its unavailable reason."""
    ensure_initialised()
    return [api.limited_device_info(index) for index in api.limited_device_indices()]


__all__ = [
    "api", "Device", "devices", "ensure_initialised", "limited_devices",
    "DIE_ALL", "FIRST_VF_INDEX", "Brand", "ClockIp", "DpmIp", "ExClockId", "ExClockType", "ExLinkDeviceType",
    "ExP2PCaps", "ExP2PStatus", "ExPcieCounter", "ExReturn", "ExTemperatureThreshold", "ExTopologyLevel",
    "LinkDirection", "PciPowerState", "PmbusUnit", "Return", "TemperatureSensor", "TopologyLevel",
    "UnavailableReason", "UsageIp", "VersionUnit", "VirtualizationMode",
    "DeviceNotAvailable", "DkSmlError", "NotSupported",
    "ApUsage", "Bandwidth", "BoardWay", "Clocks", "DeviceInfo", "DpmLevels", "EccErrors", "EthernetThroughput",
    "ExFieldValue", "ExMemory", "ExPciInfo", "ExProcess", "ExUtilization", "Fan", "IsaVersion", "LimitedDevice",
    "LinkAer", "LinkBandwidth", "LinkPort", "LinkRemote", "LinkState", "LinkTopo", "LinkTraffic", "Memory",
    "MemoryPool", "PcieLink", "PcieThroughput", "Pmbus", "Process", "ProcessGpuUse", "RasErrors", "ReasonInfo",
    "SliceInfo", "SliceMemory", "SliceQuota", "Temperatures", "UuidPair", "Versions",
]
