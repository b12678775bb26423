/*
 * dksml.h - system-management library for the maker's GPUs (libdksml.so.2).
 *
 * Two families of C functions share one implementation:
 *   - the native family (dkSml*) returns DkSmlReturn and addresses devices by
 *     the device index assigned at discovery (physical devices from 0, virtual
 *     functions from 100);
 *   - the compatibility family (dkSmlEx*) returns DkSmlExReturn and addresses
 *     dies through opaque DkSmlExDevice handles.
 *
 * Conventions shared by every function:
 *   - output pointers are checked first (DK_SML_ERROR_INVALID_INPUT), then the
 *     device index (DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
 *   - text results take a buffer and a size in/out: when the size is larger
 *     than the text, the text is copied and the answer is 0, otherwise 10; the
 *     size is always set to the text length plus one;
 *   - caller-sized arrays take a count in/out: capacity on entry, the needed
 *     number on return, and 10 when the capacity is too small.
 *
 * The header is C99 and C++ compatible and uses fixed-width types only.
 */
#ifndef DKSML_H
#define DKSML_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(DKSML_BUILDING_LIBRARY)
#define DKSML_API __attribute__((visibility("default")))
#else
#define DKSML_API
#endif

/* ------------------------------------------------------------------------ */
/* Status codes                                                              */
/* ------------------------------------------------------------------------ */

/** Status of every native function. */
typedef enum DkSmlReturn {
    DK_SML_SUCCESS = 0,
    DK_SML_ERROR_FAILURE = 1,
    DK_SML_ERROR_NO_DEVICE = 2,
    DK_SML_ERROR_NOT_SUPPORTED = 3,
    DK_SML_ERROR_SYSFS = 4,
    DK_SML_ERROR_SYSFS_WRITE = 5,
    DK_SML_ERROR_DEVICE_NOT_AVAILABLE = 6,
    DK_SML_ERROR_INVALID_DIE_ID = 7,
    DK_SML_ERROR_PERMISSION = 8,
    DK_SML_ERROR_INVALID_INPUT = 9,
    DK_SML_ERROR_INSUFFICIENT_SIZE = 10,
    DK_SML_RESERVED3 = 11,
    DK_SML_ERROR_IOCTL = 12,
    DK_SML_ERROR_MMAP = 13,
    DK_SML_ERROR_MUNMAP = 14,
    DK_SML_ERROR_MMAP_INPUT = 15,
    DK_SML_RESERVED1 = 16,
    DK_SML_RESERVED2 = 17,
    DK_SML_ERROR_VF_NOT_FOUND = 18,
    DK_SML_ERROR_INVALID_FREQUENCY = 19,
    DK_SML_ERROR_FLR_IN_PROGRESS = 20,
    DK_SML_ERROR_OPEN_DEVICE_FILE = 21,
    DK_SML_ERROR_CLOSE_DEVICE_FILE = 22,
    DK_SML_ERROR_BUSY = 23,
    DK_SML_ERROR_VF_VBIOS_MMIO = 24,
    DK_SML_ERROR_PCI_BRIDGE = 25,
    DK_SML_ERROR_LOAD_LIBRARY = 26
} DkSmlReturn;

/** Status of every compatibility function. */
typedef enum DkSmlExReturn {
    DK_SML_EX_SUCCESS = 0,
    DK_SML_EX_ERROR_UNINITIALIZED = 1,
    DK_SML_EX_ERROR_INVALID_ARGUMENT = 2,
    DK_SML_EX_ERROR_NOT_SUPPORTED = 3,
    DK_SML_EX_ERROR_NO_PERMISSION = 4,
    DK_SML_EX_ERROR_ALREADY_INITIALIZED = 5,
    DK_SML_EX_ERROR_NOT_FOUND = 6,
    DK_SML_EX_ERROR_INSUFFICIENT_SIZE = 7,
    DK_SML_EX_ERROR_INSUFFICIENT_POWER = 8,
    DK_SML_EX_ERROR_DRIVER_NOT_LOADED = 9,
    DK_SML_EX_ERROR_TIMEOUT = 10,
    DK_SML_EX_ERROR_IRQ_ISSUE = 11,
    DK_SML_EX_ERROR_LIBRARY_NOT_FOUND = 12,
    DK_SML_EX_ERROR_FUNCTION_NOT_FOUND = 13,
    DK_SML_EX_ERROR_CORRUPTED_INFOROM = 14,
    DK_SML_EX_ERROR_GPU_IS_LOST = 15,
    DK_SML_EX_ERROR_RESET_REQUIRED = 16,
    DK_SML_EX_ERROR_OPERATING_SYSTEM = 17,
    DK_SML_EX_ERROR_LIB_RM_VERSION_MISMATCH = 18,
    DK_SML_EX_ERROR_IN_USE = 19,
    DK_SML_EX_ERROR_MEMORY = 20,
    DK_SML_EX_ERROR_NO_DATA = 21,
    DK_SML_EX_ERROR_VGPU_ECC_NOT_SUPPORTED = 22,
    DK_SML_EX_ERROR_INSUFFICIENT_RESOURCES = 23,
    DK_SML_EX_ERROR_FREQ_NOT_SUPPORTED = 24,
    DK_SML_EX_ERROR_ARGUMENT_VERSION_MISMATCH = 25,
    DK_SML_EX_ERROR_DEPRECATED = 26,
    DK_SML_EX_ERROR_UNKNOWN = 999
} DkSmlExReturn;

