"""Processes using the GPUs, and slice GPUs: one function per native export."""

from __future__ import annotations

import ctypes
from typing import Any

from . import _native as n
from . import _native_families as f
from . import records as r
from .errors import DkSmlError

# Processes -----------------------------------------------------------------

_RECORD_BY_VERSION: dict[int, tuple[str, str, Any]] = {
    1: ("dkSmlGetProcessInfo", "dkSmlGetSingleGpuProcess", f.ProcessInfo),
    2: ("dkSmlGetProcessInfo_v2", "dkSmlGetSingleGpuProcess_v2", f.ProcessInfoV2),
    3: ("dkSmlGetProcessInfo_v3", "dkSmlGetSingleGpuProcess_v3", f.ProcessInfoV3),
}


def _process(record: Any) -> r.Process:
    uses = []
    for entry in record.gpuInfo[: min(int(record.gpuCount), f.PROCESS_MAX_GPUS)]:
        slice_id = int(getattr(entry, "sgpuId", -1))
        uses.append(r.ProcessGpuUse(
            bus_id=n.text(entry.bdf), device_index=int(entry.deviceId), memory_bytes=int(entry.memoryUsed),
            memory_domain=int(getattr(entry, "vramTag", 0)), slice_id=None if slice_id < 0 else slice_id,
        ))
    # The name field is not terminated when it is 64 long: .value stops at the end either way.
    return r.Process(pid=int(record.pid), name=n.text(record.processName), gpus=tuple(uses))


def process_count() -> int:
    """Number of processes holding memory on any GPU."""
    count = n.u32()
    n.call("dkSmlGetNumberOfProcess", ctypes.byref(count))
    return int(count.value)


def processes(version: int = 3) -> list[r.Process]:
    """Every process using a GPU, through the record version asked for (1, 2 or 3:
    the memory domain comes with 2, the slice id with 3)."""
    name, _, record = _RECORD_BY_VERSION[version]
    count = process_count()
    if count == 0:
        return []
    array = (record * count)()
    n.call(name, count, array)
    # Fewer processes than counted when one exited in between: those records stay empty.
    return [_process(p) for p in array if int(p.gpuCount) > 0]


def device_processes(index: int, version: int = 3) -> list[r.Process]:
    """Processes using one device. Version 3 also answers for a device in slice
    mode: the processes whose first GPU is one of its slices."""
    _, name, record = _RECORD_BY_VERSION[version]
    # No device has more users than the host has processes; the slice-parent
    # form reports only what fits, so the capacity is that bound from the start.
    capacity = max(process_count(), 1)
    array = (record * capacity)()
    count = n.u32(capacity)
    n.call(name, index, ctypes.byref(count), array)
    return [_process(p) for p in array[: min(int(count.value), capacity)] if int(p.gpuCount) > 0]


# Slices --------------------------------------------------------------------

def slice_mode(index: int) -> bool:
    on = n.u32()
    n.call("dkSmlGetSgpuToggle", index, ctypes.byref(on))
    return bool(on.value)


def set_slice_mode(index: int, on: bool) -> None:
    n.call("dkSmlSetSgpuToggle", index, 1 if on else 0)


def create_slice(index: int, vram_quota: int, compute_quota: int) -> int:
    """Creates a slice; its id."""
    slice_id = n.u32()
    n.call("dkSmlCreateSgpu", index, vram_quota, compute_quota, ctypes.byref(slice_id))
    return int(slice_id.value)


def remove_slice(index: int, slice_id: int) -> None:
    n.call("dkSmlRemoveSgpu", index, slice_id)


def slice_count(index: int) -> int:
    """Number of slices (0 when the device has none or is unknown: the export answers a count)."""
    return int(n.library().dkSmlGetSgpuCount(index))


