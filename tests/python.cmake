# The Python module's tests (unittest) on the virtual hosts, against dksmi's
# JSON and the attribute files.
# Not in sanitizer builds: the interpreter cannot load a library built with a
# sanitizer runtime it was not started with.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND AND TARGET dksmi AND TARGET dkvhost_cli AND NOT DKSML_SANITIZE AND NOT DKSML_TSAN)
  add_test(NAME dksml_python
    COMMAND Python3::Interpreter -m unittest discover -s ${PROJECT_SOURCE_DIR}/python/tests -t ${PROJECT_SOURCE_DIR}/python/tests -v)
  set_tests_properties(dksml_python PROPERTIES ENVIRONMENT
    "DKSML_LIBRARY=$<TARGET_FILE:dksml>;DKSMI=$<TARGET_FILE:dksmi>;DKVHOST=$<TARGET_FILE:dkvhost_cli>;PYTHONDONTWRITEBYTECODE=1")
endif()
