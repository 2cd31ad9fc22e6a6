# The Windows lane: on a Linux host, cross-compile the whole program for Windows with mingw-w64
# against Qt for Windows and run its tests under Wine as part of this build's test run.
#
#   VARNEL_WINDOWS_LANE        build and test the lane (default ON)
#   VARNEL_WINDOWS_LANE_JOBS   parallel jobs of the lane's own build (default 2)
#
# The lane's tests need a Wine prefix; the wine_prefix_setup and wine_prefix_cleanup tests make
# a fresh one under the build folder for each test run and remove it afterwards.
if(WIN32 OR CMAKE_CROSSCOMPILING)
    # Built for Windows, the program and its tests come from the project itself.
    return()
endif()

option(VARNEL_WINDOWS_LANE "Cross-compile the Windows program and test it under Wine" ON)
set(VARNEL_WINDOWS_LANE_JOBS 2 CACHE STRING "Parallel jobs of the Windows lane's build")
if(NOT VARNEL_WINDOWS_LANE)
    message(STATUS "Windows lane: switched off (VARNEL_WINDOWS_LANE=OFF)")
    return()
endif()

enable_testing()
set(_varnel_lane_dir ${CMAKE_BINARY_DIR}/win-app)
set(_varnel_lane_prefix ${CMAKE_BINARY_DIR}/win-lane-wine)
set(_varnel_lane_tests ${CMAKE_BINARY_DIR}/win-lane-tests.cmake)

find_program(VARNEL_MINGW_CXX x86_64-w64-mingw32-g++-posix)
find_program(VARNEL_WINE wine)
if(NOT VARNEL_MINGW_CXX OR NOT VARNEL_WINE)
    set(_varnel_lane_missing "")
    if(NOT VARNEL_MINGW_CXX)
        string(APPEND _varnel_lane_missing
               " x86_64-w64-mingw32-g++-posix (g++-mingw-w64-x86-64-posix)")
    endif()
    if(NOT VARNEL_WINE)
        string(APPEND _varnel_lane_missing " wine (wine wine64)")
    endif()
    string(CONCAT _varnel_lane_message
           "Windows lane: missing${_varnel_lane_missing}. Install them, or configure with "
           "-DVARNEL_WINDOWS_LANE=OFF to leave the Windows backend untested.")
    message(WARNING ${_varnel_lane_message})
    # A failing test, so that a test run without the tools cannot look like a passing lane.
    file(WRITE ${CMAKE_BINARY_DIR}/win-lane-missing.cmake
         "message(FATAL_ERROR \"${_varnel_lane_message}\")\n")
    add_test(NAME windows_lane_missing
             COMMAND ${CMAKE_COMMAND} -P ${CMAKE_BINARY_DIR}/win-lane-missing.cmake)
    set_tests_properties(windows_lane_missing PROPERTIES LABELS windows)
    return()
endif()

# Qt for Windows comes from a cache outside the build folder (unpacked from the team's checked
# tarball, or built from source once), so a clean rebuild never provisions it again.
set(VARNEL_SHARED_TOOLCHAINS ${PROJECT_SOURCE_DIR}/../shared/toolchains CACHE PATH
    "Folder with the prebuilt Qt for Windows tarball and its SHA256SUMS")
execute_process(
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/provision-qt-windows.sh ${VARNEL_SHARED_TOOLCHAINS}
    OUTPUT_VARIABLE VARNEL_QT_WINDOWS_PREFIX OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE _varnel_qt_result)
if(NOT _varnel_qt_result EQUAL 0)
    message(FATAL_ERROR "Windows lane: Qt for Windows could not be provisioned "
                        "(scripts/provision-qt-windows.sh); -DVARNEL_WINDOWS_LANE=OFF skips the lane")
endif()

# The whole program, cross-compiled from this same project into <build>/win-app. The backend's
# own tests come with it, and every test joins this build's Wine prefix fixture.
include(ExternalProject)
set(_varnel_lane_args -DCMAKE_TOOLCHAIN_FILE=${CMAKE_CURRENT_LIST_DIR}/mingw-w64-posix.cmake
                      -DVARNEL_SHARED_RUNTIME=ON -DCMAKE_PREFIX_PATH=${VARNEL_QT_WINDOWS_PREFIX})
if(CMAKE_BUILD_TYPE)
    list(APPEND _varnel_lane_args -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE})
endif()
ExternalProject_Add(
    varnel_win_app
    SOURCE_DIR ${PROJECT_SOURCE_DIR}
    BINARY_DIR ${_varnel_lane_dir}
    PREFIX ${CMAKE_BINARY_DIR}/win-app-ep
    CMAKE_GENERATOR ${CMAKE_GENERATOR}
    CMAKE_ARGS ${_varnel_lane_args}
    CMAKE_CACHE_ARGS -DVARNEL_WINE_FIXTURE:STRING=wine_prefix
                     -DVARNEL_WINEPREFIX:PATH=${_varnel_lane_prefix}
    BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --parallel ${VARNEL_WINDOWS_LANE_JOBS}
    BUILD_ALWAYS TRUE
    INSTALL_COMMAND ""
    TEST_COMMAND ""
    USES_TERMINAL_CONFIGURE TRUE
    USES_TERMINAL_BUILD TRUE)

add_test(NAME wine_prefix_setup
         COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/wine-prefix.sh setup ${_varnel_lane_prefix})
add_test(NAME wine_prefix_cleanup
         COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/wine-prefix.sh cleanup ${_varnel_lane_prefix})
set_tests_properties(wine_prefix_setup PROPERTIES FIXTURES_SETUP wine_prefix TIMEOUT 180
                                                  LABELS windows)
set_tests_properties(wine_prefix_cleanup PROPERTIES FIXTURES_CLEANUP wine_prefix TIMEOUT 60
                                                    LABELS windows)

# The lane's tests live in its own build folder; CTest reads them from there. Until the lane
# has been built there is nothing to read, which must not pass as an empty lane.
file(WRITE ${CMAKE_BINARY_DIR}/win-lane-not-built.cmake
     "message(FATAL_ERROR \"The Windows lane has not been built yet: build the project first.\")\n")
file(WRITE ${_varnel_lane_tests}
     "if(EXISTS \"${_varnel_lane_dir}/CTestTestfile.cmake\")\n"
     "  subdirs(\"${_varnel_lane_dir}\")\n"
     "else()\n"
     "  add_test(windows_lane_not_built \"${CMAKE_COMMAND}\" -P\n"
     "           \"${CMAKE_BINARY_DIR}/win-lane-not-built.cmake\")\n"
     "  set_tests_properties(windows_lane_not_built PROPERTIES LABELS windows)\n"
     "endif()\n")
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${_varnel_lane_tests})
message(STATUS "Windows lane: ${VARNEL_MINGW_CXX} and ${VARNEL_WINE}; tests in ${_varnel_lane_dir}")
