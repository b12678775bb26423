/* A C99 client that takes the inventory of a virtual host through the shared
 * library, the way a monitoring program would, and checks it against what the
 * shipped "server" and "guest" profiles describe: the records as a C compiler
 * lays them out. dksmi's golden transcripts pin every device's values; these
 * rows are one of each kind (two dies, virtual functions, a virtual function). */
#include <stdio.h>
#include <string.h>

#include "dksml.h"

typedef struct ExpectedDevice {
    uint32_t index;
    const char *name;
    const char *bdfId;
    uint32_t dieCount;
    uint32_t vfCount;
} ExpectedDevice;

static const ExpectedDevice c_serverDevices[] = {
    {0, "DKK6-A", "0000:1b:00.0", 2, 0},
    {2, "DKK2", "0000:1e:00.0", 1, 2},
    {101, "DKK2 VF", "0000:1e:00.2", 1, 0},
};

static const ExpectedDevice c_guestDevices[] = {
    {101, "DKK6-A VF", "0000:00:06.0", 1, 0},
};

static int failures = 0;

static void Check(int condition, const char *what, uint32_t index) {
    if (!condition) {
        fprintf(stderr, "FAILED: %s (device %u)\n", what, index);
        ++failures;
    }
}

static void CheckDevice(const ExpectedDevice *expected) {
    DkSmlDeviceInfo info;
    uint32_t dies = 0;
    uint32_t vfs[8];
    uint32_t vfCount = 8;
    size_t i;

    memset(&info, 0, sizeof info);
    Check(dkSmlGetDeviceInfo(expected->index, &info) == DK_SML_SUCCESS, "device info", expected->index);
    Check(info.deviceIndex == expected->index, "index", expected->index);
    Check(strcmp(info.deviceName, expected->name) == 0, "name", expected->index);
    Check(strcmp(info.bdfId, expected->bdfId) == 0, "bus id", expected->index);
    Check(info.uuid[0] != '\0', "uuid present", expected->index);

    Check(dkSmlGetDeviceDieCount(expected->index, &dies) == DK_SML_SUCCESS && dies == expected->dieCount,
          "die count", expected->index);
    if (expected->index < DK_SML_FIRST_VF_INDEX) {
        DkSmlReturn rc = dkSmlGetVirtualDevicesByPhysicalId(expected->index, &vfCount, vfs);
        uint32_t found = rc == DK_SML_SUCCESS ? vfCount : 0;
        Check(found == expected->vfCount, "virtual function count", expected->index);
        for (i = 0; i < found && i < 8; ++i)
            Check(vfs[i] == DK_SML_FIRST_VF_INDEX + i, "virtual function index", expected->index);
    }
}

static int CheckHost(const ExpectedDevice *devices, size_t count, uint32_t physical, uint32_t virtualFns) {
    size_t i;
    Check(dkSmlGetDeviceCount() == physical, "physical device count", 0);
    Check(dkSmlGetPfDeviceCount() == virtualFns, "virtual function count", 0);
    for (i = 0; i < count; ++i) CheckDevice(&devices[i]);
    return failures;
}

static void CheckServerLimitedDevice(void) {
    uint32_t indices[4];
    uint32_t count = 4;
    DkSmlLimitedDeviceInfo info;
    DkSmlDeviceUnavailableReasonInfo reason;

    Check(dkSmlGetAllLimitedDevices(&count, indices) == DK_SML_SUCCESS && count == 1, "one limited device", 0);
    if (count != 1) return;
    Check(indices[0] == 6, "limited device numbered after the usable ones", indices[0]);
    Check(dkSmlGetLimitedDeviceInfo(indices[0], &info) == DK_SML_SUCCESS, "limited info", indices[0]);
    Check(strcmp(info.bdfId, "0000:d8:00.0") == 0, "limited bus id", indices[0]);
    Check(dkSmlGetDeviceUnavailableReason(indices[0], &reason) == DK_SML_SUCCESS, "reason", indices[0]);
    Check(reason.reason == DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND, "reason code", indices[0]);
    Check(strcmp(reason.reasonText, "Layout Node Not Found") == 0, "reason text", indices[0]);
}

int main(int argc, char **argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: %s server|guest\n", argv[0]);
        return 2;
    }
    Check(dkSmlInit() == DK_SML_SUCCESS, "dkSmlInit", 0);
    if (strcmp(argv[1], "server") == 0) {
        CheckHost(c_serverDevices, sizeof c_serverDevices / sizeof c_serverDevices[0], 6, 2);
        CheckServerLimitedDevice();
    } else {
        CheckHost(c_guestDevices, sizeof c_guestDevices / sizeof c_guestDevices[0], 0, 2);
    }
    if (failures == 0) printf("inventory of the %s host matches\n", argv[1]);
    return failures == 0 ? 0 : 1;
}
