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


@dataclass(frozen=True)
class ProcessGpuUse:
    """One (GPU, memory domain) pair a process uses."""

    bus_id: str
    device_index: int
    memory_bytes: int
    memory_domain: int
    slice_id: Optional[int]          # None: the whole GPU, not a slice


@dataclass(frozen=True)
class Process:
    pid: int
    name: str
    gpus: tuple[ProcessGpuUse, ...]


@dataclass(frozen=True)
class SliceInfo:
    slice_id: int
    node_id: int
    vram_quota: int
    compute_quota: int
    sched_priority: int
    minor: int
    online: int
    uuid: str


@dataclass(frozen=True)
class SliceMemory:
    """A slice's "meminfo", in bytes."""

    total_bytes: int
    used_bytes: int
    free_bytes: int


@dataclass(frozen=True)
class SliceQuota:
    total_vram_quota: int
    available_vram_quota: int
    available_compute_quota: int


@dataclass(frozen=True)
class UuidPair:
    local_uuid: str
    remote_uuid: str


@dataclass(frozen=True)
class LinkRemote:
    remote_device_index: int
    remote_device_type: int
    remote_bus_id: str


@dataclass(frozen=True)
class BoardWay:
    """One power input of the board."""

    voltage_mv: int
    current_ma: int
    power_mw: int


@dataclass(frozen=True)
class DpmLevels:
    """Value of every performance level of one domain (clock in MHz or voltage in mV)."""

    values: tuple[int, ...]


@dataclass(frozen=True)
class ApUsage:
    """Per-AP usage of the compute cores in percent; fused-off units are left out."""

    dpc_count: int
    ap_per_dpc: int
    reported_dpc_count: int
    values_percent: tuple[int, ...]


@dataclass(frozen=True)
class Versions:
    vbios: str
    driver: str
    compute_stack: str
    firmware: dict[str, str]


@dataclass(frozen=True)
class PcieThroughput:
    rx_bytes: int
    tx_bytes: int


@dataclass(frozen=True)
class LinkBandwidth:
    """The driver's two bandwidth figures of one link, in its own units."""

    current_driver_units: int
    maximum_driver_units: int


@dataclass(frozen=True)
class LinkTraffic:
    packets: int
    bytes: int


@dataclass(frozen=True)
class LinkAer:
    correctable: int
    uncorrectable: int


@dataclass(frozen=True)
class LinkPort:
    speed_gts: float
    width_lanes: int
    state: int


@dataclass(frozen=True)
class LinkState:
    state: int
    text: str


@dataclass(frozen=True)
class LinkTopo:
    local_port: int
    remote_device_index: int
    remote_port: int


@dataclass(frozen=True)
class ExPciInfo:
    bus_id: str
    domain: int
    bus: int
    device: int
    function: int
    pci_device_id: int               # device id << 16 | vendor id
    pci_subsystem_id: int


@dataclass(frozen=True)
class ExUtilization:
    gpu_percent: int
    memory_percent: int


@dataclass(frozen=True)
class ExMemory:
    free_bytes: int
    total_bytes: int
    used_bytes: int


@dataclass(frozen=True)
class ExProcess:
    pid: int
    used_gpu_memory_bytes: int


@dataclass(frozen=True)
class ExFieldValue:
    field_id: int
    scope_id: int
    timestamp_us: int
    latency_us: int
    status: int
    value: float | int


@dataclass(frozen=True)
class RasErrors:
    block: int
    correctable: int
    uncorrectable: int
    deferred: Optional[int]          # only in the per-die record


@dataclass(frozen=True)
class EccErrors:
    correctable: int
    uncorrectable: int


@dataclass(frozen=True)
class Bandwidth:
    """Read and write bandwidth of one channel or engine, in the driver's units."""

    read: int
    write: int


@dataclass(frozen=True)
class EthernetThroughput:
    rx_bytes: int
    tx_bytes: int
