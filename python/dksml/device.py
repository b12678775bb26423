"""The high-level layer: Device objects with properties, and snapshots that
equal the device objects of `dksmi --json`."""

from __future__ import annotations

from typing import Any, Callable, Iterator, Optional, TypeVar

from . import _snapshot as blocks
from . import api
from .enums import DIE_ALL, Brand, PmbusUnit, TemperatureSensor, VirtualizationMode
from .errors import DkSmlError
from .records import Clocks, DeviceInfo, Fan, Memory, PcieLink, Pmbus, Process, SliceInfo, Temperatures, Versions

T = TypeVar("T")

BRAND_NAMES: dict[Brand, str] = {
    Brand.UNKNOWN: "unknown", Brand.DKQ: "DKQ", Brand.DKK: "DKK", Brand.DKZ: "DKZ", Brand.DKK_X: "DKK-X",
}
ROLE_KEYS: dict[VirtualizationMode, str] = {
    VirtualizationMode.NONE: "physical",
    VirtualizationMode.PF: "physical_function",
    VirtualizationMode.VF: "virtual_function",
}


def _or_none(read: Callable[[], T]) -> Optional[T]:
    """The value, or None when the library refuses it (shown as null by dksmi)."""
    try:
        return read()
    except DkSmlError:
        return None


class Device:
    """One GPU function the library serves, addressed by its device index.

    Identity is read once; every other property reads the driver again."""

    def __init__(self, index: int) -> None:
        self.index = index
        self.info: DeviceInfo = api.device_info(index)

    def __repr__(self) -> str:
        return f"Device({self.index}, {self.name!r}, {self.bus_id})"

    @property
    def name(self) -> str:
        return self.info.name

    @property
    def bus_id(self) -> str:
        return self.info.bus_id

    @property
    def uuid(self) -> str:
        return self.info.uuid

    @property
    def brand(self) -> Brand:
        return self.info.brand

    @property
    def role(self) -> VirtualizationMode:
        return self.info.virtualization_mode

    @property
    def die_count(self) -> int:
        return api.die_count(self.index)

    @property
    def dies(self) -> range:
        return range(self.die_count)

    @property
    def virtual_functions(self) -> list[int]:
        """Device indices of the virtual functions this physical function hosts."""
        return api.virtual_functions(self.index) if self.role == VirtualizationMode.PF else []

    @property
    def physical_function(self) -> Optional[int]:
        """Device index of the physical function hosting this virtual function."""
        if self.role != VirtualizationMode.VF:
            return None
        for index in range(api.device_count()):
            if self.index in (_or_none(lambda: api.virtual_functions(index)) or []):
                return index
        return None

    @property
    def temperature(self) -> Optional[int]:
        """Hot-spot temperature of the device (its hottest die) in degrees Celsius."""
        return api.temperature_c(self.index, TemperatureSensor.HOTSPOT)

    def temperatures(self, die: int = 0) -> Temperatures:
        return api.die_temperatures(self.index, die)

    @property
    def clocks(self) -> Clocks:
        return api.clocks(self.index, DIE_ALL)

    def die_clocks(self, die: int) -> Clocks:
        return api.clocks(self.index, die)

    @property
    def throttle_reasons(self) -> int:
        return api.throttle_reasons(self.index, DIE_ALL)

    @property
    def fan(self) -> Fan:
        return api.fan(self.index)

    @property
    def power(self) -> dict[PmbusUnit, Pmbus]:
        """PMBus readings of every power unit the device reports."""
        readings = {}
        for unit in PmbusUnit:
            reading = _or_none(lambda: api.pmbus(self.index, unit))
            if reading is not None:
                readings[unit] = reading
        return readings

    @property
    def board_power_limit_mw(self) -> int:
        return api.board_power_limit_mw(self.index)

    @property
    def memory(self) -> Memory:
        return api.memory(self.index)

    @property
    def pcie(self) -> PcieLink:
        return api.pcie_link(self.index)

    @property
    def processes(self) -> list[Process]:
        """Processes holding memory on this device (slice-mode parents included)."""
        return api.device_processes(self.index)

    @property
    def slice_mode(self) -> bool:
        return api.slice_mode(self.index)

    @property
    def slices(self) -> list[SliceInfo]:
        """The slices of a device in slice mode; [] otherwise."""
        if not _or_none(lambda: self.slice_mode):
            return []
        return [api.slice_info(self.index, slice_id) for slice_id in api.slice_ids(self.index)]

    @property
    def versions(self) -> Versions:
        return api.die_versions(self.index, 0)

    def snapshot(self) -> dict[str, Any]:
        """Everything dksmi shows for this device, as `dksmi --json` prints its device object."""
        return {key: read(self) for key, read in DEVICE_FIELDS}

    def die_snapshot(self, die: int) -> dict[str, Any]:
        return {key: read(self, die) for key, read in DIE_FIELDS}


def _clock_lists(device: Device, die: int) -> Optional[dict[str, Optional[list[int]]]]:
    clocks = _or_none(lambda: device.die_clocks(die))
    if clocks is None:
        return None
    return {ip: (list(getattr(clocks, ip + "_mhz")) or None) for ip in CLOCK_ORDER}


