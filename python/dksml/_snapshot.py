"""Readers of the snapshot's later blocks (versions, processes, slices, PCIe,
interconnect, power, usage, memory, performance levels), each giving what
`dksmi --json` shows for the block: the value, or None where the library
refuses it."""

from __future__ import annotations

from typing import Any, Callable, Optional, TypeVar

from . import api
from .enums import DpmIp, LinkDirection, PciPowerState, PmbusUnit, UsageIp, VersionUnit
from .errors import DkSmlError
from .records import Memory

T = TypeVar("T")


def or_none(read: Callable[[], T]) -> Optional[T]:
    """The value, or None when the library refuses it (shown as null by dksmi)."""
    try:
        return read()
    except DkSmlError:
        return None


# dksmi's names, in its order.
FIRMWARE_UNITS = ("SMP0", "SMP1", "CCX0", "CCX1", "CCX2", "CCX3", "MCU", "VR0", "VR1")
ENGINES: tuple[tuple[str, UsageIp], ...] = (
    ("xcore", UsageIp.XCORE), ("dla", UsageIp.DLA), ("vpue", UsageIp.VPUE), ("vpud", UsageIp.VPUD),
    ("g2d", UsageIp.G2D),
)
RAILS: tuple[tuple[str, PmbusUnit], ...] = (
    ("soc", PmbusUnit.SOC), ("core", PmbusUnit.CORE), ("hbm", PmbusUnit.HBM), ("pcie", PmbusUnit.PCIE),
    ("hbm2", PmbusUnit.HBM2), ("pcie2", PmbusUnit.PCIE2),
)
PCI_POWER_STATE_NAMES = {PciPowerState.D0: "D0", PciPowerState.D3HOT: "D3hot", PciPowerState.D3COLD: "D3cold"}


def versions(index: int) -> dict[str, Any]:
    stack = or_none(lambda: api.die_versions(index, 0))
    return {
        "driver": or_none(lambda: api.version(index, VersionUnit.DRIVER)),
        "vbios": or_none(lambda: api.version(index, VersionUnit.VBIOS)),
        "compute_stack": stack.compute_stack if stack is not None else None,
        "firmware": {unit: or_none(lambda: api.version(index, VersionUnit["FW_" + unit])) for unit in FIRMWARE_UNITS},
    }


def process_count(index: int) -> Optional[int]:
    """Processes with memory on the device; None when the process scan fails."""
    processes = or_none(api.processes)
    if processes is None:
        return None
    return sum(1 for p in processes if any(use.device_index == index for use in p.gpus))


def slice_mode(index: int) -> Optional[bool]:
    return or_none(lambda: api.slice_mode(index))


def slices(index: int) -> list[dict[str, Any]]:
    if not slice_mode(index):
        return []
    out = []
    for slice_id in api.slice_ids(index):
        info = api.slice_info(index, slice_id)
        memory = or_none(lambda: api.slice_memory(index, slice_id))
        out.append({
            "id": slice_id,
            "uuid": info.uuid or None,
            "alias": or_none(lambda: api.slice_alias(index, slice_id)) or "",
            "vram_quota": info.vram_quota,
            "compute_quota": info.compute_quota,
            "state": or_none(lambda: api.slice_state(index, slice_id)),
            "utilization_percent": or_none(lambda: api.slice_usage_percent(index, slice_id)),
            "memory": None if memory is None else {"total": memory.total_bytes, "used": memory.used_bytes,
                                                   "free": memory.free_bytes},
        })
    return out


def pcie(index: int) -> dict[str, Any]:
    def link(maximum: bool) -> Optional[dict[str, Any]]:
        info = or_none(lambda: api.pcie_link(index, maximum))
        return None if info is None else {"speed_gts": info.speed_gts, "width": info.width_lanes}

    throughput = or_none(lambda: api.pcie_throughput(index))
    return {
        "current": link(False),
        "maximum": link(True),
        "slot": or_none(lambda: api.slot(index)),
        "throughput": None if throughput is None else {"rx_bytes": throughput.rx_bytes,
                                                       "tx_bytes": throughput.tx_bytes},
    }


def interconnect(index: int) -> dict[str, Any]:
    def bandwidth(direction: LinkDirection) -> Optional[list[list[int]]]:
        links = or_none(lambda: api.link_bandwidth(index, direction))
        return None if links is None else [[b.current_driver_units, b.maximum_driver_units] for b in links]

    state = or_none(lambda: api.link_state(index))
    return {
        "state": state.state if state is not None else None,
        "state_text": state.text if state is not None else None,
        "port_states": or_none(lambda: api.link_port_states(index)),
        "bandwidth_inbound": bandwidth(LinkDirection.INBOUND),
        "bandwidth_outbound": bandwidth(LinkDirection.OUTBOUND),
    }


def engines(read: Callable[[UsageIp], int]) -> dict[str, Optional[int]]:
    """Usage of each engine; a negative reading is no reading."""
    out: dict[str, Optional[int]] = {}
    for name, ip in ENGINES:
        value = or_none(lambda: read(ip))
        out[name] = value if value is not None and value >= 0 else None
    return out


def memory(read: Callable[[], Memory]) -> Optional[dict[str, dict[str, int]]]:
    record = or_none(read)
    if record is None:
        return None
    return {name: {"total": pool.total_kib, "used": pool.used_kib}
            for name, pool in (("vram", record.vram), ("visible_vram", record.visible_vram), ("gtt", record.gtt))}


def board_power_ways(index: int) -> Optional[list[dict[str, int]]]:
    ways = or_none(lambda: api.board_power_ways(index))
    if ways is None:
        return None
    return [{"voltage_mv": w.voltage_mv, "current_ma": w.current_ma, "power_mw": w.power_mw} for w in ways]


def board_power_w(index: int) -> Optional[float]:
    ways = or_none(lambda: api.board_power_ways(index))
    return None if ways is None else float(sum(w.power_mw for w in ways)) / 1000.0


def pci_power_state(index: int) -> Optional[str]:
    state = or_none(lambda: api.pci_power_state(index))
    return None if state is None else PCI_POWER_STATE_NAMES.get(state)


def performance_levels(index: int, die: int) -> Optional[dict[str, dict[str, Optional[int]]]]:
    levels = {}
    for ip in DpmIp:
        current = or_none(lambda: api.current_perf_level(index, ip, die))
        maximum = or_none(lambda: api.max_perf_level(index, ip, die))
        if current is not None or maximum is not None:
            levels[ip.name.lower()] = {"current": current, "max": maximum}
    return levels or None


def pmbus(index: int, die: int) -> dict[str, Optional[dict[str, int]]]:
    out: dict[str, Optional[dict[str, int]]] = {}
    for name, unit in RAILS:
        reading = or_none(lambda: api.pmbus(index, unit, die))
        out[name] = None if reading is None else {
            "voltage_mv": reading.voltage_driver_units, "current_ma": reading.current_driver_units,
            "power_w": reading.power_driver_units}
    return out


def ap_usage(index: int, die: int) -> Optional[dict[str, Any]]:
    table = or_none(lambda: api.ap_usage(index, die))
    if table is None:
        return None
    return {"dpc_count": table.dpc_count, "ap_per_dpc": table.ap_per_dpc,
            "reported_dpc_count": table.reported_dpc_count, "values": list(table.values_percent)}
