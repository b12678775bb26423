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
 *     than the text, the text is copied and the answer is DK_SML_SUCCESS,
 *     otherwise DK_SML_ERROR_INSUFFICIENT_SIZE; the
 *     size is always set to the text length plus one;
 *   - caller-sized arrays take a count in/out: capacity on entry, the needed
 *     number on return, and DK_SML_ERROR_INSUFFICIENT_SIZE when the capacity
 *     is too small.
 *
 * Threads: every function may be called from any number of threads at once,
 * including dkSmlInit and dkSmlInitWithFlags. A forced discovery
 * (dkSmlInitWithFlags with a non-zero flag word) replaces the whole device
 * state in one step; a call running meanwhile answers entirely from the
 * state it started with. After a forced discovery, compatibility handles
 * obtained before it answer DK_SML_EX_ERROR_INVALID_ARGUMENT: ask for them
 * again (dkSmlExGetDeviceHandleByIndex and friends). Device indices are
 * assigned afresh by each discovery, so a caller that keeps them across one
 * should look devices up again by PCI bus id or UUID. dkSmlInit without a
 * flag word does not rediscover once a discovery has succeeded, and keeps
 * every handle valid.
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

/* Every enumeration is 32 bits wide. C callers may pass any 32-bit value where
 * an enumeration is taken; giving the C++ side a fixed underlying type keeps
 * every such value well defined inside the library, which then rejects the
 * ones it does not know with a status code. */
#ifdef __cplusplus
#define DKSML_ENUM_BASE : uint32_t
#else
#define DKSML_ENUM_BASE
#endif

/* ------------------------------------------------------------------------ */
/* Status codes                                                              */
/* ------------------------------------------------------------------------ */

