# Compares the dynamic symbols the shared library defines with the functions
# the public header declares: the same names, exactly EXPECTED_COUNT of them.
# Run with: cmake -DNM=... -DLIBRARY=... -DHEADER=... -DEXPECTED_COUNT=... -P
foreach(var NM LIBRARY HEADER EXPECTED_COUNT)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "check_exports: ${var} is not set")
  endif()
endforeach()

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE nm_output RESULT_VARIABLE nm_result)
if(NOT nm_result EQUAL 0)
  message(FATAL_ERROR "check_exports: ${NM} failed on ${LIBRARY}")
endif()

# Every defined dynamic symbol except the version node counts.
string(REPLACE "\n" ";" nm_lines "${nm_output}")
set(exported "")
foreach(line IN LISTS nm_lines)
  if(line MATCHES "^[0-9a-fA-F]* *[A-Za-z] ([^ @]+)")
    set(name "${CMAKE_MATCH_1}")
    if(NOT name MATCHES "^DKSML" AND NOT name MATCHES "^_")
      list(APPEND exported "${name}")
    endif()
  endif()
endforeach()

file(STRINGS ${HEADER} api_lines REGEX "^DKSML_API ")
set(declared "")
foreach(line IN LISTS api_lines)
  if(line MATCHES "([A-Za-z_][A-Za-z0-9_]*)\\(")
    list(APPEND declared "${CMAKE_MATCH_1}")
  endif()
endforeach()

list(REMOVE_DUPLICATES exported)
list(SORT exported)
list(SORT declared)
list(LENGTH exported exported_count)
list(LENGTH declared declared_count)

set(missing ${declared})
list(REMOVE_ITEM missing ${exported})
set(extra ${exported})
list(REMOVE_ITEM extra ${declared})

if(missing OR extra OR NOT exported_count EQUAL EXPECTED_COUNT OR NOT declared_count EQUAL EXPECTED_COUNT)
  message(FATAL_ERROR "check_exports: ${exported_count} exported, ${declared_count} declared, "
                      "${EXPECTED_COUNT} expected\n  not exported: ${missing}\n  not declared: ${extra}")
endif()
message(STATUS "check_exports: ${exported_count} functions exported and declared")