def _temperature_map(device: Device, die: int) -> Optional[dict[str, Optional[int]]]:
    record = _or_none(lambda: device.temperatures(die))
    if record is None:
        return None
    return {key: getattr(record, key + "_c") for key in TEMPERATURE_ORDER}


def _hottest_sensor(device: Device, die: int) -> Optional[int]:
    record = _or_none(lambda: device.temperatures(die))
    return record.hottest_sensor_index if record is not None else None


def _fan_field(field: str) -> Callable[[Device], Optional[int]]:
    def read(device: Device) -> Optional[int]:
        fan = _or_none(lambda: device.fan)
        return getattr(fan, field) if fan is not None else None
    return read


def _die_list(device: Device) -> list[dict[str, Any]]:
    count = _or_none(lambda: device.die_count) or 0
    return [device.die_snapshot(die) for die in range(count)]


# The order dksmi shows the blocks' clocks and the record's temperatures in.
CLOCK_ORDER = ("xcore", "soc", "mc", "mc0", "mc1", "csc", "dla", "vpue", "vpud", "dnoc", "gpu", "ccx", "xpu")
TEMPERATURE_ORDER = ("hotspot", "hot_limit", "soc", "core", "emc_remote", "mem_ctrl_max", "mc0", "mc1",
                     "emc_local", "sgm", "tmp435_u1_remote", "tmp435_u2_remote")

# One row per key of a die object of `dksmi --json`, in its order. Add a family here.
DIE_FIELDS: list[tuple[str, Callable[[Device, int], Any]]] = [
    ("die", lambda d, die: die),
    ("throttle_reasons_mask", lambda d, die: _or_none(lambda: api.throttle_reasons(d.index, die))),
    ("clocks_mhz", _clock_lists),
    ("temperatures_c", _temperature_map),
    ("hottest_sensor_index", _hottest_sensor),
    ("sensor_table_c", lambda d, die: _or_none(lambda: api.die_sensor_table_c(d.index, die))),
    ("voltage_monitor_raw", lambda d, die: _or_none(lambda: api.die_voltage_monitor_raw(d.index, die))),
    ("performance_levels", lambda d, die: blocks.performance_levels(d.index, die)),
    ("pmbus", lambda d, die: blocks.pmbus(d.index, die)),
    ("engine_usage_pct", lambda d, die: blocks.engines(lambda ip: api.usage_percent(d.index, ip, die))),
    ("ap_usage_pct", lambda d, die: blocks.ap_usage(d.index, die)),
    ("memory_kib", lambda d, die: blocks.memory(lambda: api.memory(d.index, die))),
]

# One row per key of a device object of `dksmi --json`, in its order. Add a family here.
DEVICE_FIELDS: list[tuple[str, Callable[[Device], Any]]] = [
    ("index", lambda d: d.index),
    ("name", lambda d: d.name),
    ("bus_id", lambda d: d.bus_id),
    ("uuid", lambda d: d.uuid or None),
    ("brand", lambda d: BRAND_NAMES.get(d.brand, "unknown")),
    ("role", lambda d: ROLE_KEYS.get(d.role, "physical")),
    ("virtual_function_indices", lambda d: _or_none(lambda: d.virtual_functions) or []),
    ("physical_function_index", lambda d: d.physical_function),
    ("die_count", lambda d: _or_none(lambda: d.die_count)),
    ("hotspot_temperature_c", lambda d: _or_none(lambda: d.temperature)),
    ("fan_rpm", _fan_field("speed_rpm")),
    ("fan_duty", _fan_field("duty_pwm")),
    ("throttle_reasons_mask", lambda d: _or_none(lambda: d.throttle_reasons)),
    ("versions", lambda d: blocks.versions(d.index)),
    ("process_count", lambda d: blocks.process_count(d.index)),
    ("slice_mode", lambda d: blocks.slice_mode(d.index)),
    ("slices", lambda d: blocks.slices(d.index)),
    ("pcie", lambda d: blocks.pcie(d.index)),
    ("interconnect", lambda d: blocks.interconnect(d.index)),
    ("board_power_w", lambda d: blocks.board_power_w(d.index)),
    ("board_power_ways", lambda d: blocks.board_power_ways(d.index)),
    ("power_limit_mw", lambda d: _or_none(lambda: api.board_power_limit_mw(d.index))),
    # "power_mode" is left out: no native export answers the power mode (dksmi
    # reads it through the library's power service, which Python cannot reach).
    ("pci_power_state", lambda d: blocks.pci_power_state(d.index)),
    ("engine_usage_pct", lambda d: blocks.engines(lambda ip: api.usage_percent(d.index, ip))),
    ("memory_kib", lambda d: blocks.memory(lambda: api.memory(d.index))),
    ("dies", _die_list),
]

def ensure_initialised() -> None:
    """Runs discovery unless it already ran (the library keeps its result);
    raises DkSmlError with DK_SML_ERROR_NO_DEVICE when there is no device."""
    api.init()


def devices() -> Iterator[Device]:
    """Every device the library serves: physical devices, then virtual functions.

    Raises DkSmlError (DK_SML_ERROR_NO_DEVICE) on a host where discovery found no device."""
    ensure_initialised()
    for index in api.device_indices():
        device = _or_none(lambda: Device(index))
        if device is not None:
            yield device
