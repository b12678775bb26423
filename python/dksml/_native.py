"""ctypes view of libdksml.so.2: the records of dksml.h and the prototypes of
the exports this module uses. Nothing here is public."""

from __future__ import annotations

import ctypes
import os
import threading
from pathlib import Path
from typing import Any, Callable, Optional

from ._native_families import FAMILY_PROTOTYPES
from .enums import ExReturn, Return
from .errors import error_for, ex_error_for

u32 = ctypes.c_uint32
i32 = ctypes.c_int32
u64 = ctypes.c_uint64
P = ctypes.POINTER

BDF_LENGTH = 32
UUID_LENGTH = 96
NAME_LENGTH = 32
REASON_LENGTH = 64
CLOCK_MAX_VALUES = 9
SENSOR_ROWS = 35
SENSOR_READINGS = 16
VM_READINGS = 16
MEMORY_POOLS = 3

LIBRARY_NAME = "libdksml.so.2"
LIBRARY_ENV = "DKSML_LIBRARY"


class DeviceInfo(ctypes.Structure):
    _fields_ = [
        ("deviceIndex", u32),
        ("bdfId", ctypes.c_char * BDF_LENGTH),
        ("gpuId", u32),
        ("nodeId", u32),
        ("uuid", ctypes.c_char * UUID_LENGTH),
        ("brand", u32),
        ("virtualizationMode", u32),
        ("deviceName", ctypes.c_char * NAME_LENGTH),
    ]


class LimitedDeviceInfo(ctypes.Structure):
    _fields_ = [
        ("deviceIndex", u32),
        ("bdfId", ctypes.c_char * BDF_LENGTH),
        ("vendorId", u32),
        ("deviceId", u32),
        ("isVf", u32),
        ("unavailableReason", u32),
    ]


class UnavailableReasonInfo(ctypes.Structure):
    _fields_ = [("reason", u32), ("reasonText", ctypes.c_char * REASON_LENGTH)]


class IsaVersion(ctypes.Structure):
    _fields_ = [("major", u32), ("minor", u32)]


class ClockFreq(ctypes.Structure):
    _fields_ = [("count", u32), ("freq", u32 * CLOCK_MAX_VALUES)]


# Member order is the record's own (xcore third).
CLOCK_MEMBERS = ("csc", "dla", "xcore", "mc", "mc0", "mc1", "vpue", "vpud", "soc", "dnoc", "gpu", "ccx", "xpu")


class ClocksFreqForAll(ctypes.Structure):
    _fields_ = [(name, ClockFreq) for name in CLOCK_MEMBERS]


class Temperature(ctypes.Structure):
    _fields_ = [
        (name, i32)
        for name in (
            "hotspot", "hotLimit", "soc", "core", "emcRemote", "memCtrlMax", "mc0", "mc1",
            "hottestSensorIndex", "emcLocal", "sgm", "tmp435U1Remote", "tmp435U2Remote",
        )
    ]


class SensorRow(ctypes.Structure):
    _fields_ = [("readings", i32 * SENSOR_READINGS), ("count", u32)]


class SensorTable(ctypes.Structure):
    _fields_ = [("rows", SensorRow * SENSOR_ROWS), ("rowCount", u32)]


class VmInfo(ctypes.Structure):
    _fields_ = [("readings", i32 * VM_READINGS), ("count", i32)]


class PmbusInfo(ctypes.Structure):
    _fields_ = [("voltage", u32), ("current", u32), ("power", u32)]


class MemoryPool(ctypes.Structure):
    _fields_ = [("total", u64), ("used", u64)]


class MemoryInfo(ctypes.Structure):
    _fields_ = [("pool", MemoryPool * MEMORY_POOLS)]


class PcieInfo(ctypes.Structure):
    _fields_ = [("speed", ctypes.c_float), ("width", u32)]


