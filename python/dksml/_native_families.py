"""ctypes view of the records and prototypes of the later export families:
processes, slices, topology and affinity, interconnect links, PCIe, power
ways, performance levels, versions and the compatibility (dkSmlEx*) family.
Nothing here is public; _native merges the prototypes into its table."""

from __future__ import annotations

import ctypes
from typing import Any

u16 = ctypes.c_uint16
u32 = ctypes.c_uint32
i32 = ctypes.c_int32
u64 = ctypes.c_uint64
i64 = ctypes.c_int64
P = ctypes.POINTER
VOID = ctypes.c_void_p

BDF_LENGTH = 32
UUID_LENGTH = 96
PROCESS_NAME_LENGTH = 64
PROCESS_MAX_GPUS = 64
ALL_GPUS = 0xFFFFFFFF
MAX_SLICES = 16
DPM_IP_COUNT = 15
DPM_MAX_LEVELS = 16
VERSION_LENGTH = 64
LINK_MAX_PORTS = 16
EX_NAME_LENGTH = 64
EX_UUID_LENGTH = 96
EX_BUS_ID_LENGTH = 32
EX_LIBRARY_VERSION_LENGTH = 16
EX_DRIVER_VERSION_LENGTH = 64


class ProcessGpuInfo(ctypes.Structure):
    _fields_ = [("bdf", ctypes.c_char * BDF_LENGTH), ("deviceId", u32), ("memoryUsed", u64)]


class ProcessGpuInfoV2(ctypes.Structure):
    _fields_ = ProcessGpuInfo._fields_ + [("vramTag", u32)]


class ProcessGpuInfoV3(ctypes.Structure):
    _fields_ = ProcessGpuInfoV2._fields_ + [("sgpuId", i32)]


def _process_record(entry: Any) -> list[tuple[str, Any]]:
    return [("pid", u32), ("processName", ctypes.c_char * PROCESS_NAME_LENGTH), ("gpuCount", u32),
            ("gpuInfo", entry * PROCESS_MAX_GPUS)]


class ProcessInfo(ctypes.Structure):
    _fields_ = _process_record(ProcessGpuInfo)


class ProcessInfoV2(ctypes.Structure):
    _fields_ = _process_record(ProcessGpuInfoV2)


class ProcessInfoV3(ctypes.Structure):
    _fields_ = _process_record(ProcessGpuInfoV3)


class SgpuAvailableQuota(ctypes.Structure):
    _fields_ = [("totalVramQuota", u32), ("availableVramQuota", u32), ("availableComputeQuota", u32)]


class SgpuInfo(ctypes.Structure):
    _fields_ = [(name, u32) for name in ("sgpuId", "nodeId", "vramQuota", "computeQuota", "schedPriority",
                                         "minor", "online")] + [("uuid", ctypes.c_char * UUID_LENGTH)]


class SgpuMemoryInfo(ctypes.Structure):
    _fields_ = [("values", u64 * 3)]


class UuidPair(ctypes.Structure):
    _fields_ = [("localUuid", ctypes.c_char * UUID_LENGTH), ("remoteUuid", ctypes.c_char * UUID_LENGTH)]


class LinkRemoteInfo(ctypes.Structure):
    _fields_ = [("remoteDeviceIndex", u32), ("remoteDeviceType", u32), ("remoteBdfId", ctypes.c_char * BDF_LENGTH)]


class BoardWay(ctypes.Structure):
    _fields_ = [("values", u32 * 3)]


class DpmPerfLevel(ctypes.Structure):
    _fields_ = [("count", u32), ("values", u32 * DPM_MAX_LEVELS)]


class DpmForAll(ctypes.Structure):
    _fields_ = [("level", u32 * DPM_IP_COUNT)]


FIRMWARE_MEMBERS = ("smp0", "smp1", "ccx0", "ccx1", "ccx2", "ccx3", "mcu", "vr0", "vr1")


