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
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=*.debug=false"
    TIMEOUT 300)
endfunction()