/* ------------------------------------------------------------------------ */
/* Common sizes and identifiers                                              */
/* ------------------------------------------------------------------------ */

#define DK_SML_BDF_LENGTH 32            /* PCI bus id text field            */
#define DK_SML_UUID_LENGTH 96           /* UUID text field                  */
#define DK_SML_NAME_LENGTH 32           /* device name text field           */
#define DK_SML_REASON_LENGTH 64         /* unavailable-reason text field    */
#define DK_SML_FIRST_VF_INDEX 100u      /* virtual functions are numbered from here */
#define DK_SML_DIE_ALL 0xFFFFFFFFu      /* "every die" where a die id is taken */

/** Opaque handle of the compatibility family: one die of a physical device. */
typedef struct DkSmlExDeviceRecord *DkSmlExDevice;

/* ------------------------------------------------------------------------ */
/* Devices                                                                   */
/* ------------------------------------------------------------------------ */

/** Product family of a device. */
typedef enum DkSmlDeviceBrand {
    DK_SML_BRAND_UNKNOWN = 0,
    DK_SML_BRAND_DKQ = 1,       /* inference line (DKQ7 ... DKQ9)          */
    DK_SML_BRAND_DKK = 2,       /* training line (DKK1 ... DKK6U)          */
    DK_SML_BRAND_DKZ = 3,       /* edge line (DKZ1 ... DKZ3)               */
    DK_SML_BRAND_DKK_X = 4      /* training line, x-series instruction set */
} DkSmlDeviceBrand;

/** SR-IOV role of a PCI function. */
typedef enum DkSmlDeviceVirtualizationMode {
    DK_SML_VIRTUALIZATION_MODE_NONE = 0, /* no SR-IOV role                 */
    DK_SML_VIRTUALIZATION_MODE_PF = 1,   /* physical function hosting VFs  */
    DK_SML_VIRTUALIZATION_MODE_VF = 2    /* virtual function               */
} DkSmlDeviceVirtualizationMode;

/** Identity of one device. */
typedef struct DkSmlDeviceInfo {
    uint32_t deviceIndex;
    char bdfId[DK_SML_BDF_LENGTH];
    uint32_t gpuId;
    uint32_t nodeId;
    char uuid[DK_SML_UUID_LENGTH];
    DkSmlDeviceBrand brand;
    DkSmlDeviceVirtualizationMode virtualizationMode;
    char deviceName[DK_SML_NAME_LENGTH];
} DkSmlDeviceInfo;

/** A GPU function that was found but cannot be served. */
typedef struct DkSmlLimitedDeviceInfo {
    uint32_t deviceIndex;
    char bdfId[DK_SML_BDF_LENGTH];
    uint32_t vendorId;
    uint32_t deviceId;
    uint32_t isVf;
    uint32_t unavailableReason;
} DkSmlLimitedDeviceInfo;

/** Why a device (or die) is not available. */
typedef enum DkSmlUnavailableReason {
    DK_SML_AVAILABLE = 0,
    DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND = 100,
    DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND = 101,
    DK_SML_UNAVAILABLE_SYSFS_INACCESSIBLE = 102,
    DK_SML_UNAVAILABLE_VBIOS_INCOMPATIBLE = 103
} DkSmlUnavailableReason;

typedef struct DkSmlDeviceUnavailableReasonInfo {
    uint32_t reason;                          /* DkSmlUnavailableReason   */
    char reasonText[DK_SML_REASON_LENGTH];
} DkSmlDeviceUnavailableReasonInfo;

/** Instruction-set version of a device ("showisaversion"). */
typedef struct DkSmlIsaVersion {
    uint32_t major;
    uint32_t minor;
} DkSmlIsaVersion;

/* ------------------------------------------------------------------------ */
/* Clocks                                                                    */
/* ------------------------------------------------------------------------ */