/** Status of every native function. */
typedef enum DkSmlReturn DKSML_ENUM_BASE {
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
typedef enum DkSmlExReturn DKSML_ENUM_BASE {
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

/** Opaque handle of the compatibility family: one die of a physical device.
 *  Valid until the next forced discovery; never dereference it. */
typedef struct DkSmlExDeviceRecord *DkSmlExDevice;

/* ------------------------------------------------------------------------ */
/* Devices                                                                   */
/* ------------------------------------------------------------------------ */

/** Product family of a device. */
typedef enum DkSmlDeviceBrand DKSML_ENUM_BASE {
    DK_SML_BRAND_UNKNOWN = 0,
    DK_SML_BRAND_DKQ = 1,       /* inference line (DKQ7 ... DKQ9)          */
    DK_SML_BRAND_DKK = 2,       /* training line (DKK1 ... DKK6U)          */
    DK_SML_BRAND_DKZ = 3,       /* edge line (DKZ1 ... DKZ3)               */
    DK_SML_BRAND_DKK_X = 4      /* training line, x-series instruction set */
} DkSmlDeviceBrand;

/** SR-IOV role of a PCI function. */
typedef enum DkSmlDeviceVirtualizationMode DKSML_ENUM_BASE {
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
typedef enum DkSmlUnavailableReason DKSML_ENUM_BASE {
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

typedef enum DkSmlClockIp DKSML_ENUM_BASE {
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
typedef enum DkSmlTemperatureSensors DKSML_ENUM_BASE {
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

/** Discovers the devices (once); DK_SML_ERROR_NO_DEVICE when none was found. */
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
/** Every temperature of one die in one read; 65535 where a sensor has no reading. */
DKSML_API DkSmlReturn dkSmlGetDieTemperatureRecord(uint32_t deviceIndex, uint32_t dieId,
                                                   DkSmlTemperature *temperature);
/** Temperature-sensor table of one die ("showtstemp"). */
DKSML_API DkSmlReturn dkSmlGetDieTemperatureSensor(uint32_t deviceIndex, uint32_t dieId,
                                                   DkSmlTemperatureSensorForAll *table);
/** Voltage-monitor rows of one die ("showvmread"); count is capacity in, rows out
 *  (rows may be null with a capacity of 0 to learn the count). */
DKSML_API DkSmlReturn dkSmlGetDieVmInfo(uint32_t deviceIndex, uint32_t dieId, uint32_t *count,
                                        DkSmlVmInfo *rows);

/* ======================================================================== */
/* Remaining records and functions of both families follow.                  */
/* ======================================================================== */

/* ------------------------------------------------------------------------ */
/* Device links and UUIDs                                                    */
/* ------------------------------------------------------------------------ */

/** UUIDs of the two ends of one interconnect link. */
typedef struct DkSmlUuidPair {
    char localUuid[DK_SML_UUID_LENGTH];
    char remoteUuid[DK_SML_UUID_LENGTH];
} DkSmlUuidPair;

/** UUIDs of a device and of the first peer its interconnect reaches. */
DKSML_API DkSmlReturn dkSmlGetLocalAndRemoteUuid(uint32_t deviceIndex, DkSmlUuidPair *pair);
/** UUIDs of a device and of every interconnect peer; count in/out. */
DKSML_API DkSmlReturn dkSmlGetLocalAndMultipleRemoteUuid(uint32_t deviceIndex, uint32_t *count,
                                                         DkSmlUuidPair *pairs);

/* ------------------------------------------------------------------------ */
/* Processes                                                                 */
/* ------------------------------------------------------------------------ */

#define DK_SML_PROCESS_NAME_LENGTH 64
#define DK_SML_PROCESS_MAX_GPUS 64
#define DK_SML_ALL_GPUS 0xFFFFFFFFu     /* driver GPU id filter: every GPU  */

/** One (GPU, memory domain) pair used by a process. */
typedef struct DkSmlProcessGpuInfo {
    char bdf[DK_SML_BDF_LENGTH];
    uint32_t deviceId;          /* the library's device index              */
    uint64_t memoryUsed;        /* as the driver's "vram_" file states it  */
} DkSmlProcessGpuInfo;

typedef struct DkSmlProcessGpuInfo_v2 {
    char bdf[DK_SML_BDF_LENGTH];
    uint32_t deviceId;
    uint64_t memoryUsed;
    uint32_t vramTag;           /* upper 16 bits of the "vram_" number     */
} DkSmlProcessGpuInfo_v2;

typedef struct DkSmlProcessGpuInfo_v3 {
    char bdf[DK_SML_BDF_LENGTH];
    uint32_t deviceId;
    uint64_t memoryUsed;
    uint32_t vramTag;
    int32_t sgpuId;             /* slice GPU id, -1 when not a slice       */
} DkSmlProcessGpuInfo_v3;

/** A process using GPUs. processName is not terminated when 64 long. */
typedef struct DkSmlProcessInfo {
    uint32_t pid;
    char processName[DK_SML_PROCESS_NAME_LENGTH];
    uint32_t gpuCount;
    DkSmlProcessGpuInfo gpuInfo[DK_SML_PROCESS_MAX_GPUS];
} DkSmlProcessInfo;

typedef struct DkSmlProcessInfo_v2 {
    uint32_t pid;
    char processName[DK_SML_PROCESS_NAME_LENGTH];
    uint32_t gpuCount;
    DkSmlProcessGpuInfo_v2 gpuInfo[DK_SML_PROCESS_MAX_GPUS];
} DkSmlProcessInfo_v2;

typedef struct DkSmlProcessInfo_v3 {
    uint32_t pid;
    char processName[DK_SML_PROCESS_NAME_LENGTH];
    uint32_t gpuCount;
    DkSmlProcessGpuInfo_v3 gpuInfo[DK_SML_PROCESS_MAX_GPUS];
} DkSmlProcessInfo_v3;

/** Number of processes using any GPU. */
DKSML_API DkSmlReturn dkSmlGetNumberOfProcess(uint32_t *count);
/** Processes using any GPU, at most capacity records. */
DKSML_API DkSmlReturn dkSmlGetProcessInfo(uint32_t capacity, DkSmlProcessInfo *infos);
/** As dkSmlGetProcessInfo, with the memory-domain tag. */
DKSML_API DkSmlReturn dkSmlGetProcessInfo_v2(uint32_t capacity, DkSmlProcessInfo_v2 *infos);
/** As dkSmlGetProcessInfo_v2, with the slice GPU id. */
DKSML_API DkSmlReturn dkSmlGetProcessInfo_v3(uint32_t capacity, DkSmlProcessInfo_v3 *infos);
/** Processes using one device; count is capacity in, number found out. */
DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess(uint32_t deviceIndex, uint32_t *count,
                                               DkSmlProcessInfo *infos);
/** As dkSmlGetSingleGpuProcess, version 2 records. */
DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess_v2(uint32_t deviceIndex, uint32_t *count,
                                                  DkSmlProcessInfo_v2 *infos);
/** As dkSmlGetSingleGpuProcess, version 3 records; serves slice parents too. */
DKSML_API DkSmlReturn dkSmlGetSingleGpuProcess_v3(uint32_t deviceIndex, uint32_t *count,
                                                  DkSmlProcessInfo_v3 *infos);

/* ------------------------------------------------------------------------ */
/* Slice GPU partitions                                                      */
/* ------------------------------------------------------------------------ */

#define DK_SML_MAX_SGPU 16

/** Scheduling class of the slice scheduler: the driver's numbers. */
typedef uint32_t DkSmlSchedClass;

typedef struct DkSmlSgpuAvailableQuota {
    uint32_t totalVramQuota;
    uint32_t availableVramQuota;
    uint32_t availableComputeQuota;
} DkSmlSgpuAvailableQuota;

typedef struct DkSmlSgpuInfo {
    uint32_t sgpuId;
    uint32_t nodeId;
    uint32_t vramQuota;
    uint32_t computeQuota;
    uint32_t schedPriority;
    uint32_t minor;
    uint32_t online;
    char uuid[DK_SML_UUID_LENGTH];
} DkSmlSgpuInfo;

/** The three numbers of a slice's "meminfo", in the driver's order. */
typedef struct DkSmlSgpuMemoryInfo {
    uint64_t values[3];
} DkSmlSgpuMemoryInfo;

/** Slice mode: 1 when the device is divided into slices, else 0. */
DKSML_API DkSmlReturn dkSmlGetSgpuToggle(uint32_t deviceIndex, uint32_t *on);
/** Switches slice mode on (non-zero) or off. */
DKSML_API DkSmlReturn dkSmlSetSgpuToggle(uint32_t deviceIndex, uint32_t on);
/** Creates a slice with the given quotas; its id is returned. */
DKSML_API DkSmlReturn dkSmlCreateSgpu(uint32_t deviceIndex, uint32_t vramQuota, uint32_t computeQuota,
                                      uint32_t *sgpuId);
/** Removes a slice. */
DKSML_API DkSmlReturn dkSmlRemoveSgpu(uint32_t deviceIndex, uint32_t sgpuId);
/** Number of slices (a count; 0 for an unknown device). */
DKSML_API uint32_t dkSmlGetSgpuCount(uint32_t deviceIndex);
/** Identity and quotas of one slice. */
DKSML_API DkSmlReturn dkSmlGetSgpuInfo(uint32_t deviceIndex, uint32_t sgpuId, DkSmlSgpuInfo *info);
/** Sets a slice's device-queue priority. */
DKSML_API DkSmlReturn dkSmlSetSgpuDeviceQueuePriority(uint32_t deviceIndex, uint32_t sgpuId,
                                                      uint32_t priority);
/** Active state of a slice's layout node. */
DKSML_API DkSmlReturn dkSmlGetSgpuState(uint32_t deviceIndex, uint32_t sgpuId, int32_t *state);
/** Sets a slice's video-memory quota. */
DKSML_API DkSmlReturn dkSmlSetSgpuVramQuota(uint32_t deviceIndex, uint32_t sgpuId, uint32_t quota);
/** Sets a slice's compute quota. */
DKSML_API DkSmlReturn dkSmlSetSgpuComputeQuota(uint32_t deviceIndex, uint32_t sgpuId, uint32_t quota);
/** Quotas still free on the device. */
DKSML_API DkSmlReturn dkSmlGetSgpuAvailableQuota(uint32_t deviceIndex, DkSmlSgpuAvailableQuota *quota);
/** Utilisation of a slice in percent. */
DKSML_API DkSmlReturn dkSmlGetSgpuUsage(uint32_t deviceIndex, uint32_t sgpuId, int32_t *usage);
/** Memory figures of a slice. */
DKSML_API DkSmlReturn dkSmlGetSgpuMemory(uint32_t deviceIndex, uint32_t sgpuId, DkSmlSgpuMemoryInfo *memory);
/** Time slice of the device's slice scheduler. */
DKSML_API DkSmlReturn dkSmlGetDeviceTimeslice(uint32_t deviceIndex, uint32_t *timeslice);
/** Sets the time slice of the device's slice scheduler. */
DKSML_API DkSmlReturn dkSmlSetDeviceTimeslice(uint32_t deviceIndex, uint32_t timeslice);
/** Scheduling class of the device's slice scheduler. */
DKSML_API DkSmlReturn dkSmlGetDeviceSchedClass(uint32_t deviceIndex, DkSmlSchedClass *schedClass);
/** Sets the scheduling class of the device's slice scheduler. */
DKSML_API DkSmlReturn dkSmlSetDeviceSchedClass(uint32_t deviceIndex, DkSmlSchedClass schedClass);
/** Alias text of a slice (text rule). */
DKSML_API DkSmlReturn dkSmlGetSgpuAlias(uint32_t deviceIndex, uint32_t sgpuId, char *alias, uint32_t *size);
/** Sets the alias text of a slice. */
DKSML_API DkSmlReturn dkSmlSetSgpuAlias(uint32_t deviceIndex, uint32_t sgpuId, const char *alias);
/** Annotation id of a slice (text rule). */
DKSML_API DkSmlReturn dkSmlGetSgpuAnnotationsId(uint32_t deviceIndex, uint32_t sgpuId, char *id,
                                                uint32_t *size);

/* ------------------------------------------------------------------------ */
/* Topology and affinity                                                     */
/* ------------------------------------------------------------------------ */

typedef enum DkSmlGpuTopologyLevel DKSML_ENUM_BASE {
    DK_SML_TOPOLOGY_SAME_DEVICE = 0,
    DK_SML_TOPOLOGY_SINGLE_SWITCH = 1,
    DK_SML_TOPOLOGY_MULTIPLE_SWITCHES = 2,
    DK_SML_TOPOLOGY_HOST_BRIDGE = 3,
    DK_SML_TOPOLOGY_NUMA_NODE = 4,
    DK_SML_TOPOLOGY_DRAVIK_LINK = 5,
    DK_SML_TOPOLOGY_SYSTEM = 6,
    DK_SML_TOPOLOGY_DRAVIK_LINK2 = 7,
    DK_SML_TOPOLOGY_UNKNOWN = 8
} DkSmlGpuTopologyLevel;

#define DK_SML_DISTANCE_UNREACHABLE 9999u

/** What sits at the far end of one interconnect link. */
typedef struct DkSmlDravikLinkRemoteInfo {
    uint32_t remoteDeviceIndex;
    uint32_t remoteDeviceType;          /* DkSmlExDravikLinkDeviceType    */
    char remoteBdfId[DK_SML_BDF_LENGTH];
} DkSmlDravikLinkRemoteInfo;

/** Topology level between two devices. */
DKSML_API DkSmlReturn dkSmlGetDeviceTopology(uint32_t deviceIndex1, uint32_t deviceIndex2,
                                             DkSmlGpuTopologyLevel *level);
/** Link distance between two devices; 1 (value still written) when unreachable. */
DKSML_API DkSmlReturn dkSmlGetDeviceDistance(uint32_t deviceIndex1, uint32_t deviceIndex2,
                                             uint32_t *distance);
/** Bit mask of the device's local CPUs in cpuSetSize 32-bit words. */
DKSML_API DkSmlReturn dkSmlGetCpuAffinity(uint32_t deviceIndex, uint32_t cpuSetSize, uint32_t *cpuSet);
/** Pins the calling thread to the device's local CPUs. */
DKSML_API DkSmlReturn dkSmlSetCpuAffinity(uint32_t deviceIndex);
/** Lets the calling thread run on every CPU again. */
DKSML_API DkSmlReturn dkSmlClearCpuAffinity(uint32_t deviceIndex);
/** Bit mask of the device's local NUMA nodes in nodeSetSize 32-bit words. */
DKSML_API DkSmlReturn dkSmlGetNodeAffinity(uint32_t deviceIndex, uint32_t nodeSetSize, uint32_t *nodeSet);
/** The far end of one interconnect link of a device. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkRemoteInfo(uint32_t deviceIndex, uint32_t link,
                                                   DkSmlDravikLinkRemoteInfo *info);

/* ------------------------------------------------------------------------ */
/* Power                                                                     */
/* ------------------------------------------------------------------------ */

typedef enum DkSmlPmbusUnit DKSML_ENUM_BASE {
    DK_SML_PMBUS_UNIT_SOC = 0,
    DK_SML_PMBUS_UNIT_CORE = 1,
    DK_SML_PMBUS_UNIT_HBM = 2,
    DK_SML_PMBUS_UNIT_PCIE = 3,
    DK_SML_PMBUS_UNIT_HBM2 = 4,
    DK_SML_PMBUS_UNIT_PCIE2 = 5
} DkSmlPmbusUnit;

/** PMBus readings of one power unit, in the driver's units. */
typedef struct DkSmlPmbusInfo {
    uint32_t voltage;
    uint32_t current;
    uint32_t power;
} DkSmlPmbusInfo;

/** Readings of one power way (input connector), in the driver's order. */
typedef struct DkSmlBoardWayElectricInfo {
    uint32_t values[3];
} DkSmlBoardWayElectricInfo;

/** Board power limit information ("config_tbp"); values[0] is the limit. */
typedef struct DkSmlBoardPowerLimitInfo {
    uint32_t values[4];
} DkSmlBoardPowerLimitInfo;

typedef enum DkSmlPciPowerState DKSML_ENUM_BASE {
    DK_SML_PCI_POWER_STATE_D0 = 0,
    DK_SML_PCI_POWER_STATE_D3HOT = 1,
    DK_SML_PCI_POWER_STATE_D3COLD = 2
} DkSmlPciPowerState;

/** DPM domain (also the IP of the per-IP power states). */
typedef enum DkSmlDpmIp DKSML_ENUM_BASE {
    DK_SML_DPM_IP_DLA = 0,
    DK_SML_DPM_IP_XCORE = 1,
    DK_SML_DPM_IP_MC = 2,
    DK_SML_DPM_IP_SOC = 3,
    DK_SML_DPM_IP_DNOC = 4,
    DK_SML_DPM_IP_VPUE = 5,
    DK_SML_DPM_IP_VPUD = 6,
    DK_SML_DPM_IP_HBM = 7,
    DK_SML_DPM_IP_G2D = 8,
    DK_SML_DPM_IP_HBMPOWER = 9,
    DK_SML_DPM_IP_CCX = 10,
    DK_SML_DPM_IP_NPU = 11,
    DK_SML_DPM_IP_DMA = 12,
    DK_SML_DPM_IP_CSC = 13,
    DK_SML_DPM_IP_ETH = 14
} DkSmlDpmIp;

#define DK_SML_DPM_IP_COUNT 15

/*
 * Power units. PMBus readings are the driver's: voltage in mV, current in mA,
 * power in W. Board per-way readings are listed in the driver's order
 * (voltage mV, current mA, power mW). dkSmlGetBoardPowerLimit answers mW on
 * every model ("capability" is in mW, "config_tbp" in W and scaled by 1000).
 *
 * Per-IP power states. "ippowerstate" holds one line per DkSmlDpmIp in enum
 * order ("xcore: 4095"); the value after the colon of line `ip` is a decimal
 * mask whose bit i is the state of instance i (1 powered, 0 gated). The number
 * of instances of every IP on every model is the one table c_ipInstanceTable
 * (features/power/dk_power_tables.cpp):
 *
 *   model       dla xcore mc soc dnoc vpue vpud hbm g2d hbmpwr ccx npu dma csc eth
 *   DKK6 series   2   12   4   1    1    2    4   4   1      1   4   0   2   1   1
 *   DKQ9          2    4   2   1    1    2    4   2   1      1   0   1   2   1   0
 *   DKK2          2    8   4   1    1    2    4   4   1      1   4   0   2   1   0
 *   others        1    8   2   1    1    1    2   2   1      1   0   0   1   1   0
 *
 * An IP with 0 instances answers DK_SML_ERROR_NOT_SUPPORTED; a capacity below
 * the instance count answers DK_SML_ERROR_INSUFFICIENT_SIZE with the count.
 */
/** PMBus readings of a unit from the first die that has it. */
DKSML_API DkSmlReturn dkSmlGetPmbusInfo(uint32_t deviceIndex, DkSmlPmbusUnit unit, DkSmlPmbusInfo *info);
/** PMBus readings of a unit on one die. */
DKSML_API DkSmlReturn dkSmlGetDiePmbusInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlPmbusUnit unit,
                                           DkSmlPmbusInfo *info);
/** Per-way board readings; count in/out. */
DKSML_API DkSmlReturn dkSmlGetBoardPowerInfo(uint32_t deviceIndex, uint32_t *count,
                                             DkSmlBoardWayElectricInfo *ways);
/** Board power limit. */
DKSML_API DkSmlReturn dkSmlGetBoardPowerLimit(uint32_t deviceIndex, uint32_t *limit);
/** Power state of every instance of an IP on die 0; count in/out. */
DKSML_API DkSmlReturn dkSmlGetPowerStateInfo(uint32_t deviceIndex, DkSmlDpmIp ip, int32_t *states,
                                             uint32_t *count);
/** Power state of every instance of an IP on one die; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDiePowerStateInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                int32_t *states, uint32_t *count);
/** PCI power state; also answers for limited devices. */
DKSML_API DkSmlReturn dkSmlGetPciPowerState(uint32_t deviceIndex, DkSmlPciPowerState *state);

/* ------------------------------------------------------------------------ */
/* DPM performance levels                                                    */
/* ------------------------------------------------------------------------ */

#define DK_SML_DPM_MAX_LEVELS 16
/** Level of a domain the driver does not list. */
#define DK_SML_DPM_LEVEL_NONE 0xFFFFFFFFu

/*
 * Performance levels are counted from 0. Domain 11 is "npu"; the driver
 * names the domains "dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud",
 * "hbm", "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth" (values 0-14).
 *
 * Domains whose maximum level may be set, with their number of levels
 * (maximum level = count - 1):
 *   DKK6 and DKQ9 models: dla 8, xcore 10, mc 4, soc 6, dnoc 4, vpue 5,
 *                         vpud 5, hbm 3, ccx 4
 *   DKK6U models:         xcore 10, mc 4, vpue 5, vpud 5, hbm 3, ccx 4
 *   other models:         dla 8, xcore 8, mc 4, soc 6, dnoc 4, vpue 5, vpud 5
 * The current level may be set on the same domains on the training lines
 * (brands 2 and 4); the inference line (brand 1) sets dla 8, xcore 8, mc 4,
 * soc 6. On DKK3 boards a maximum level above 9 is refused and read as 9.
 * The DPM interval may be set on dla (brand 1) or xcore (brands 2 and 4).
 *
 * Driver texts read and written per die (one row per domain, label before
 * the colon exactly the domain name; values decimal, separated by blanks,
 * at most DK_SML_DPM_MAX_LEVELS of them):
 *   "dpmcount"       "xcore: 10"   levels allowed (max level + 1); written
 *                                  as "xcore 10"
 *   "showperflevel"  "xcore: 3"    level in force
 *   "setperflevel"   written as "xcore 3" (the level itself)
 *   "dpminterval"    "xcore: 10"   sampling interval in ms; written as
 *                                  "xcore 10"
 *   "showclkrange"   "xcore: 300 600 900"  clock of each level (MHz)
 *   "dpmctl"         "xcore: 650 700 750"  voltage of each level (mV)
 *   "dpmusage"       "xcore: 120 40 8"     ms spent at each level; the
 *                                          command "clear" resets them
 *   "dpmfeature"     "xcore: 10"   levels the table enables; written as
 *                                  "xcore 10"
 *   "dpm_table_ctrl" rows "xcore clock: ...", "xcore vdd: ...",
 *                    "xcore backup clock: ...", "xcore backup vdd: ...",
 *                    "xcore hide: 5" (mask of hidden levels),
 *                    "xcore param: ..." (algorithm parameters); commands
 *                    "backup", "hide xcore 5", "set xcore LEVEL MHZ"
 * Records: DkSmlDpmForAll and DkSmlDpmMaxForAll hold DK_SML_DPM_LEVEL_NONE
 * (and a level count of 0) for domains the driver does not list; the other
 * records hold count 0 for them.
 */

/** Values of every performance level of one domain (MHz or mV). */
typedef struct DkSmlDpmPerfLevel {
    uint32_t count;
    uint32_t values[DK_SML_DPM_MAX_LEVELS];
} DkSmlDpmPerfLevel;

/** One level per domain, indexed by DkSmlDpmIp. */
typedef struct DkSmlDpmForAll {
    uint32_t level[DK_SML_DPM_IP_COUNT];
} DkSmlDpmForAll;

/** Maximum level in force and the number of levels of every domain. */
typedef struct DkSmlDpmMaxForAll {
    uint32_t maxLevel[DK_SML_DPM_IP_COUNT];
    uint32_t levelCount[DK_SML_DPM_IP_COUNT];
} DkSmlDpmMaxForAll;

/** DPM sampling interval of every domain. */
typedef struct DkSmlDpmInterval {
    uint16_t interval[DK_SML_DPM_IP_COUNT];
} DkSmlDpmInterval;

/** Time spent at each level, per domain. */
typedef struct DkSmlDpmCounterForAll {
    uint64_t counter[DK_SML_DPM_IP_COUNT][DK_SML_DPM_MAX_LEVELS];
} DkSmlDpmCounterForAll;

/** Clock and voltage of every level of every domain. */
typedef struct DkSmlDpmInfoForAll {
    DkSmlDpmPerfLevel clock[DK_SML_DPM_IP_COUNT];
    DkSmlDpmPerfLevel voltage[DK_SML_DPM_IP_COUNT];
} DkSmlDpmInfoForAll;

/** Clock of every level of a domain. */
DKSML_API DkSmlReturn dkSmlGetDpmIpClockInfo(uint32_t deviceIndex, DkSmlDpmIp ip, DkSmlDpmPerfLevel *levels);
/** Voltage of every level of a domain. */
DKSML_API DkSmlReturn dkSmlGetDpmIpVddInfo(uint32_t deviceIndex, DkSmlDpmIp ip, DkSmlDpmPerfLevel *levels);
/** Current performance level of a domain. */
DKSML_API DkSmlReturn dkSmlGetCurrentDpmIpPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t *level);
/** Current performance level of a domain on one die. */
DKSML_API DkSmlReturn dkSmlGetCurrentDieDpmIpPerfLevel(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                       uint32_t *level);
/** Maximum performance level of every domain. */
DKSML_API DkSmlReturn dkSmlGetDpmMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmForAll *levels);
/** Maximum performance level of a domain (from 0). */
DKSML_API DkSmlReturn dkSmlGetDpmIpMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t *level);
/** Maximum performance level of a domain on one die. */
DKSML_API DkSmlReturn dkSmlGetDieDpmIpMaxPerfLevel(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                   uint32_t *level);
/** Limits a domain to a maximum performance level. */
DKSML_API DkSmlReturn dkSmlSetDpmIpMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t level);

/* ------------------------------------------------------------------------ */
/* Utilisation and memory                                                    */
/* ------------------------------------------------------------------------ */

typedef enum DkSmlUsageIp DKSML_ENUM_BASE {
    DK_SML_USAGE_IP_DLA = 0,
    DK_SML_USAGE_IP_VPUE = 1,
    DK_SML_USAGE_IP_VPUD = 2,
    DK_SML_USAGE_IP_G2D = 3,
    DK_SML_USAGE_IP_XCORE = 4
} DkSmlUsageIp;

/*
 * Memory pools, in KiB, from "showmeminfo" (totals) and "showmemuse" (used):
 * pool 0 the device memory, pool 1 its CPU-visible part, pool 2 the host
 * memory the device maps (GTT). A device's pools 0 and 1 are the sums over its
 * dies; pool 2 is shared by the dies and reported once, as die 0 sees it.
 *
 * AP usage table: "deviceinfo" must give both "dpc_count" and "ap_per_dpc",
 * else DK_SML_ERROR_SYSFS and nothing is filled. The usage array must hold
 * dpcCount x apCount values (the capacities passed in). Fused-off DPCs and APs
 * ("ff") are left out, so apCount on return is the number of values stored.
 */
#define DK_SML_MEMORY_POOLS 3

/** Total and used size of one memory pool in KiB. */
typedef struct DkSmlMemoryPool {
    uint64_t total;
    uint64_t used;
} DkSmlMemoryPool;

/** Memory of a die or device; pool 0 is the device memory. */
typedef struct DkSmlMemoryInfo {
    DkSmlMemoryPool pool[DK_SML_MEMORY_POOLS];
} DkSmlMemoryInfo;

/** Memory totals and use of a device. */
DKSML_API DkSmlReturn dkSmlGetMemoryInfo(uint32_t deviceIndex, DkSmlMemoryInfo *info);
/** Memory totals and use of one die. */
DKSML_API DkSmlReturn dkSmlGetDieMemoryInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlMemoryInfo *info);
/** Average usage of an engine type over the dies, in percent. */
DKSML_API DkSmlReturn dkSmlGetDeviceIpUsage(uint32_t deviceIndex, DkSmlUsageIp ip, int32_t *usage);
/** Usage of an engine type on one die, in percent. */
DKSML_API DkSmlReturn dkSmlGetDieIpUsage(uint32_t deviceIndex, uint32_t dieId, DkSmlUsageIp ip,
                                         int32_t *usage);