def slice_info(index: int, slice_id: int) -> r.SliceInfo:
    info = f.SgpuInfo()
    n.call("dkSmlGetSgpuInfo", index, slice_id, ctypes.byref(info))
    return r.SliceInfo(
        slice_id=int(info.sgpuId), node_id=int(info.nodeId), vram_quota=int(info.vramQuota),
        compute_quota=int(info.computeQuota), sched_priority=int(info.schedPriority), minor=int(info.minor),
        online=int(info.online), uuid=n.text(info.uuid),
    )


def slice_ids(index: int) -> list[int]:
    """Ids of the slices that answer, in order."""
    found = []
    for slice_id in range(f.MAX_SLICES):
        try:
            slice_info(index, slice_id)
        except DkSmlError:  # an id without a slice
            continue
        found.append(slice_id)
    return found


def set_slice_queue_priority(index: int, slice_id: int, priority: int) -> None:
    n.call("dkSmlSetSgpuDeviceQueuePriority", index, slice_id, priority)


def slice_state(index: int, slice_id: int) -> int:
    value = n.i32()
    n.call("dkSmlGetSgpuState", index, slice_id, ctypes.byref(value))
    return int(value.value)


def set_slice_vram_quota(index: int, slice_id: int, quota: int) -> None:
    n.call("dkSmlSetSgpuVramQuota", index, slice_id, quota)


def set_slice_compute_quota(index: int, slice_id: int, quota: int) -> None:
    n.call("dkSmlSetSgpuComputeQuota", index, slice_id, quota)


def slice_available_quota(index: int) -> r.SliceQuota:
    quota = f.SgpuAvailableQuota()
    n.call("dkSmlGetSgpuAvailableQuota", index, ctypes.byref(quota))
    return r.SliceQuota(total_vram_quota=int(quota.totalVramQuota),
                        available_vram_quota=int(quota.availableVramQuota),
                        available_compute_quota=int(quota.availableComputeQuota))


def slice_usage_percent(index: int, slice_id: int) -> int:
    value = n.i32()
    n.call("dkSmlGetSgpuUsage", index, slice_id, ctypes.byref(value))
    return int(value.value)


def slice_memory(index: int, slice_id: int) -> r.SliceMemory:
    memory = f.SgpuMemoryInfo()
    n.call("dkSmlGetSgpuMemory", index, slice_id, ctypes.byref(memory))
    total, used, free = (int(v) for v in memory.values)
    return r.SliceMemory(total_bytes=total, used_bytes=used, free_bytes=free)


def slice_timeslice(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetDeviceTimeslice", index, ctypes.byref(value))
    return int(value.value)


def set_slice_timeslice(index: int, timeslice: int) -> None:
    n.call("dkSmlSetDeviceTimeslice", index, timeslice)


def slice_sched_class(index: int) -> int:
    value = n.u32()
    n.call("dkSmlGetDeviceSchedClass", index, ctypes.byref(value))
    return int(value.value)


def set_slice_sched_class(index: int, sched_class: int) -> None:
    n.call("dkSmlSetDeviceSchedClass", index, sched_class)


def slice_alias(index: int, slice_id: int) -> str:
    return n.read_text("dkSmlGetSgpuAlias", index, slice_id)


def set_slice_alias(index: int, slice_id: int, alias: str) -> None:
    n.call("dkSmlSetSgpuAlias", index, slice_id, alias.encode())


def slice_annotation_id(index: int, slice_id: int) -> str:
    return n.read_text("dkSmlGetSgpuAnnotationsId", index, slice_id)


__all__ = [
    "process_count", "processes", "device_processes", "slice_mode", "set_slice_mode", "create_slice",
    "remove_slice", "slice_count", "slice_info", "slice_ids", "set_slice_queue_priority", "slice_state",
    "set_slice_vram_quota", "set_slice_compute_quota", "slice_available_quota", "slice_usage_percent",
    "slice_memory", "slice_timeslice", "set_slice_timeslice", "slice_sched_class", "set_slice_sched_class",
    "slice_alias", "set_slice_alias", "slice_annotation_id",
]