class FwVersion(ctypes.Structure):
    _fields_ = [(name, ctypes.c_char * VERSION_LENGTH) for name in FIRMWARE_MEMBERS]


class Version(ctypes.Structure):
    _fields_ = [("vbiosVersion", ctypes.c_char * VERSION_LENGTH), ("driverVersion", ctypes.c_char * VERSION_LENGTH),
                ("vornVersion", ctypes.c_char * VERSION_LENGTH), ("fwVersion", FwVersion)]


class PcieThroughput(ctypes.Structure):
    _fields_ = [("tx", u32), ("rx", u32)]


class LinkBandwidth(ctypes.Structure):
    _fields_ = [("values", u32 * 2)]


class LinkTrafficStat(ctypes.Structure):
    _fields_ = [("packets", u64), ("bytes", u64)]


class LinkAer(ctypes.Structure):
    _fields_ = [("correctable", u32), ("uncorrectable", u32)]


class LinkInfoV2(ctypes.Structure):
    _fields_ = [("portCount", u32), ("speed", ctypes.c_float * LINK_MAX_PORTS), ("width", u32 * LINK_MAX_PORTS),
                ("state", u32 * LINK_MAX_PORTS)]


class LinkTopo(ctypes.Structure):
    _fields_ = [("localPort", u32), ("remoteDeviceIndex", u32), ("remotePort", u32)]


class ExPciInfo(ctypes.Structure):
    _fields_ = [("busId", ctypes.c_char * EX_BUS_ID_LENGTH)] + [
        (name, u32) for name in ("domain", "bus", "device", "function", "pciDeviceId", "pciSubSystemId")]


class ExUtilization(ctypes.Structure):
    _fields_ = [("gpu", u32), ("memory", u32)]


class ExMemory(ctypes.Structure):
    _fields_ = [("free", u64), ("total", u64), ("used", u64)]


class ExProcessInfo(ctypes.Structure):
    _fields_ = [("pid", u32), ("usedGpuMemory", u64)]


class ExValue(ctypes.Union):
    _fields_ = [("dVal", ctypes.c_double), ("uiVal", u32), ("ullVal", u64), ("sllVal", i64)]


class ExFieldValue(ctypes.Structure):
    _fields_ = [("fieldId", u32), ("scopeId", u32), ("timestamp", i64), ("latencyUsec", i64), ("valueType", u32),
                ("dkSmlReturn", u32), ("value", ExValue)]