typedef enum DkSmlClockIp {
    DK_SML_CLOCK_IP_CSC = 0,
    DK_SML_CLOCK_IP_DLA = 1,
    DK_SML_CLOCK_IP_MC = 2,
    DK_SML_CLOCK_IP_MC0 = 3,
    DK_SML_CLOCK_IP_MC1 = 4,
    DK_SML_CLOCK_IP_VPUE = 5,
    DK_SML_CLOCK_IP_VPUD = 6,
    DK_SML_CLOCK_IP_SOC = 7,
    DK_SML_CLOCK_IP_DNOC = 8,
    DK_SML_CLOCK_IP_GPU = 9,
    DK_SML_CLOCK_IP_CCX = 10,
    DK_SML_CLOCK_IP_XCORE = 11,
    DK_SML_CLOCK_IP_XPU = 12
} DkSmlClockIp;

#define DK_SML_CLOCK_MAX_VALUES 9

/** Frequencies of one IP in MHz; count says how many slots are valid. */
typedef struct DkSmlClockFreq {
    uint32_t count;
    uint32_t freq[DK_SML_CLOCK_MAX_VALUES];
} DkSmlClockFreq;

/** Every IP's clocks. Member order is the record's own (xcore third). */
typedef struct DkSmlClocksFreqForAll {
    DkSmlClockFreq csc, dla, xcore, mc, mc0, mc1, vpue, vpud, soc, dnoc, gpu, ccx, xpu;
} DkSmlClocksFreqForAll;

/** States of one IP's clock domains, as the driver prints them. */
typedef struct DkSmlClockStatus {
    uint32_t count;
    uint32_t status[DK_SML_CLOCK_MAX_VALUES];
} DkSmlClockStatus;

typedef struct DkSmlClockStatusForAll {
    DkSmlClockStatus csc, dla, xcore, mc, mc0, mc1, vpue, vpud, soc, dnoc, gpu, ccx, xpu;
} DkSmlClockStatusForAll;

/* ------------------------------------------------------------------------ */
/* Temperature, fan and voltage                                              */
/* ------------------------------------------------------------------------ */

#define DK_SML_TEMPERATURE_INVALID 65535  /* "no reading" */

/** Temperatures of a die or device in degrees Celsius. */
typedef struct DkSmlTemperature {
    int32_t hotspot;
    int32_t hotLimit;
    int32_t soc;
    int32_t core;
    int32_t emcRemote;
    int32_t memCtrlMax;
    int32_t mc0;
    int32_t mc1;
    int32_t hottestSensorIndex;
    int32_t emcLocal;       /* EMC local sensor, or TMP435 U1 local        */
    int32_t sgm;            /* SGM sensor, or TMP435 U2 local              */
    int32_t tmp435U1Remote;
    int32_t tmp435U2Remote;
} DkSmlTemperature;

/** Sensor selector of the single-value temperature reads. */
typedef enum DkSmlTemperatureSensors {
    DK_SML_TEMPERATURE_HOTSPOT = 0,
    DK_SML_TEMPERATURE_HOTLIMIT = 1,
    DK_SML_TEMPERATURE_SOC = 2,
    DK_SML_TEMPERATURE_CORE = 3,
    DK_SML_TEMPERATURE_EMC_LOCAL = 12,
    DK_SML_TEMPERATURE_EMC_REMOTE = 13,
    DK_SML_TEMPERATURE_SGM = 14,
    DK_SML_TEMPERATURE_HBM = 15
} DkSmlTemperatureSensors;

#define DK_SML_TEMPERATURE_SENSOR_ROWS 35
#define DK_SML_TEMPERATURE_SENSOR_READINGS 16

typedef struct DkSmlTemperatureSensorRow {
    int32_t readings[DK_SML_TEMPERATURE_SENSOR_READINGS];
    uint32_t count;
} DkSmlTemperatureSensorRow;

/** Temperature-sensor table ("showtstemp"). */
typedef struct DkSmlTemperatureSensorForAll {
    DkSmlTemperatureSensorRow rows[DK_SML_TEMPERATURE_SENSOR_ROWS];
    uint32_t rowCount;
} DkSmlTemperatureSensorForAll;

#define DK_SML_VM_READINGS 16

/** One voltage-monitor row ("showvmread"). */
typedef struct DkSmlVmInfo {
    int32_t readings[DK_SML_VM_READINGS];
    int32_t count;
} DkSmlVmInfo;

/* ------------------------------------------------------------------------ */
/* Library                                                                   */
/* ------------------------------------------------------------------------ */

