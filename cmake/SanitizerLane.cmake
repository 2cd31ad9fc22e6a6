# The sanitizer lane: a second build with clang in <build>/asan (SanitizedChecks.cmake) whose
# unit tests run under AddressSanitizer and UndefinedBehaviorSanitizer, and whose libFuzzer
# harnesses fuzz the readers of outside text for a few seconds each, inside this build's
# test run.
#
#   VARNEL_SANITIZER_LANE   build and test the lane (default ON)
option(VARNEL_SANITIZER_LANE "Sanitizer build of the readers' tests, and their fuzz harnesses"
       ON)
if(NOT VARNEL_SANITIZER_LANE)
  message(STATUS "Sanitizer lane: switched off (VARNEL_SANITIZER_LANE=OFF)")
  return()
endif()

set(_varnel_san_dir ${CMAKE_BINARY_DIR}/asan)
set(_varnel_san_tests ${CMAKE_BINARY_DIR}/asan-tests.cmake)
find_program(VARNEL_CLANGXX NAMES clang++ clang++-14)
if(NOT VARNEL_CLANGXX)
  string(CONCAT _varnel_san_message
         "Sanitizer lane: clang++ is missing (clang, libclang-rt-14-dev). Install them, or "
         "configure with -DVARNEL_SANITIZER_LANE=OFF.")
  message(WARNING ${_varnel_san_message})
  file(WRITE ${CMAKE_BINARY_DIR}/asan-missing.cmake
       "message(FATAL_ERROR \"${_varnel_san_message}\")\n")
  add_test(NAME sanitizer_lane_missing
           COMMAND ${CMAKE_COMMAND} -P ${CMAKE_BINARY_DIR}/asan-missing.cmake)
  return()
endif()

include(ExternalProject)
ExternalProject_Add(
  varnel_sanitizer_lane
  SOURCE_DIR ${PROJECT_SOURCE_DIR}
  BINARY_DIR ${_varnel_san_dir}
  PREFIX ${CMAKE_BINARY_DIR}/asan-ep
  CMAKE_ARGS -DCMAKE_CXX_COMPILER=${VARNEL_CLANGXX} -DCMAKE_BUILD_TYPE=RelWithDebInfo
             -DVARNEL_SANITIZED_CHECKS=ON
  BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --parallel 2
  BUILD_ALWAYS TRUE
  INSTALL_COMMAND ""
  TEST_COMMAND ""
  USES_TERMINAL_CONFIGURE TRUE
  USES_TERMINAL_BUILD TRUE)

file(WRITE ${CMAKE_BINARY_DIR}/asan-not-built.cmake
     "message(FATAL_ERROR \"The sanitizer lane has not been built yet: build the project "
     "first.\")\n")
file(WRITE ${_varnel_san_tests}
     "if(EXISTS \"${_varnel_san_dir}/CTestTestfile.cmake\")\n"
     "  subdirs(\"${_varnel_san_dir}\")\n"
     "else()\n"
     "  add_test(sanitizer_lane_not_built \"${CMAKE_COMMAND}\" -P\n"
     "           \"${CMAKE_BINARY_DIR}/asan-not-built.cmake\")\n"
     "endif()\n")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${_varnel_san_tests})
message(STATUS "Sanitizer lane: ${VARNEL_CLANGXX}; tests in ${_varnel_san_dir}")