# name -> (result type, argument types), as in _native.PROTOTYPES. Handles are void pointers.
FAMILY_PROTOTYPES: dict[str, tuple[Any, list[Any]]] = {
    # Processes
    "dkSmlGetNumberOfProcess": (u32, [P(u32)]),
    "dkSmlGetProcessInfo": (u32, [u32, P(ProcessInfo)]),
    "dkSmlGetProcessInfo_v2": (u32, [u32, P(ProcessInfoV2)]),
    "dkSmlGetProcessInfo_v3": (u32, [u32, P(ProcessInfoV3)]),
    "dkSmlGetSingleGpuProcess": (u32, [u32, P(u32), P(ProcessInfo)]),
    "dkSmlGetSingleGpuProcess_v2": (u32, [u32, P(u32), P(ProcessInfoV2)]),
    "dkSmlGetSingleGpuProcess_v3": (u32, [u32, P(u32), P(ProcessInfoV3)]),
    # Slices
    "dkSmlGetSgpuToggle": (u32, [u32, P(u32)]),
    "dkSmlSetSgpuToggle": (u32, [u32, u32]),
    "dkSmlCreateSgpu": (u32, [u32, u32, u32, P(u32)]),
    "dkSmlRemoveSgpu": (u32, [u32, u32]),
    "dkSmlGetSgpuCount": (u32, [u32]),
    "dkSmlGetSgpuInfo": (u32, [u32, u32, P(SgpuInfo)]),
    "dkSmlSetSgpuDeviceQueuePriority": (u32, [u32, u32, u32]),
    "dkSmlGetSgpuState": (u32, [u32, u32, P(i32)]),
    "dkSmlSetSgpuVramQuota": (u32, [u32, u32, u32]),
    "dkSmlSetSgpuComputeQuota": (u32, [u32, u32, u32]),
    "dkSmlGetSgpuAvailableQuota": (u32, [u32, P(SgpuAvailableQuota)]),
    "dkSmlGetSgpuUsage": (u32, [u32, u32, P(i32)]),
    "dkSmlGetSgpuMemory": (u32, [u32, u32, P(SgpuMemoryInfo)]),
    "dkSmlGetDeviceTimeslice": (u32, [u32, P(u32)]),
    "dkSmlSetDeviceTimeslice": (u32, [u32, u32]),
    "dkSmlGetDeviceSchedClass": (u32, [u32, P(u32)]),
    "dkSmlSetDeviceSchedClass": (u32, [u32, u32]),
    "dkSmlGetSgpuAlias": (u32, [u32, u32, ctypes.c_char_p, P(u32)]),
    "dkSmlSetSgpuAlias": (u32, [u32, u32, ctypes.c_char_p]),
    "dkSmlGetSgpuAnnotationsId": (u32, [u32, u32, ctypes.c_char_p, P(u32)]),
    # Topology, affinity, link peers
    "dkSmlGetLocalAndRemoteUuid": (u32, [u32, P(UuidPair)]),
    "dkSmlGetLocalAndMultipleRemoteUuid": (u32, [u32, P(u32), P(UuidPair)]),
    "dkSmlGetDeviceTopology": (u32, [u32, u32, P(u32)]),
    "dkSmlGetDeviceDistance": (u32, [u32, u32, P(u32)]),
    "dkSmlGetCpuAffinity": (u32, [u32, u32, P(u32)]),
    "dkSmlSetCpuAffinity": (u32, [u32]),
    "dkSmlClearCpuAffinity": (u32, [u32]),
    "dkSmlGetNodeAffinity": (u32, [u32, u32, P(u32)]),
    "dkSmlGetDravikLinkRemoteInfo": (u32, [u32, u32, P(LinkRemoteInfo)]),
    # Power ways and per-IP power states
    "dkSmlGetBoardPowerInfo": (u32, [u32, P(u32), P(BoardWay)]),
    "dkSmlGetPowerStateInfo": (u32, [u32, u32, P(i32), P(u32)]),
    "dkSmlGetDiePowerStateInfo": (u32, [u32, u32, u32, P(i32), P(u32)]),
    # Performance levels
    "dkSmlGetDpmIpClockInfo": (u32, [u32, u32, P(DpmPerfLevel)]),
    "dkSmlGetDpmIpVddInfo": (u32, [u32, u32, P(DpmPerfLevel)]),
    "dkSmlGetCurrentDpmIpPerfLevel": (u32, [u32, u32, P(u32)]),
    "dkSmlGetCurrentDieDpmIpPerfLevel": (u32, [u32, u32, u32, P(u32)]),
    "dkSmlGetDpmMaxPerfLevel": (u32, [u32, P(DpmForAll)]),
    "dkSmlGetDpmIpMaxPerfLevel": (u32, [u32, u32, P(u32)]),
    "dkSmlGetDieDpmIpMaxPerfLevel": (u32, [u32, u32, u32, P(u32)]),
    "dkSmlSetDpmIpMaxPerfLevel": (u32, [u32, u32, u32]),
    # AP usage
    "dkSmlGetXcoreApUsage": (u32, [u32, P(u32), P(u32), P(u32)]),
    "dkSmlGetDieXcoreApUsage": (u32, [u32, u32, P(u32), P(u32), P(u32)]),
    "dkSmlGetApUsageToggle": (u32, [u32, P(u32)]),
    "dkSmlGetDieApUsageToggle": (u32, [u32, u32, P(u32)]),
    # Versions and serials
    "dkSmlGetDeviceDieVersion": (u32, [u32, u32, P(Version)]),
    "dkSmlGetVornVersion": (u32, [ctypes.c_char_p, P(u32)]),
    "dkSmlGetBoardSerial": (u32, [u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetChipSerial": (u32, [u32, ctypes.c_char_p, P(u32)]),
    # PCIe
    "dkSmlGetPcieThroughput": (u32, [u32, P(PcieThroughput)]),
    "dkSmlGetPciDelay": (u32, [u32, P(u32)]),
    "dkSmlGetDeviceSlot": (u32, [u32, P(u32)]),
    "dkSmlGetPciMmioState": (u32, [u32, P(u32)]),
    # Interconnect links
    "dkSmlGetDravikLinkBandwidth": (u32, [u32, u32, P(u32), P(LinkBandwidth)]),
    "dkSmlGetDravikLinkTrafficStat": (u32, [u32, u32, P(u32), P(LinkTrafficStat)]),
    "dkSmlGetDravikLinkAer": (u32, [u32, P(u32), P(LinkAer)]),
    "dkSmlGetDravikLinkInfo_v2": (u32, [u32, P(LinkInfoV2)]),
    "dkSmlGetDravikLinkState": (u32, [u32, P(u32), ctypes.c_char_p, P(u32)]),
    "dkSmlGetDravikLinkPortState": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetDravikLinkTopo": (u32, [u32, P(u32), P(LinkTopo)]),
    # Compatibility family: status codes are DkSmlExReturn, devices are handles.
    "dkSmlExInit": (u32, []),
    "dkSmlExShutdown": (u32, []),
    "dkSmlExErrorString": (ctypes.c_char_p, [u32]),
    "dkSmlExDeviceGetCount": (u32, [P(u32)]),
    "dkSmlExVornDeviceGetCount": (u32, [P(u32)]),
    "dkSmlExGetDeviceHandleByIndex": (u32, [u32, P(VOID)]),
    "dkSmlExDeviceGetHandleByUUID": (u32, [ctypes.c_char_p, P(VOID)]),
    "dkSmlExGetDeviceHandleByPciBusId": (u32, [ctypes.c_char_p, P(VOID)]),
    "dkSmlExDeviceGetName": (u32, [VOID, ctypes.c_char_p, u32]),
    "dkSmlExDeviceGetUUID": (u32, [VOID, ctypes.c_char_p, u32]),
    "dkSmlExDeviceGetPciInfo": (u32, [VOID, P(ExPciInfo)]),
    "dkSmlExDeviceGetMinorNumber": (u32, [VOID, P(u32)]),
    "dkSmlExDeviceGetComputeCapability": (u32, [VOID, P(i32), P(i32)]),
    "dkSmlExDeviceGetTemperature": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetTemperatureThreshold": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetClockInfo": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetClock": (u32, [VOID, u32, u32, P(u32)]),
    "dkSmlExDeviceGetApplicationsClock": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetSupportedMemoryClocks": (u32, [VOID, P(u32), P(u32)]),
    "dkSmlExDeviceGetSupportedGraphicsClocks_v2": (u32, [VOID, u32, P(u32), P(u32)]),
    "dkSmlExDeviceGetPerformanceState": (u32, [VOID, P(u32)]),
    "dkSmlExDeviceGetAutoBoostedClocksEnabled": (u32, [VOID, P(u32), P(u32)]),
    "dkSmlExDeviceGetSupportedClocksThrottleReasons": (u32, [VOID, P(u64)]),
    "dkSmlExDeviceGetCurrentClocksThrottleReasons": (u32, [VOID, P(u64)]),
    "dkSmlExGetPowerUsage": (u32, [VOID, P(u32)]),
    "dkSmlExGetPowerManagementLimit": (u32, [VOID, P(u32)]),
    "dkSmlExDeviceGetEnforcedPowerLimit": (u32, [VOID, P(u32)]),
    "dkSmlExDeviceGetUtilization": (u32, [VOID, P(ExUtilization)]),
    "dkSmlExDeviceGetMemoryInfo": (u32, [VOID, P(ExMemory)]),
    "dkSmlExDeviceGetCurrPcieLinkWidth": (u32, [VOID, P(u32)]),
    "dkSmlExGetMaxPcieLinkWidth": (u32, [VOID, P(u32)]),
    "dkSmlExGetPcieThroughput": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetCpuAffinity": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetTopologyCommonAncestor": (u32, [VOID, VOID, P(u32)]),
    "dkSmlExDeviceGetP2PStatus": (u32, [VOID, VOID, u32, P(u32)]),
    "dkSmlExDeviceGetDravikLinkState": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetDravikLinkRemotePciInfo_v2": (u32, [VOID, u32, P(ExPciInfo)]),
    "dkSmlExDeviceGetDravikLinkRemoteDeviceType": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetFieldValues": (u32, [VOID, u32, P(ExFieldValue)]),
    "dkSmlExDeviceGetFanSpeed": (u32, [VOID, P(u32)]),
    "dkSmlExDeviceGetFanSpeed_v2": (u32, [VOID, u32, P(u32)]),
    "dkSmlExDeviceGetComputeRunningProcesses": (u32, [VOID, P(u32), P(ExProcessInfo)]),
    "dkSmlExSystemGetDriverVersion": (u32, [ctypes.c_char_p, u32]),
    "dkSmlExSystemGetVornDriverVersion": (u32, [P(u32)]),
    "dkSmlExSystemGetDksmlVersion": (u32, [ctypes.c_char_p, u32]),
}


class RasErrorData(ctypes.Structure):
    _fields_ = [("block", u32), ("correctable", u64), ("uncorrectable", u64)]


class RasErrorDataV2(ctypes.Structure):
    _fields_ = RasErrorData._fields_ + [("deferred", u64)]


class EccErrorCount(ctypes.Structure):
    _fields_ = [("correctable", u64), ("uncorrectable", u64)]


class BandwidthInfo(ctypes.Structure):
    _fields_ = [("read", u64), ("write", u64)]


class EthThroughput(ctypes.Structure):
    _fields_ = [("rxBytes", u64), ("txBytes", u64)]


FAMILY_PROTOTYPES.update({
    # RAS and ECC
    "dkSmlGetRasErrorData": (u32, [u32, P(RasErrorData)]),
    "dkSmlGetRasErrorData_v2": (u32, [u32, u32, P(RasErrorDataV2)]),
    "dkSmlGetRasStatusData": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetEccState": (u32, [u32, P(u32)]),
    "dkSmlGetTotalEccErrors": (u32, [u32, P(EccErrorCount)]),
    # Identity texts and states
    "dkSmlGetEepromInfo": (u32, [u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetPciEventInfo": (u32, [u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetSriovState": (u32, [u32, P(u32)]),
    "dkSmlGetFwLoglevel": (u32, [u32, P(u32)]),
    "dkSmlGetFwIpLoglevel": (u32, [u32, u32, P(u32)]),
    # I/O units
    "dkSmlGetVpuStatus": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetCodecStatus": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetHbmBandWidth": (u32, [u32, P(u32), P(BandwidthInfo)]),
    "dkSmlGetDmaBandwidth": (u32, [u32, P(u32), P(BandwidthInfo)]),
    "dkSmlGetEthThroughput": (u32, [u32, P(u32), P(EthThroughput)]),
    "dkSmlGetOpticalModuleStatus": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetOpticalModuleInfo": (u32, [u32, u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetOpticalModulePower": (u32, [u32, u32, P(u32), P(i32)]),
})
