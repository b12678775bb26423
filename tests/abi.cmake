# ABI checks of the shared library: a strict C99 client of the public header,
# and the exported symbol list against the header's functions.
add_executable(dksml_abi_smoke ${CMAKE_CURRENT_SOURCE_DIR}/abi/abi_smoke.c)
set_target_properties(dksml_abi_smoke PROPERTIES C_STANDARD 99 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
target_compile_options(dksml_abi_smoke PRIVATE -std=c99 -Wall -Wextra -Werror -pedantic)
target_link_libraries(dksml_abi_smoke PRIVATE dksml)

# An empty directory stands in for a machine without any GPU.
set(DKSML_ABI_EMPTY_ROOT ${CMAKE_CURRENT_BINARY_DIR}/abi_empty_root)
file(MAKE_DIRECTORY ${DKSML_ABI_EMPTY_ROOT})
add_test(NAME dksml_abi_smoke COMMAND dksml_abi_smoke)
set_tests_properties(dksml_abi_smoke PROPERTIES ENVIRONMENT "DK_SMI_FSROOT=${DKSML_ABI_EMPTY_ROOT}")

add_test(NAME dksml_abi_exports
  COMMAND ${CMAKE_COMMAND}
    -DNM=${CMAKE_NM}
    -DLIBRARY=$<TARGET_FILE:dksml>
    -DHEADER=${PROJECT_SOURCE_DIR}/include/dksml.h
    -DEXPECTED_COUNT=185
    -P ${CMAKE_CURRENT_SOURCE_DIR}/abi/check_exports.cmake)
