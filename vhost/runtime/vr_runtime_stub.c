/*
 * The compute stack's version entry points, as a virtual host installs them.
 * One source builds every variant a host may carry:
 *   VR_RUNTIME            libvrruntime.so exporting vrRuntimeGetFullVersion
 *   VR_RUNTIME_NO_SYMBOL  libvrruntime.so without it
 *   VR_RUNTIME_FAILING    libvrruntime.so whose call reports a failure
 *   VR_SDK                libdksdk.so exporting vrGetVersion
 */
#include <stdio.h>

#define VR_EXPORT __attribute__((visibility("default")))

#if defined(VR_RUNTIME) || defined(VR_RUNTIME_FAILING)
/* Major * 1000 + minor * 10, patch, build: 2.3.5.17. */
VR_EXPORT int vrRuntimeGetFullVersion(int *majorMinor, int *patch, int *build) {
#ifdef VR_RUNTIME_FAILING
    (void)majorMinor;
    (void)patch;
    (void)build;
    return 3;
#else
    if (!majorMinor || !patch || !build) return 1;
    *majorMinor = 2030;
    *patch = 5;
    *build = 17;
    return 0;
#endif
}
#endif

#ifdef VR_RUNTIME_NO_SYMBOL
VR_EXPORT int vrRuntimeInit(void) { return 0; }
#endif

#ifdef VR_SDK
VR_EXPORT int vrGetVersion(char *text, unsigned int length) {
    if (!text || length == 0) return 1;
    return snprintf(text, length, "%s", "1.8.2") < (int)length ? 0 : 1;
}
#endif