/** Per-AP usage of die 0; dpcCount and apCount are capacities in, sizes out. */
DKSML_API DkSmlReturn dkSmlGetXcoreApUsage(uint32_t deviceIndex, uint32_t *usage, uint32_t *dpcCount,
                                           uint32_t *apCount);
/** Per-AP usage of one die. */
DKSML_API DkSmlReturn dkSmlGetDieXcoreApUsage(uint32_t deviceIndex, uint32_t dieId, uint32_t *usage,
                                              uint32_t *dpcCount, uint32_t *apCount);
/** AP usage sampling switch of die 0. */
DKSML_API DkSmlReturn dkSmlGetApUsageToggle(uint32_t deviceIndex, uint32_t *state);
/** AP usage sampling switch of one die. */
DKSML_API DkSmlReturn dkSmlGetDieApUsageToggle(uint32_t deviceIndex, uint32_t dieId, uint32_t *state);
/** Turns AP usage sampling on (non-zero) or off on every die. */
DKSML_API DkSmlReturn dkSmlSetApUsageToggle(uint32_t deviceIndex, int32_t state);
/** Turns AP usage sampling on (non-zero) or off on one die. */
DKSML_API DkSmlReturn dkSmlSetDieApUsageToggle(uint32_t deviceIndex, uint32_t dieId, int32_t state);

