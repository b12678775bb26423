"""The library's enumerations, with the values of dksml.h."""

from __future__ import annotations

from enum import IntEnum

FIRST_VF_INDEX = 100
DIE_ALL = 0xFFFFFFFF
TEMPERATURE_INVALID = 65535


class Return(IntEnum):
    SUCCESS = 0
    ERROR_FAILURE = 1
    ERROR_NO_DEVICE = 2
    ERROR_NOT_SUPPORTED = 3
    ERROR_SYSFS = 4
    ERROR_SYSFS_WRITE = 5
    ERROR_DEVICE_NOT_AVAILABLE = 6
    ERROR_INVALID_DIE_ID = 7
    ERROR_PERMISSION = 8
    ERROR_INVALID_INPUT = 9
    ERROR_INSUFFICIENT_SIZE = 10
    RESERVED3 = 11
    ERROR_IOCTL = 12
    ERROR_MMAP = 13
    ERROR_MUNMAP = 14
    ERROR_MMAP_INPUT = 15
    RESERVED1 = 16
    RESERVED2 = 17
    ERROR_VF_NOT_FOUND = 18
    ERROR_INVALID_FREQUENCY = 19
    ERROR_FLR_IN_PROGRESS = 20
    ERROR_OPEN_DEVICE_FILE = 21
    ERROR_CLOSE_DEVICE_FILE = 22
    ERROR_BUSY = 23
    ERROR_VF_VBIOS_MMIO = 24
    ERROR_PCI_BRIDGE = 25
    ERROR_LOAD_LIBRARY = 26


class Brand(IntEnum):
    UNKNOWN = 0
    DKQ = 1
    DKK = 2
    DKZ = 3
    DKK_X = 4


class VirtualizationMode(IntEnum):
    NONE = 0
    PF = 1
    VF = 2


class UnavailableReason(IntEnum):
    AVAILABLE = 0
    DRIVER_NOT_FOUND = 100
    LAYOUT_NODE_NOT_FOUND = 101
    SYSFS_INACCESSIBLE = 102
    VBIOS_INCOMPATIBLE = 103


class ClockIp(IntEnum):
    CSC = 0
    DLA = 1
    MC = 2
    MC0 = 3
    MC1 = 4
    VPUE = 5
    VPUD = 6
    SOC = 7
    DNOC = 8
    GPU = 9
    CCX = 10
    XCORE = 11
    XPU = 12


class TemperatureSensor(IntEnum):
    HOTSPOT = 0
    HOTLIMIT = 1
    SOC = 2
    CORE = 3
    EMC_LOCAL = 12
    EMC_REMOTE = 13
    SGM = 14
    HBM = 15


class PmbusUnit(IntEnum):
    SOC = 0
    CORE = 1
    HBM = 2
    PCIE = 3
    HBM2 = 4
    PCIE2 = 5


class PciPowerState(IntEnum):
    D0 = 0
    D3HOT = 1
    D3COLD = 2


class UsageIp(IntEnum):
    DLA = 0
    VPUE = 1
    VPUD = 2
    G2D = 3
    XCORE = 4


class VersionUnit(IntEnum):
    VBIOS = 0
    DRIVER = 1
    FW_SMP0 = 2
    FW_SMP1 = 3
    FW_CCX0 = 4
    FW_CCX1 = 5
    FW_CCX2 = 6
    FW_CCX3 = 7
    FW_MCU = 8
    FW_VR0 = 9
    FW_VR1 = 10


class DpmIp(IntEnum):
    """DPM domains (also the IPs of the per-IP power states), named as the driver names them."""

    DLA = 0
    XCORE = 1
    MC = 2
    SOC = 3
    DNOC = 4
    VPUE = 5
    VPUD = 6
    HBM = 7
    G2D = 8
    HBMPOWER = 9
    CCX = 10
    NPU = 11
    DMA = 12
    CSC = 13
    ETH = 14


class TopologyLevel(IntEnum):
    SAME_DEVICE = 0
    SINGLE_SWITCH = 1
    MULTIPLE_SWITCHES = 2
    HOST_BRIDGE = 3
    NUMA_NODE = 4
    DRAVIK_LINK = 5
    SYSTEM = 6
    DRAVIK_LINK2 = 7
    UNKNOWN = 8


class LinkDirection(IntEnum):
    INBOUND = 0
    OUTBOUND = 1


class ExReturn(IntEnum):
    """Statuses of the compatibility (dkSmlEx*) family."""

    SUCCESS = 0
    ERROR_UNINITIALIZED = 1
    ERROR_INVALID_ARGUMENT = 2
    ERROR_NOT_SUPPORTED = 3
    ERROR_NO_PERMISSION = 4
    ERROR_ALREADY_INITIALIZED = 5
    ERROR_NOT_FOUND = 6
    ERROR_INSUFFICIENT_SIZE = 7
    ERROR_INSUFFICIENT_POWER = 8
    ERROR_DRIVER_NOT_LOADED = 9
    ERROR_TIMEOUT = 10
    ERROR_IRQ_ISSUE = 11
    ERROR_LIBRARY_NOT_FOUND = 12
    ERROR_FUNCTION_NOT_FOUND = 13
    ERROR_CORRUPTED_INFOROM = 14
    ERROR_GPU_IS_LOST = 15
    ERROR_RESET_REQUIRED = 16
    ERROR_OPERATING_SYSTEM = 17
    ERROR_LIB_RM_VERSION_MISMATCH = 18
    ERROR_IN_USE = 19
    ERROR_MEMORY = 20
    ERROR_NO_DATA = 21
    ERROR_VGPU_ECC_NOT_SUPPORTED = 22
    ERROR_INSUFFICIENT_RESOURCES = 23
    ERROR_FREQ_NOT_SUPPORTED = 24
    ERROR_ARGUMENT_VERSION_MISMATCH = 25
    ERROR_DEPRECATED = 26
    ERROR_UNKNOWN = 999


class ExClockType(IntEnum):
    GRAPHICS = 0
    SM = 1
    MEM = 2
    VIDEO = 3


class ExClockId(IntEnum):
    CURRENT = 0
    APP_CLOCK_TARGET = 1
    APP_CLOCK_DEFAULT = 2
    CUSTOMER_BOOST_MAX = 3


class ExTemperatureThreshold(IntEnum):
    SHUTDOWN = 0
    SLOWDOWN = 1


class ExPcieCounter(IntEnum):
    TX_BYTES = 0
    RX_BYTES = 1


class ExTopologyLevel(IntEnum):
    INTERNAL = 0
    SINGLE = 10
    MULTIPLE = 20
    HOSTBRIDGE = 30
    NODE = 40
    SYSTEM = 50


class ExP2PCaps(IntEnum):
    READ = 0
    WRITE = 1
    DRAVIK_LINK = 2
    ATOMICS = 3
    PROP = 4
    UNKNOWN = 5


class ExP2PStatus(IntEnum):
    OK = 0
    NOT_SUPPORTED = 1
    UNKNOWN = 2


class ExLinkDeviceType(IntEnum):
    GPU = 0
    SWITCH = 1
    UNKNOWN = 255
