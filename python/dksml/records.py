"""Records returned by the module: frozen dataclasses, units in field names."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional

from .enums import Brand, UnavailableReason, VirtualizationMode


@dataclass(frozen=True)
class DeviceInfo:
    index: int
    bus_id: str
    gpu_id: int
    node_id: int
    uuid: str
    brand: Brand
    virtualization_mode: VirtualizationMode
    name: str


@dataclass(frozen=True)
class LimitedDevice:
    index: int
    bus_id: str
    vendor_id: int
    device_id: int
    is_virtual_function: bool
    unavailable_reason: UnavailableReason


@dataclass(frozen=True)
class ReasonInfo:
    reason: int
    text: str


@dataclass(frozen=True)
class IsaVersion:
    major: int
    minor: int


@dataclass(frozen=True)
class Clocks:
    """Frequencies of every block in MHz; an empty tuple when the driver does not report it."""

    csc_mhz: tuple[int, ...]
    dla_mhz: tuple[int, ...]
    xcore_mhz: tuple[int, ...]
    mc_mhz: tuple[int, ...]
    mc0_mhz: tuple[int, ...]
    mc1_mhz: tuple[int, ...]
    vpue_mhz: tuple[int, ...]
    vpud_mhz: tuple[int, ...]
    soc_mhz: tuple[int, ...]
    dnoc_mhz: tuple[int, ...]
    gpu_mhz: tuple[int, ...]
    ccx_mhz: tuple[int, ...]
    xpu_mhz: tuple[int, ...]


@dataclass(frozen=True)
class Temperatures:
    """Every temperature of a die in degrees Celsius; None where a sensor has no reading."""

    hotspot_c: Optional[int]
    hot_limit_c: Optional[int]
    soc_c: Optional[int]
    core_c: Optional[int]
    emc_remote_c: Optional[int]
    mem_ctrl_max_c: Optional[int]
    mc0_c: Optional[int]
    mc1_c: Optional[int]
    hottest_sensor_index: Optional[int]
    emc_local_c: Optional[int]
    sgm_c: Optional[int]
    tmp435_u1_remote_c: Optional[int]
    tmp435_u2_remote_c: Optional[int]


@dataclass(frozen=True)
class Fan:
    speed_rpm: int
    duty_pwm: int


@dataclass(frozen=True)
class Pmbus:
    """PMBus readings of one power unit, as the regulator reports them (no conversion)."""

    voltage_driver_units: int
    current_driver_units: int
    power_driver_units: int


@dataclass(frozen=True)
class MemoryPool:
    total_kib: int
    used_kib: int


@dataclass(frozen=True)
class Memory:
    vram: MemoryPool
    visible_vram: MemoryPool
    gtt: MemoryPool


@dataclass(frozen=True)
class PcieLink:
    speed_gts: float
    width_lanes: int