/* ------------------------------------------------------------------------ */
/* EEPROM and fuses                                                          */
/* ------------------------------------------------------------------------ */

#define DK_SML_SERIAL_LENGTH 32

/** EEPROM content as "Key:value;" pairs (text rule). */
DKSML_API DkSmlReturn dkSmlGetEepromInfo(uint32_t deviceIndex, char *info, uint32_t *size);
/** Board serial number (text rule). */
DKSML_API DkSmlReturn dkSmlGetBoardSerial(uint32_t deviceIndex, char *serial, uint32_t *size);
/** Chip serial number from the fuses (text rule); also for limited devices. */
DKSML_API DkSmlReturn dkSmlGetChipSerial(uint32_t deviceIndex, char *serial, uint32_t *size);

/* ------------------------------------------------------------------------ */
/* Versions                                                                  */
/* ------------------------------------------------------------------------ */

#define DK_SML_VERSION_LENGTH 64

/** Version kind of dkSmlGetDeviceVersion; 2 and up are firmware units. */
typedef enum DkSmlVersionUnit DKSML_ENUM_BASE {
    DK_SML_VERSION_VBIOS = 0,
    DK_SML_VERSION_DRIVER = 1,
    DK_SML_VERSION_FW_SMP0 = 2,
    DK_SML_VERSION_FW_SMP1 = 3,
    DK_SML_VERSION_FW_CCX0 = 4,
    DK_SML_VERSION_FW_CCX1 = 5,
    DK_SML_VERSION_FW_CCX2 = 6,
    DK_SML_VERSION_FW_CCX3 = 7,
    DK_SML_VERSION_FW_MCU = 8,
    DK_SML_VERSION_FW_VR0 = 9,
    DK_SML_VERSION_FW_VR1 = 10
} DkSmlVersionUnit;