# Every export used: name -> (result type, argument types). Enumerations are 32 bits.
PROTOTYPES: dict[str, tuple[Any, list[Any]]] = {
    "dkSmlInit": (u32, []),
    "dkSmlInitWithFlags": (u32, [u32]),
    "dkSmlGetErrorString": (ctypes.c_char_p, [u32]),
    "dkSmlGetOpMode": (u32, [P(u32)]),
    "dkSmlGetDeviceCount": (u32, []),
    "dkSmlGetPfDeviceCount": (u32, []),
    "dkSmlGetAllLimitedDevices": (u32, [P(u32), P(u32)]),
    "dkSmlGetLimitedDeviceInfo": (u32, [u32, P(LimitedDeviceInfo)]),
    "dkSmlGetDeviceBoardId": (u32, [u32, P(u32)]),
    "dkSmlGetDeviceInfo": (u32, [u32, P(DeviceInfo)]),
    "dkSmlGetVirtualDevicesByPhysicalId": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetDeviceRealPath": (u32, [u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetDeviceState": (u32, [u32, P(i32)]),
    "dkSmlGetDeviceIsaVersion": (u32, [u32, P(IsaVersion)]),
    "dkSmlGetDeviceUnavailableReason": (u32, [u32, P(UnavailableReasonInfo)]),
    "dkSmlGetDeviceDieCount": (u32, [u32, P(u32)]),
    "dkSmlGetClocks": (u32, [u32, u32, P(ClocksFreqForAll)]),
    "dkSmlGetCurrentClocksThrottleReason": (u32, [u32, u32, P(u64)]),
    "dkSmlGetTemperatureInfo": (u32, [u32, u32, P(i32)]),
    "dkSmlGetDieTemperatureInfo": (u32, [u32, u32, u32, P(i32)]),
    "dkSmlGetDieTemperatureRecord": (u32, [u32, u32, P(Temperature)]),
    "dkSmlGetDieTemperatureSensor": (u32, [u32, u32, P(SensorTable)]),
    "dkSmlGetDieVmInfo": (u32, [u32, u32, P(u32), P(VmInfo)]),
    "dkSmlGetFanSpeedInfo": (u32, [u32, P(u32), P(u32)]),
    "dkSmlGetPmbusInfo": (u32, [u32, u32, P(PmbusInfo)]),
    "dkSmlGetDiePmbusInfo": (u32, [u32, u32, u32, P(PmbusInfo)]),
    "dkSmlGetBoardPowerLimit": (u32, [u32, P(u32)]),
    "dkSmlGetPciPowerState": (u32, [u32, P(u32)]),
    "dkSmlGetMemoryInfo": (u32, [u32, P(MemoryInfo)]),
    "dkSmlGetDieMemoryInfo": (u32, [u32, u32, P(MemoryInfo)]),
    "dkSmlGetDeviceIpUsage": (u32, [u32, u32, P(i32)]),
    "dkSmlGetDieIpUsage": (u32, [u32, u32, u32, P(i32)]),
    "dkSmlGetPcieInfo": (u32, [u32, P(PcieInfo)]),
    "dkSmlGetPcieMaxLinkInfo": (u32, [u32, P(PcieInfo)]),
    "dkSmlGetDeviceVersion": (u32, [u32, u32, ctypes.c_char_p, P(u32)]),
    "dkSmlGetPptableVersion": (u32, [u32, ctypes.c_char_p, P(u32)]),
}
PROTOTYPES.update(FAMILY_PROTOTYPES)

def _load() -> ctypes.CDLL:
    named = os.environ.get(LIBRARY_ENV)
    if named:
        return ctypes.CDLL(named)
    try:
        return ctypes.CDLL(LIBRARY_NAME)
    except OSError:
        # Installed by cmake: PREFIX/lib/python3/dist-packages/dksml/ sits below PREFIX/lib/.
        beside = Path(__file__).resolve().parents[3] / LIBRARY_NAME
        if beside.exists():
            return ctypes.CDLL(str(beside))
        raise


_lock = threading.Lock()
_library: Optional[ctypes.CDLL] = None


