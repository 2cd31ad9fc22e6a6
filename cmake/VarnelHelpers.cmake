# A subsystem library from the sources of its folder; header-only until it has sources.
function(varnel_subsystem target)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(sources)
    add_library(${target} STATIC ${sources} ${headers})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC Qt5::Widgets Qt5::Network varnel_platform
                          varnel_settings varnel_form ${ARGN})
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} INTERFACE Qt5::Widgets Qt5::Network varnel_platform
                          varnel_settings varnel_form ${ARGN})
  endif()
endfunction()

# One QtTest executable per test source, run headless.
function(varnel_unit_test source)
  get_filename_component(name ${source} NAME_WE)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE varnel_testsupport ${ARGN})
  add_test(NAME ${name} COMMAND ${name})
  # QtTest always runs initTestCase and cleanupTestCase: a program whose cases are not slots
  # (declared under a private helper, say) would pass with those two alone.
  set_tests_properties(${name} PROPERTIES
    FAIL_REGULAR_EXPRESSION "Totals: 2 passed, 0 failed, 0 skipped")
  if(WIN32 AND CMAKE_CROSSCOMPILING)
    varnel_wine_test(${name})
  else()
    set_tests_properties(${name} PROPERTIES
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=*.debug=false"
      TIMEOUT 300)
  endif()
endfunction()

# A Qt program of the Windows build, run under Wine (the toolchain's emulator) in the shared
# prefix, headless. Wine hands WINEQT_X to the program as QT_X and drops QT_X itself; without a
# console, Qt would log (test results included) only to the debugger.
function(varnel_wine_test name)
  get_filename_component(qt_bin "${Qt5_DIR}/../../../bin" ABSOLUTE)
  string(REPLACE "/" "\\" qt_bin "Z:${qt_bin}")
  set(fixture ${VARNEL_WINE_FIXTURE})
  set(prefix ${VARNEL_WINEPREFIX})
  if(NOT fixture)
    # Built on its own, the Windows build owns the prefix (platform/win makes the fixture).
    set(fixture wine_prefix)
    set(prefix ${CMAKE_BINARY_DIR}/wine-prefix)
  endif()
  set_tests_properties(${name} PROPERTIES
    LABELS windows
    FIXTURES_REQUIRED ${fixture}
    TIMEOUT 315
    ENVIRONMENT "VARNEL_WINEPREFIX=${prefix};VARNEL_WINE_TIMEOUT=300;WINEPATH=${qt_bin};WINEQT_QPA_PLATFORM=offscreen;WINEQT_QPA_FONTDIR=Z:\\usr\\share\\fonts\\truetype\\dejavu;WINEQT_FORCE_STDERR_LOGGING=1;WINEQT_LOGGING_RULES=*.debug=false")
endfunction()