typedef struct DkSmlFwVersion {
    char smp0[DK_SML_VERSION_LENGTH];
    char smp1[DK_SML_VERSION_LENGTH];
    char ccx0[DK_SML_VERSION_LENGTH];
    char ccx1[DK_SML_VERSION_LENGTH];
    char ccx2[DK_SML_VERSION_LENGTH];
    char ccx3[DK_SML_VERSION_LENGTH];
    char mcu[DK_SML_VERSION_LENGTH];
    char vr0[DK_SML_VERSION_LENGTH];
    char vr1[DK_SML_VERSION_LENGTH];
} DkSmlFwVersion;

typedef struct DkSmlVersion {
    char vbiosVersion[DK_SML_VERSION_LENGTH];
    char driverVersion[DK_SML_VERSION_LENGTH];
    char vornVersion[DK_SML_VERSION_LENGTH];   /* compute stack          */
    DkSmlFwVersion fwVersion;
} DkSmlVersion;

/** One version text of a device (text rule); limited devices: kind 0 only. */
DKSML_API DkSmlReturn dkSmlGetDeviceVersion(uint32_t deviceIndex, DkSmlVersionUnit unit, char *version,
                                            uint32_t *size);
/** Every version text of one die. */
DKSML_API DkSmlReturn dkSmlGetDeviceDieVersion(uint32_t deviceIndex, uint32_t dieId, DkSmlVersion *version);
/** Version of the installed compute stack (text rule). */
DKSML_API DkSmlReturn dkSmlGetVornVersion(char *version, uint32_t *size);
/** Version of the power-play table (text rule). */
DKSML_API DkSmlReturn dkSmlGetPptableVersion(uint32_t deviceIndex, char *version, uint32_t *size);

/* ------------------------------------------------------------------------ */
/* RAS and ECC                                                               */
/* ------------------------------------------------------------------------ */

#define DK_SML_RAS_MAX_STATUS 32

/** Error counts of one hardware block (block chosen by the caller). */
typedef struct DkSmlRasErrorData {
    uint32_t block;
    uint64_t correctable;
    uint64_t uncorrectable;
} DkSmlRasErrorData;

/** As DkSmlRasErrorData, with deferred errors. */
typedef struct DkSmlRasErrorData_v2 {
    uint32_t block;
    uint64_t correctable;
    uint64_t uncorrectable;
    uint64_t deferred;
} DkSmlRasErrorData_v2;

/** Total ECC error counts of a device. */
typedef struct DkSmlEccErrorCount {
    uint64_t correctable;
    uint64_t uncorrectable;
} DkSmlEccErrorCount;

/** Error counts of the block named in data->block. */
DKSML_API DkSmlReturn dkSmlGetRasErrorData(uint32_t deviceIndex, DkSmlRasErrorData *data);
/** Error counts of the block named in data->block on one die. */
DKSML_API DkSmlReturn dkSmlGetRasErrorData_v2(uint32_t deviceIndex, uint32_t dieId, DkSmlRasErrorData_v2 *data);
/** RAS status word of every block; count in/out. */
DKSML_API DkSmlReturn dkSmlGetRasStatusData(uint32_t deviceIndex, uint32_t *count, uint32_t *status);
/** ECC mode: 1 enabled, 0 disabled. */
DKSML_API DkSmlReturn dkSmlGetEccState(uint32_t deviceIndex, uint32_t *state);
/** Enables (non-zero) or disables ECC. */
DKSML_API DkSmlReturn dkSmlSetEccState(uint32_t deviceIndex, uint32_t state);
/** Total ECC error counts. */
DKSML_API DkSmlReturn dkSmlGetTotalEccErrors(uint32_t deviceIndex, DkSmlEccErrorCount *errors);

/* ------------------------------------------------------------------------ */
/* PCIe                                                                      */
/* ------------------------------------------------------------------------ */

typedef struct DkSmlPcieInfo {
    float speed;                /* GT/s */
    uint32_t width;             /* lanes */
} DkSmlPcieInfo;

/** Upstream bandwidth counters, in the driver's order ("showupstreambandwidth":
 *  rx bytes, tx bytes, rx packets, tx packets, max payload, replay count).
 *  DkSmlPcieThroughput takes rx from counter 0 and tx from counter 1. */
typedef struct DkSmlPcieBandwidth {
    uint32_t counters[6];
} DkSmlPcieBandwidth;

typedef struct DkSmlPcieThroughput {
    uint32_t tx;
    uint32_t rx;
} DkSmlPcieThroughput;

typedef enum DkSmlPciGen DKSML_ENUM_BASE {
    DK_SML_PCI_GEN1 = 1,
    DK_SML_PCI_GEN2 = 2,
    DK_SML_PCI_GEN3 = 3,
    DK_SML_PCI_GEN4 = 4,
    DK_SML_PCI_GEN5 = 5
} DkSmlPciGen;

/** Current PCIe link speed and width. */
DKSML_API DkSmlReturn dkSmlGetPcieInfo(uint32_t deviceIndex, DkSmlPcieInfo *info);
/** Best link the device and its slot can carry. */
DKSML_API DkSmlReturn dkSmlGetPcieMaxLinkInfo(uint32_t deviceIndex, DkSmlPcieInfo *info);
/** PCIe throughput counters. */
DKSML_API DkSmlReturn dkSmlGetPcieThroughput(uint32_t deviceIndex, DkSmlPcieThroughput *throughput);
/** Forces the PCIe generation (not above the link's maximum). */
DKSML_API DkSmlReturn dkSmlSetPciSpeed(uint32_t deviceIndex, DkSmlPciGen generation);
/** PCI delay of the driver. */
DKSML_API DkSmlReturn dkSmlGetPciDelay(uint32_t deviceIndex, uint32_t *delay);
/** Sets the PCI delay of the driver (1 to 10000). */
DKSML_API DkSmlReturn dkSmlSetPciDelay(uint32_t deviceIndex, uint32_t delay);
/** Physical slot number from the firmware's SMBIOS system-slot records
 *  ("/sys/firmware/dmi/tables/DMI"); every function of a device shares the
 *  slot of function 0. */
DKSML_API DkSmlReturn dkSmlGetDeviceSlot(uint32_t deviceIndex, uint32_t *slot);
/** MMIO state of the PCI function. */
DKSML_API DkSmlReturn dkSmlGetPciMmioState(uint32_t deviceIndex, uint32_t *state);
/** PCI error events as "Key:value;" pairs (text rule). */
DKSML_API DkSmlReturn dkSmlGetPciEventInfo(uint32_t deviceIndex, char *info, uint32_t *size);

/* ------------------------------------------------------------------------ */
/* Video units, bandwidth, Ethernet and optical modules                      */
/* ------------------------------------------------------------------------ */

/** Read and write bandwidth of one channel or engine. */
typedef struct DkSmlBandwidthInfo {
    uint64_t read;
    uint64_t write;
} DkSmlBandwidthInfo;

/** Receive and transmit counters of one Ethernet port. */
typedef struct DkSmlEthThroughput {
    uint64_t rxBytes;
    uint64_t txBytes;
} DkSmlEthThroughput;