/** Discovers the devices (once); 2 when none was found. */
DKSML_API DkSmlReturn dkSmlInit(void);
/** As dkSmlInit; any non-zero flag word forces a fresh discovery. */
DKSML_API DkSmlReturn dkSmlInitWithFlags(uint32_t flags);
/** Fixed English text of a native status code. */
DKSML_API const char *dkSmlGetErrorString(DkSmlReturn result);
/** Operating mode from the driver's "system_maintenance" file. */
DKSML_API DkSmlReturn dkSmlGetOpMode(uint32_t *mode);
/** Writes the operating mode to the driver's "system_maintenance" file. */
DKSML_API DkSmlReturn dkSmlSetOpMode(uint32_t mode);

/* ------------------------------------------------------------------------ */
/* Devices                                                                   */
/* ------------------------------------------------------------------------ */

/** Number of discovered devices that are not virtual functions (a count). */
DKSML_API uint32_t dkSmlGetDeviceCount(void);
/** Number of discovered virtual-function devices (a count). */
DKSML_API uint32_t dkSmlGetPfDeviceCount(void);
/** Indices of the limited devices; count is capacity in, number out. */
DKSML_API DkSmlReturn dkSmlGetAllLimitedDevices(uint32_t *count, uint32_t *deviceIndices);
/** Record of one limited device. */
DKSML_API DkSmlReturn dkSmlGetLimitedDeviceInfo(uint32_t deviceIndex, DkSmlLimitedDeviceInfo *info);
/** Board id shared by devices on one board; 0xFFFFFFFF when unknown. */
DKSML_API DkSmlReturn dkSmlGetDeviceBoardId(uint32_t deviceIndex, uint32_t *boardId);
/** Identity record of a device. */
DKSML_API DkSmlReturn dkSmlGetDeviceInfo(uint32_t deviceIndex, DkSmlDeviceInfo *info);
/** Device indices of the virtual functions a physical function hosts. */
DKSML_API DkSmlReturn dkSmlGetVirtualDevicesByPhysicalId(uint32_t deviceIndex, uint32_t *count,
                                                        uint32_t *vfIndices);
/** Resolved sysfs directory of a device (text rule). */
DKSML_API DkSmlReturn dkSmlGetDeviceRealPath(uint32_t deviceIndex, char *path, uint32_t *size);
/** Device state: 1 active, 0 inactive (node "active" file). */
DKSML_API DkSmlReturn dkSmlGetDeviceState(uint32_t deviceIndex, int32_t *state);
/** Instruction-set version of a device. */
DKSML_API DkSmlReturn dkSmlGetDeviceIsaVersion(uint32_t deviceIndex, DkSmlIsaVersion *isa);
/** Why a device is not available (0 when it is). */
DKSML_API DkSmlReturn dkSmlGetDeviceUnavailableReason(uint32_t deviceIndex,
                                                      DkSmlDeviceUnavailableReasonInfo *info);
/** Number of dies of a device (1 or 2). */
DKSML_API DkSmlReturn dkSmlGetDeviceDieCount(uint32_t deviceIndex, uint32_t *dieCount);

/* ------------------------------------------------------------------------ */
/* Clocks                                                                    */
/* ------------------------------------------------------------------------ */

/** Clock frequencies of one die; DK_SML_DIE_ALL reads the device (die 0). */
DKSML_API DkSmlReturn dkSmlGetClocks(uint32_t deviceIndex, uint32_t dieId,
                                     DkSmlClocksFreqForAll *clocks);
/** Throttle-reason mask of one die; DK_SML_DIE_ALL ORs every die. */
DKSML_API DkSmlReturn dkSmlGetCurrentClocksThrottleReason(uint32_t deviceIndex, uint32_t dieId,
                                                          uint64_t *reasons);

/* ------------------------------------------------------------------------ */
/* Temperature and fan                                                       */
/* ------------------------------------------------------------------------ */

/** One temperature of the device (hot spot: the hottest die). */
DKSML_API DkSmlReturn dkSmlGetTemperatureInfo(uint32_t deviceIndex, DkSmlTemperatureSensors sensor,
                                              int32_t *value);
/** One temperature of one die. */
DKSML_API DkSmlReturn dkSmlGetDieTemperatureInfo(uint32_t deviceIndex, uint32_t dieId,
                                                 DkSmlTemperatureSensors sensor, int32_t *value);
/** Fan speed in RPM and fan duty (PWM) value. */
DKSML_API DkSmlReturn dkSmlGetFanSpeedInfo(uint32_t deviceIndex, uint32_t *rpm, uint32_t *pwm);

/* ======================================================================== */
/* Remaining records and functions of both families follow.                  */
/* ======================================================================== */

#ifdef __cplusplus
}
#endif

#endif /* DKSML_H */