def library() -> ctypes.CDLL:
    """The loaded library: DKSML_LIBRARY names a file, else the loader finds it."""
    global _library
    with _lock:
        if _library is None:
            lib = _load()
            for name, (restype, argtypes) in PROTOTYPES.items():
                function = getattr(lib, name)
                function.restype = restype
                function.argtypes = argtypes
            _library = lib
        return _library


def error_text(code: int) -> str:
    raw: Optional[bytes] = library().dkSmlGetErrorString(code)
    return raw.decode("utf-8", "replace") if raw else ""


def call(name: str, *args: Any) -> None:
    """Calls an export that returns a status; raises on anything but success."""
    code = int(getattr(library(), name)(*args))
    if code != Return.SUCCESS:
        raise error_for(code, error_text(code), name)


def text(field: bytes) -> str:
    return field.decode("utf-8", "replace")


def read_text(name: str, *args: Any) -> str:
    """A text export (buffer and size in/out): the first call learns the size."""
    size = u32(0)
    code = int(getattr(library(), name)(*args, None, ctypes.byref(size)))
    if code not in (Return.SUCCESS, Return.ERROR_INSUFFICIENT_SIZE, Return.ERROR_INVALID_INPUT):
        raise error_for(code, error_text(code), name)
    for _ in range(3):
        buffer = ctypes.create_string_buffer(max(int(size.value), 1) + 1)
        size = u32(len(buffer))
        code = int(getattr(library(), name)(*args, buffer, ctypes.byref(size)))
        if code == Return.SUCCESS:
            return text(buffer.value)
        if code != Return.ERROR_INSUFFICIENT_SIZE:
            break
    raise error_for(code, error_text(code), name)


def read_array(name: str, element: Any, *args: Any, count_first: bool = True, compat: bool = False) -> list[Any]:
    """An array export with a count in/out: the first call learns the count.

    ``count_first`` says whether the count pointer comes before the array;
    ``compat`` that the export is of the dkSmlEx* family (its own statuses)."""
    success, too_small, bad_input = ((ExReturn.SUCCESS, ExReturn.ERROR_INSUFFICIENT_SIZE, ExReturn.ERROR_INVALID_ARGUMENT)
                                     if compat else
                                     (Return.SUCCESS, Return.ERROR_INSUFFICIENT_SIZE, Return.ERROR_INVALID_INPUT))

    def invoke(count: Any, array: Any) -> int:
        ordered = (count, array) if count_first else (array, count)
        return int(getattr(library(), name)(*args, *ordered))

    count = u32(0)
    code = invoke(ctypes.byref(count), None)
    last: list[Any] = []
    for _ in range(3):
        if code == success and count.value == 0:
            return []
        if code not in (success, too_small, bad_input):
            break
        capacity = max(int(count.value), 1)
        array = (element * capacity)()
        count = u32(capacity)
        code = invoke(ctypes.byref(count), array)
        # Some exports answer success with the number found even when it is above the capacity.
        if code == success and int(count.value) <= capacity:
            return list(array[: int(count.value)])
        last = list(array)
    if code == success:  # still growing after three tries: what the last call filled
        return last
    if compat:
        raise ex_error_for(code, ex_error_text(code), name)
    raise error_for(code, error_text(code), name)


Getter = Callable[..., Any]


def fixed_array(name: str, element: Any, capacity: int, *args: Any, count_first: bool = True) -> list[Any]:
    """An array export whose length the library bounds (ports, ways): one call
    with that bound as the capacity."""
    array = (element * capacity)()
    count = u32(capacity)
    ordered = (ctypes.byref(count), array) if count_first else (array, ctypes.byref(count))
    call(name, *args, *ordered)
    return list(array[: min(int(count.value), capacity)])


def ex_error_text(code: int) -> str:
    raw: Optional[bytes] = library().dkSmlExErrorString(code)
    return raw.decode("utf-8", "replace") if raw else ""


def ex_call(name: str, *args: Any) -> None:
    """Calls a compatibility (dkSmlEx*) export; its statuses are DkSmlExReturn values."""
    code = int(getattr(library(), name)(*args))
    if code != ExReturn.SUCCESS:
        raise ex_error_for(code, ex_error_text(code), name)
