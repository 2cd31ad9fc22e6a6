# The sanitizer lane's own build (see SanitizerLane.cmake): the code that reads text from
# outside the program (tool output, the instance message, update answers, /sys text) and its
# unit tests under AddressSanitizer and UndefinedBehaviorSanitizer, and a libFuzzer harness
# per reader. Nothing else of the program is built here.
set(_varnel_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all
                       -fno-omit-frame-pointer)
add_compile_options(${_varnel_sanitizers})
add_link_options(${_varnel_sanitizers})

set(_root ${PROJECT_SOURCE_DIR})
add_library(varnel_readers STATIC
  ${_root}/app/instancekey.cpp
  ${_root}/cputuning/cpuidentification.cpp
  ${_root}/cputuning/tuningformat.cpp
  ${_root}/cputuning/tuningparsers.cpp
  ${_root}/monitoring/batteryreadings.cpp
  ${_root}/monitoring/usagefigures.cpp
  ${_root}/platform/linux/commandtable.cpp
  ${_root}/platform/linux/linuxbattery.cpp
  ${_root}/suite/versioncompare.cpp)
target_include_directories(varnel_readers PUBLIC ${_root}/app ${_root}/cputuning
                           ${_root}/monitoring ${_root}/suite ${_root}/platform
                           ${_root}/platform/linux)
target_link_libraries(varnel_readers PUBLIC Qt5::Core)

set(_environment "QT_QPA_PLATFORM=offscreen;UBSAN_OPTIONS=print_stacktrace=1")
foreach(test tests/suite/tst_versioncompare tests/monitoring/tst_usagefigures
             tests/cputuning/tst_tuningtext tests/shell/tst_instancekey
             tests/monitoring/tst_batteryreadings)
  get_filename_component(name ${test} NAME)
  add_executable(${name} ${_root}/${test}.cpp)
  target_link_libraries(${name} PRIVATE varnel_readers Qt5::Test)
  add_test(NAME sanitized_${name} COMMAND ${name})
  set_tests_properties(sanitized_${name} PROPERTIES ENVIRONMENT "${_environment}" TIMEOUT 120
                                                    LABELS sanitized)
endforeach()

# Each harness runs a few seconds from its seeds; what it finds new stays in the build folder.
set(VARNEL_FUZZ_SECONDS 4 CACHE STRING "Seconds each fuzz harness runs in the test run")
foreach(reader instancemessage tuningrows batterytext versionanswer cpunames)
  add_executable(fuzz_${reader} ${_root}/tests/fuzz/fuzz_${reader}.cpp)
  target_compile_options(fuzz_${reader} PRIVATE -fsanitize=fuzzer)
  target_link_options(fuzz_${reader} PRIVATE -fsanitize=fuzzer)
  target_include_directories(fuzz_${reader} PRIVATE ${_root}/tests/fuzz)
  target_link_libraries(fuzz_${reader} PRIVATE varnel_readers)
  set(corpus ${CMAKE_BINARY_DIR}/fuzz-corpus/${reader})
  file(MAKE_DIRECTORY ${corpus})
  add_test(NAME fuzz_${reader}
           COMMAND fuzz_${reader} -max_total_time=${VARNEL_FUZZ_SECONDS} -seed=1 -timeout=10
                   -rss_limit_mb=2048 -artifact_prefix=${CMAKE_BINARY_DIR}/fuzz-
                   ${corpus} ${_root}/tests/fuzz/seeds/${reader})
  set_tests_properties(fuzz_${reader} PROPERTIES ENVIRONMENT "${_environment}" TIMEOUT 120
                                                 LABELS "sanitized;fuzz")
endforeach()
