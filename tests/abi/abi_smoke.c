/* A plain C99 client of the public header, linked to the shared library:
 * the header must compile strictly as C, and the library must load and
 * initialise on a host without any GPU. */
#include <stdio.h>

#include "dksml.h"

static int failures = 0;

static void Check(int condition, const char *what) {
    if (!condition) {
        fprintf(stderr, "FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    uint32_t count = 99;
    DkSmlExDevice handle = NULL;

    Check(dkSmlInit() == DK_SML_ERROR_NO_DEVICE, "dkSmlInit on an empty host");
    Check(dkSmlGetDeviceCount() == 0, "device count");
    Check(dkSmlExInit() == DK_SML_EX_SUCCESS, "dkSmlExInit");
    Check(dkSmlExDeviceGetCount(&count) == DK_SML_EX_SUCCESS && count == 0, "compatibility count");
    Check(dkSmlExGetDeviceHandleByIndex(0, &handle) == DK_SML_EX_ERROR_INVALID_ARGUMENT, "no handle");
    Check(dkSmlGetDeviceInfo(0, NULL) == DK_SML_ERROR_INVALID_INPUT, "null output first");
    Check(dkSmlExShutdown() == DK_SML_EX_SUCCESS, "dkSmlExShutdown");

    if (failures == 0) printf("abi smoke test passed\n");
    return failures == 0 ? 0 : 1;
}