/** State of every video unit; count in/out. */
DKSML_API DkSmlReturn dkSmlGetVpuStatus(uint32_t deviceIndex, uint32_t *count, uint32_t *states);
/** State of every codec; count in/out. */
DKSML_API DkSmlReturn dkSmlGetCodecStatus(uint32_t deviceIndex, uint32_t *count, uint32_t *states);
/** HBM bandwidth per channel; count in/out. */
DKSML_API DkSmlReturn dkSmlGetHbmBandWidth(uint32_t deviceIndex, uint32_t *count, DkSmlBandwidthInfo *channels);
/** DMA bandwidth per engine; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDmaBandwidth(uint32_t deviceIndex, uint32_t *count, DkSmlBandwidthInfo *engines);
/** Ethernet throughput per port; count in/out. */
DKSML_API DkSmlReturn dkSmlGetEthThroughput(uint32_t deviceIndex, uint32_t *count, DkSmlEthThroughput *ports);
/** Presence state of every optical module; count in/out. */
DKSML_API DkSmlReturn dkSmlGetOpticalModuleStatus(uint32_t deviceIndex, uint32_t *count, uint32_t *states);
/** Identity of one optical module as "Key:value;" pairs (text rule). */
DKSML_API DkSmlReturn dkSmlGetOpticalModuleInfo(uint32_t deviceIndex, uint32_t module, char *info,
                                                uint32_t *size);
/** Optical power of every lane of one module; count in/out. */
DKSML_API DkSmlReturn dkSmlGetOpticalModulePower(uint32_t deviceIndex, uint32_t module, uint32_t *count,
                                                 int32_t *powers);

/* ------------------------------------------------------------------------ */
/* Interconnect (DravikLink)                                                 */
/* ------------------------------------------------------------------------ */

#define DK_SML_DRAVIK_LINK_MAX_PORTS 16

/*
 * The driver's interconnect attributes, per die ("smi/" and "smi1/"):
 *
 * | Attribute                                 | Lines                                      | Record                      |
 * |-------------------------------------------|--------------------------------------------|-----------------------------|
 * | "showdvlkibandwidth", "showdvlktbandwidth" | two per link: "<label>: current", then      | DkSmlDravikLinkBandwidth    |
 * |                                           | "<label>: maximum"; die 1 ends with its PM  | values[0], values[1]        |
 * |                                           | port's pair                                |                             |
 * | "dvlki_traffic_stat", "dvlkt_traffic_stat" | "portN: <packets> <bytes>"                 | DkSmlDravikLinkTrafficStat  |
 * | "showdvlkaer"                             | "portN: <correctable> <uncorrectable>"     | DkSmlDravikLinkAer          |
 * | "showdvlkspeed", "showdvlkwidth"           | "portN: <GT/s>", "portN: <lanes>"          | DkSmlDravikLinkInfo         |
 * | "showdvlkstatus"                          | "portN: <state 0..4>"; other or absent: 5  | port states, _v2 state[]    |
 * | "dravlink_ctrl"                           | "<0 off, 1 on>", then the driver's text    | state and text              |
 *
 * Ports count from 1; die 0 has 7 ports, die 1 has 8 (the PM port last).
 * On a multi-chip device the device forms list die 0's entries, then die 1's;
 * the interconnect state is on only when both dies are on, and setting it
 * writes both dies. The link topology (DkSmlDravikLinkTopo) comes from the
 * layout's interconnect link records (link types 4 and 5, in the driver's
 * order): localPort and remotePort are the positions of the record at each
 * end, UINT32_MAX when the far end lists no record back.
 */

typedef enum DkSmlDravikLinkType DKSML_ENUM_BASE {
    DK_SML_DRAVIK_LINK_INBOUND = 0,
    DK_SML_DRAVIK_LINK_OUTBOUND = 1
} DkSmlDravikLinkType;

/** The two bandwidth values the driver reports for one link. */
typedef struct DkSmlDravikLinkBandwidth {
    uint32_t values[2];
} DkSmlDravikLinkBandwidth;

typedef struct DkSmlDravikLinkTrafficStat {
    uint64_t packets;
    uint64_t bytes;
} DkSmlDravikLinkTrafficStat;

typedef struct DkSmlDravikLinkAer {
    uint32_t correctable;
    uint32_t uncorrectable;
} DkSmlDravikLinkAer;

/** Speed and width of every port. */
typedef struct DkSmlDravikLinkInfo {
    uint32_t portCount;
    float speed[DK_SML_DRAVIK_LINK_MAX_PORTS];
    uint32_t width[DK_SML_DRAVIK_LINK_MAX_PORTS];
} DkSmlDravikLinkInfo;

/** As DkSmlDravikLinkInfo, with the port states. */
typedef struct DkSmlDravikLinkInfo_v2 {
    uint32_t portCount;
    float speed[DK_SML_DRAVIK_LINK_MAX_PORTS];
    uint32_t width[DK_SML_DRAVIK_LINK_MAX_PORTS];
    uint32_t state[DK_SML_DRAVIK_LINK_MAX_PORTS];
} DkSmlDravikLinkInfo_v2;

/** One port of the link topology. */
typedef struct DkSmlDravikLinkTopo {
    uint32_t localPort;
    uint32_t remoteDeviceIndex;
    uint32_t remotePort;
} DkSmlDravikLinkTopo;

/** Bandwidth of every link in one direction; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkBandwidth(uint32_t deviceIndex, DkSmlDravikLinkType type,
                                                  uint32_t *count, DkSmlDravikLinkBandwidth *links);
/** Traffic counters of every link in one direction; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkTrafficStat(uint32_t deviceIndex, DkSmlDravikLinkType type,
                                                    uint32_t *count, DkSmlDravikLinkTrafficStat *links);
/** Error counters of every link; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkAer(uint32_t deviceIndex, uint32_t *count, DkSmlDravikLinkAer *links);
/** Speed and width of every port. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkInfo(uint32_t deviceIndex, DkSmlDravikLinkInfo *info);
/** Speed, width and state of every port. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkInfo_v2(uint32_t deviceIndex, DkSmlDravikLinkInfo_v2 *info);
/** Interconnect on/off state and the driver's state text (text rule). */
DKSML_API DkSmlReturn dkSmlGetDravikLinkState(uint32_t deviceIndex, uint32_t *state, char *text,
                                              uint32_t *size);
/** Switches the interconnect on (non-zero) or off. */
DKSML_API DkSmlReturn dkSmlSetDravikLinkState(uint32_t deviceIndex, uint32_t state);
/** State (0 to 4, 5 unknown) of every port; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkPortState(uint32_t deviceIndex, uint32_t *count, uint32_t *states);
/** Link topology of every port; count in/out. */
DKSML_API DkSmlReturn dkSmlGetDravikLinkTopo(uint32_t deviceIndex, uint32_t *count, DkSmlDravikLinkTopo *ports);

/* ------------------------------------------------------------------------ */
/* Maintenance: firmware log, resets, firmware image                         */
/* ------------------------------------------------------------------------ */

/** Sets the firmware log level of every firmware unit. */
DKSML_API DkSmlReturn dkSmlSetFwLoglevel(uint32_t deviceIndex, uint32_t level);
/** Firmware log level of one firmware unit. */
DKSML_API DkSmlReturn dkSmlGetFwIpLoglevel(uint32_t deviceIndex, uint32_t ip, uint32_t *level);
/** Firmware log level of the device. */
DKSML_API DkSmlReturn dkSmlGetFwLoglevel(uint32_t deviceIndex, uint32_t *level);
/** Function-level reset of a device. */
DKSML_API DkSmlReturn dkSmlFunctionLevelReset(uint32_t deviceIndex);
/** Function-level reset of one virtual function, issued through its physical function. */
DKSML_API DkSmlReturn dkSmlFunctionLevelResetVfFromPf(uint32_t deviceIndex, uint32_t vfIndex);
/** Warm reset of a device; also for limited devices. */
DKSML_API DkSmlReturn dkSmlReset(uint32_t deviceIndex);
/** Forced reset of a device; also for limited devices. */
DKSML_API DkSmlReturn dkSmlForceReset(uint32_t deviceIndex);
/** Writes a VBIOS image file to the device; also for limited devices. */
DKSML_API DkSmlReturn dkSmlVbiosUpgrade(uint32_t deviceIndex, const char *imagePath);
/** Saves the device's VBIOS image to a file. */
DKSML_API DkSmlReturn dkSmlDumpVbios(uint32_t deviceIndex, const char *outputPath);
/** SR-IOV state: 1 enabled, 0 disabled. */
DKSML_API DkSmlReturn dkSmlGetSriovState(uint32_t deviceIndex, uint32_t *state);

/* ======================================================================== */
/* Compatibility family                                                      */
/* ======================================================================== */

