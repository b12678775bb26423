"""RAS and ECC counters, identity texts and states, firmware log levels and
the I/O units (video units, codecs, HBM and DMA bandwidth, Ethernet, optical
modules): one function per native export."""

from __future__ import annotations

import ctypes
from typing import Optional

from . import _native as n
from . import _native_families as f
from . import records as r


def _u32(name: str, *args: object) -> int:
    value = n.u32()
    n.call(name, *args, ctypes.byref(value))
    return int(value.value)


# RAS and ECC ---------------------------------------------------------------

def ras_errors(index: int, block: int, die: Optional[int] = None) -> r.RasErrors:
    """Error counts of one hardware block, of the device or of one die (with deferred errors)."""
    if die is None:
        record = f.RasErrorData(block=block)
        n.call("dkSmlGetRasErrorData", index, ctypes.byref(record))
        return r.RasErrors(block=int(record.block), correctable=int(record.correctable),
                           uncorrectable=int(record.uncorrectable), deferred=None)
    record2 = f.RasErrorDataV2(block=block)
    n.call("dkSmlGetRasErrorData_v2", index, die, ctypes.byref(record2))
    return r.RasErrors(block=int(record2.block), correctable=int(record2.correctable),
                       uncorrectable=int(record2.uncorrectable), deferred=int(record2.deferred))


def ras_status(index: int) -> list[int]:
    """The RAS status word of every block."""
    return [int(v) for v in n.read_array("dkSmlGetRasStatusData", n.u32, index)]


def ecc_enabled(index: int) -> bool:
    return bool(_u32("dkSmlGetEccState", index))


def ecc_errors(index: int) -> r.EccErrors:
    record = f.EccErrorCount()
    n.call("dkSmlGetTotalEccErrors", index, ctypes.byref(record))
    return r.EccErrors(correctable=int(record.correctable), uncorrectable=int(record.uncorrectable))


# Identity texts and states -------------------------------------------------

def eeprom_info(index: int) -> str:
    return n.read_text("dkSmlGetEepromInfo", index)


def pci_event_info(index: int) -> str:
    """PCI error events as "Key:value;" pairs."""
    return n.read_text("dkSmlGetPciEventInfo", index)


def sriov_state(index: int) -> int:
    return _u32("dkSmlGetSriovState", index)


def firmware_log_level(index: int, ip: Optional[int] = None) -> int:
    if ip is None:
        return _u32("dkSmlGetFwLoglevel", index)
    return _u32("dkSmlGetFwIpLoglevel", index, ip)


# I/O units -----------------------------------------------------------------

def video_unit_states(index: int) -> list[int]:
    return [int(v) for v in n.read_array("dkSmlGetVpuStatus", n.u32, index)]


def codec_states(index: int) -> list[int]:
    return [int(v) for v in n.read_array("dkSmlGetCodecStatus", n.u32, index)]


def _bandwidth(name: str, index: int) -> list[r.Bandwidth]:
    return [r.Bandwidth(read=int(b.read), write=int(b.write))
            for b in n.read_array(name, f.BandwidthInfo, index)]


def hbm_bandwidth(index: int) -> list[r.Bandwidth]:
    """Read and write bandwidth of every HBM channel, in the driver's units."""
    return _bandwidth("dkSmlGetHbmBandWidth", index)


def dma_bandwidth(index: int) -> list[r.Bandwidth]:
    """Read and write bandwidth of every DMA engine, in the driver's units."""
    return _bandwidth("dkSmlGetDmaBandwidth", index)


def ethernet_throughput(index: int) -> list[r.EthernetThroughput]:
    return [r.EthernetThroughput(rx_bytes=int(p.rxBytes), tx_bytes=int(p.txBytes))
            for p in n.read_array("dkSmlGetEthThroughput", f.EthThroughput, index)]


def optical_module_states(index: int) -> list[int]:
    return [int(v) for v in n.read_array("dkSmlGetOpticalModuleStatus", n.u32, index)]


def optical_module_info(index: int, module: int) -> str:
    """Identity of one optical module as "Key:value;" pairs."""
    return n.read_text("dkSmlGetOpticalModuleInfo", index, module)


def optical_module_power(index: int, module: int) -> list[int]:
    """Optical power of every lane of one module, in the driver's units."""
    return [int(v) for v in n.read_array("dkSmlGetOpticalModulePower", n.i32, index, module)]


__all__ = [
    "ras_errors", "ras_status", "ecc_enabled", "ecc_errors", "eeprom_info", "pci_event_info", "sriov_state",
    "firmware_log_level", "video_unit_states", "codec_states", "hbm_bandwidth", "dma_bandwidth",
    "ethernet_throughput", "optical_module_states", "optical_module_info", "optical_module_power",
]