#define DK_SML_EX_DEVICE_NAME_BUFFER_SIZE 64
#define DK_SML_EX_DEVICE_UUID_BUFFER_SIZE 96
#define DK_SML_EX_DEVICE_PCI_BUS_ID_BUFFER_SIZE 32
#define DK_SML_EX_SYSTEM_DKSML_VERSION_BUFFER_SIZE 16
#define DK_SML_EX_SYSTEM_DRIVER_VERSION_BUFFER_SIZE 64

typedef enum DkSmlExTemperatureSensors DKSML_ENUM_BASE {
    DK_SML_EX_TEMPERATURE_GPU = 0
} DkSmlExTemperatureSensors;

typedef enum DkSmlExTemperatureThresholds DKSML_ENUM_BASE {
    DK_SML_EX_TEMPERATURE_THRESHOLD_SHUTDOWN = 0,
    DK_SML_EX_TEMPERATURE_THRESHOLD_SLOWDOWN = 1
} DkSmlExTemperatureThresholds;

typedef enum DkSmlExClockType DKSML_ENUM_BASE {
    DK_SML_EX_CLOCK_GRAPHICS = 0,
    DK_SML_EX_CLOCK_SM = 1,         /* compute cores (xcore)              */
    DK_SML_EX_CLOCK_MEM = 2,        /* memory controller (mc)             */
    DK_SML_EX_CLOCK_VIDEO = 3       /* video encoder (vpue)               */
} DkSmlExClockType;

typedef enum DkSmlExClockId DKSML_ENUM_BASE {
    DK_SML_EX_CLOCK_ID_CURRENT = 0,
    DK_SML_EX_CLOCK_ID_APP_CLOCK_TARGET = 1,
    DK_SML_EX_CLOCK_ID_APP_CLOCK_DEFAULT = 2,
    DK_SML_EX_CLOCK_ID_CUSTOMER_BOOST_MAX = 3
} DkSmlExClockId;

typedef enum DkSmlExEnableState DKSML_ENUM_BASE {
    DK_SML_EX_FEATURE_DISABLED = 0,
    DK_SML_EX_FEATURE_ENABLED = 1
} DkSmlExEnableState;

/** Performance state: 0 is the fastest, 15 the slowest. */
typedef enum DkSmlExPstates DKSML_ENUM_BASE {
    DK_SML_EX_PSTATE_0 = 0,
    DK_SML_EX_PSTATE_15 = 15,
    DK_SML_EX_PSTATE_UNKNOWN = 32
} DkSmlExPstates;

typedef enum DkSmlExPcieUtilCounter DKSML_ENUM_BASE {
    DK_SML_EX_PCIE_UTIL_TX_BYTES = 0,
    DK_SML_EX_PCIE_UTIL_RX_BYTES = 1
} DkSmlExPcieUtilCounter;

typedef enum DkSmlExGpuTopologyLevel DKSML_ENUM_BASE {
    DK_SML_EX_TOPOLOGY_INTERNAL = 0,
    DK_SML_EX_TOPOLOGY_SINGLE = 10,
    DK_SML_EX_TOPOLOGY_MULTIPLE = 20,
    DK_SML_EX_TOPOLOGY_HOSTBRIDGE = 30,
    DK_SML_EX_TOPOLOGY_NODE = 40,
    DK_SML_EX_TOPOLOGY_SYSTEM = 50
} DkSmlExGpuTopologyLevel;

typedef enum DkSmlExGpuP2PCapsIndex DKSML_ENUM_BASE {
    DK_SML_EX_P2P_CAPS_INDEX_READ = 0,
    DK_SML_EX_P2P_CAPS_INDEX_WRITE = 1,
    DK_SML_EX_P2P_CAPS_INDEX_DRAVIK_LINK = 2,
    DK_SML_EX_P2P_CAPS_INDEX_ATOMICS = 3,
    DK_SML_EX_P2P_CAPS_INDEX_PROP = 4,
    DK_SML_EX_P2P_CAPS_INDEX_UNKNOWN = 5
} DkSmlExGpuP2PCapsIndex;

typedef enum DkSmlExGpuP2PStatus DKSML_ENUM_BASE {
    DK_SML_EX_P2P_STATUS_OK = 0,
    DK_SML_EX_P2P_STATUS_NOT_SUPPORTED = 1,
    DK_SML_EX_P2P_STATUS_UNKNOWN = 2
} DkSmlExGpuP2PStatus;

typedef enum DkSmlExDravikLinkDeviceType DKSML_ENUM_BASE {
    DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_GPU = 0,
    DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_SWITCH = 1,
    DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_UNKNOWN = 255
} DkSmlExDravikLinkDeviceType;

/** PCI identity of a die's device. */
typedef struct DkSmlExPciInfo {
    char busId[DK_SML_EX_DEVICE_PCI_BUS_ID_BUFFER_SIZE];  /* "0000:03:00.0" */
    uint32_t domain;
    uint32_t bus;
    uint32_t device;
    uint32_t function;
    uint32_t pciDeviceId;       /* device id << 16 | vendor id            */
    uint32_t pciSubSystemId;    /* subsystem id << 16 | subsystem vendor  */
} DkSmlExPciInfo;

/** Busy percentages over the last sampling period: gpu is the die's compute-core
 *  usage (%), memory the used share of its device memory (%). */
typedef struct DkSmlExUtilization {
    uint32_t gpu;
    uint32_t memory;
} DkSmlExUtilization;

/** Device memory (pool 0) of one die in bytes: free = total - used. */
typedef struct DkSmlExMemory {
    uint64_t free;
    uint64_t total;
    uint64_t used;
} DkSmlExMemory;

/** A process running on a die: its pid (as the driver's client directory
 *  names it) and the sum of its memory on that die over all memory domains and
 *  slices, in the driver's unit (bytes). Idle clients (memory at or below the
 *  board's threshold without a compute ring on the die) are not reported. */
typedef struct DkSmlExProcessInfo {
    uint32_t pid;
    uint64_t usedGpuMemory;
} DkSmlExProcessInfo;

/** Field identifiers of dkSmlExDeviceGetFieldValues. */
#define DK_SML_EX_FI_DEV_DRAVIK_LINK_LINK_COUNT 1u

typedef enum DkSmlExValueType DKSML_ENUM_BASE {
    DK_SML_EX_VALUE_TYPE_DOUBLE = 0,
    DK_SML_EX_VALUE_TYPE_UNSIGNED_INT = 1,
    DK_SML_EX_VALUE_TYPE_UNSIGNED_LONG_LONG = 3,
    DK_SML_EX_VALUE_TYPE_SIGNED_LONG_LONG = 4
} DkSmlExValueType;

typedef union DkSmlExValue {
    double dVal;
    uint32_t uiVal;
    uint64_t ullVal;
    int64_t sllVal;
} DkSmlExValue;

/** One field request (fieldId, scopeId in) and its answer. */
typedef struct DkSmlExFieldValue {
    uint32_t fieldId;
    uint32_t scopeId;
    int64_t timestamp;          /* microseconds since the epoch            */
    int64_t latencyUsec;
    DkSmlExValueType valueType;
    DkSmlExReturn dkSmlReturn;  /* status of this field                    */
    DkSmlExValue value;
} DkSmlExFieldValue;

/** Calls dkSmlInit and always answers 0. */
DKSML_API DkSmlExReturn dkSmlExInit(void);
/** Does nothing; answers 0. */
DKSML_API DkSmlExReturn dkSmlExShutdown(void);
/** Fixed English text of a compatibility status ("" when unknown). */
DKSML_API const char *dkSmlExErrorString(DkSmlExReturn result);
/** Number of dies (or slices in slice mode) of the physical devices. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetCount(uint32_t *deviceCount);
/** The same as dkSmlExDeviceGetCount. */
DKSML_API DkSmlExReturn dkSmlExVornDeviceGetCount(uint32_t *deviceCount);
/** Handle of the die with the compute stack's number index. */
DKSML_API DkSmlExReturn dkSmlExGetDeviceHandleByIndex(uint32_t index, DkSmlExDevice *device);
/** Handle of die 0 of the device with this UUID. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetHandleByUUID(const char *uuid, DkSmlExDevice *device);
/** Handle of die 0 of the device at this PCI bus id (any field width). */
DKSML_API DkSmlExReturn dkSmlExGetDeviceHandleByPciBusId(const char *pciBusId, DkSmlExDevice *device);
/** Device name. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetName(DkSmlExDevice device, char *name, uint32_t length);
/** Device UUID. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetUUID(DkSmlExDevice device, char *uuid, uint32_t length);
/** PCI identity. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetPciInfo(DkSmlExDevice device, DkSmlExPciInfo *pci);
/** Minor number of the device's render node. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetMinorNumber(DkSmlExDevice device, uint32_t *minorNumber);
/** Compute capability (always 9.0). */
DKSML_API DkSmlExReturn dkSmlExDeviceGetComputeCapability(DkSmlExDevice device, int32_t *major,
                                                          int32_t *minor);
/** Die temperature: the hot spot of the handle's die divided by 100 (integer
 *  division). This interface takes the reading as hundredths of a degree; a
 *  driver that prints whole degrees, as the virtual host's does, reads as 0 here
 *  (use dkSmlGetDieTemperatureInfo for the value as printed). */
DKSML_API DkSmlExReturn dkSmlExDeviceGetTemperature(DkSmlExDevice device, DkSmlExTemperatureSensors sensor,
                                                    uint32_t *temp);
/** Shutdown threshold (the die's hot-spot limit), divided by 100 like the temperature above. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetTemperatureThreshold(DkSmlExDevice device,
                                                             DkSmlExTemperatureThresholds threshold,
                                                             uint32_t *temp);
/** Current clock of one clock type in MHz. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetClockInfo(DkSmlExDevice device, DkSmlExClockType type,
                                                  uint32_t *clockMHz);
/** Clock of one clock type and kind in MHz. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetClock(DkSmlExDevice device, DkSmlExClockType type,
                                              DkSmlExClockId clockId, uint32_t *clockMHz);
/** Applications clock (the highest allowed level) of one clock type in MHz. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetApplicationsClock(DkSmlExDevice device, DkSmlExClockType type,
                                                          uint32_t *clockMHz);
/** Supported memory clocks in MHz; count in/out. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedMemoryClocks(DkSmlExDevice device, uint32_t *count,
                                                              uint32_t *clocksMHz);
/** Supported compute clocks for a memory clock (0: any) in MHz; count in/out. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedGraphicsClocks(DkSmlExDevice device, uint32_t memoryClockMHz,
                                                                uint32_t *count, uint32_t *clocksMHz);
/** As dkSmlExDeviceGetSupportedGraphicsClocks. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedGraphicsClocks_v2(DkSmlExDevice device,
                                                                   uint32_t memoryClockMHz, uint32_t *count,
                                                                   uint32_t *clocksMHz);
/** Caps the compute clock at a supported level. */
DKSML_API DkSmlExReturn dkSmlExDeviceSetApplicationsClocks(DkSmlExDevice device, uint32_t memoryClockMHz,
                                                           uint32_t graphicsClockMHz);
/** Has no effect; answers 0 for a valid handle. */
DKSML_API DkSmlExReturn dkSmlExDeviceResetApplicationsClocks(DkSmlExDevice device);
/** Current performance state. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetPerformanceState(DkSmlExDevice device, DkSmlExPstates *pState);
/** Auto boost is not offered: both outputs 0. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetAutoBoostedClocksEnabled(DkSmlExDevice device,
                                                                 DkSmlExEnableState *isEnabled,
                                                                 DkSmlExEnableState *defaultIsEnabled);
/** Auto boost is not offered: DK_SML_EX_ERROR_NOT_SUPPORTED for a valid handle. */
DKSML_API DkSmlExReturn dkSmlExDeviceSetAutoBoostedClocksEnabled(DkSmlExDevice device,
                                                                 DkSmlExEnableState enabled);
/** Every throttle reason the driver may report. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedClocksThrottleReasons(DkSmlExDevice device,
                                                                       uint64_t *reasons);
/** Throttle reasons in force on the die. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetCurrentClocksThrottleReasons(DkSmlExDevice device, uint64_t *reasons);
/** Power draw of the die in W: the sum of its PMBus rail powers. */
DKSML_API DkSmlExReturn dkSmlExGetPowerUsage(DkSmlExDevice device, uint32_t *power);
/** Board power limit in mW. */
DKSML_API DkSmlExReturn dkSmlExGetPowerManagementLimit(DkSmlExDevice device, uint32_t *limit);
/** Board power limit in force, in mW (the library sets none of its own). */
DKSML_API DkSmlExReturn dkSmlExDeviceGetEnforcedPowerLimit(DkSmlExDevice device, uint32_t *limit);
/** Compute and memory busy percentages. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetUtilization(DkSmlExDevice device, DkSmlExUtilization *utilization);
/** Memory of the die in bytes. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetMemoryInfo(DkSmlExDevice device, DkSmlExMemory *memory);
/** Current PCIe link width. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetCurrPcieLinkWidth(DkSmlExDevice device, uint32_t *width);
/** Maximum PCIe link width. */
DKSML_API DkSmlExReturn dkSmlExGetMaxPcieLinkWidth(DkSmlExDevice device, uint32_t *width);
/** PCIe throughput counter. */
DKSML_API DkSmlExReturn dkSmlExGetPcieThroughput(DkSmlExDevice device, DkSmlExPcieUtilCounter counter,
                                                 uint32_t *value);
/** Bit mask of the local CPUs in cpuSetSize 32-bit words. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetCpuAffinity(DkSmlExDevice device, uint32_t cpuSetSize,
                                                    uint32_t *cpuSet);
/** Pins the calling thread to the local CPUs. */
DKSML_API DkSmlExReturn dkSmlExDeviceSetCpuAffinity(DkSmlExDevice device);
/** Closest common ancestor of two dies. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetTopologyCommonAncestor(DkSmlExDevice device1, DkSmlExDevice device2,
                                                               DkSmlExGpuTopologyLevel *pathInfo);
/** Peer-to-peer status between two dies. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetP2PStatus(DkSmlExDevice device1, DkSmlExDevice device2,
                                                  DkSmlExGpuP2PCapsIndex p2pIndex,
                                                  DkSmlExGpuP2PStatus *p2pStatus);
/** Whether one interconnect link is active. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkState(DkSmlExDevice device, uint32_t link,
                                                        DkSmlExEnableState *isActive);
/** PCI identity of the device at the far end of one link. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkRemotePciInfo_v2(DkSmlExDevice device, uint32_t link,
                                                                   DkSmlExPciInfo *pci);
/** Kind of device at the far end of one link. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkRemoteDeviceType(DkSmlExDevice device, uint32_t link,
                                                                   DkSmlExDravikLinkDeviceType *type);
/** Answers each field request; every entry carries its own status. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetFieldValues(DkSmlExDevice device, uint32_t valuesCount,
                                                    DkSmlExFieldValue *values);
/** Fan duty in percent. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetFanSpeed(DkSmlExDevice device, uint32_t *speed);
/** Fan duty of one fan (only fan 0) in percent. */
DKSML_API DkSmlExReturn dkSmlExDeviceGetFanSpeed_v2(DkSmlExDevice device, uint32_t fan, uint32_t *speed);
/** Processes on the die; count in: capacity, out: number found
 *  (DK_SML_EX_ERROR_INSUFFICIENT_SIZE when the capacity is smaller;
 *  DK_SML_EX_ERROR_INVALID_ARGUMENT for a bad handle or null count;
 *  DK_SML_EX_ERROR_UNKNOWN when the scan fails). */
DKSML_API DkSmlExReturn dkSmlExDeviceGetComputeRunningProcesses(DkSmlExDevice device, uint32_t *infoCount,
                                                                DkSmlExProcessInfo *infos);
/** Kernel driver version text. */
DKSML_API DkSmlExReturn dkSmlExSystemGetDriverVersion(char *version, uint32_t length);
/** Compute-stack version as major * 1000 + minor * 10. */
DKSML_API DkSmlExReturn dkSmlExSystemGetVornDriverVersion(uint32_t *version);
/** This library's version text. */
DKSML_API DkSmlExReturn dkSmlExSystemGetDksmlVersion(char *version, uint32_t length);

#ifdef __cplusplus
}
#endif

#endif /* DKSML_H */
