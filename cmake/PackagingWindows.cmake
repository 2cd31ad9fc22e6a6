# The Windows program's own parts and its packaging: the GUI-subsystem varnel.exe with icon,
# manifest (administrator rights, per-monitor DPI, common controls 6) and version block; the Qt
# and mingw DLLs it loads staged beside it; install rules and a CPack NSIS setup program.
# Included by the root CMakeLists.txt for Windows builds only.
enable_language(RC)

set(VARNEL_RESOURCE_DIR ${PROJECT_SOURCE_DIR}/platform/win/resources)
configure_file(${VARNEL_RESOURCE_DIR}/varnel.rc.in ${CMAKE_BINARY_DIR}/varnel.rc @ONLY)
target_sources(varnel PRIVATE ${CMAKE_BINARY_DIR}/varnel.rc)
set_source_files_properties(${CMAKE_BINARY_DIR}/varnel.rc PROPERTIES
  OBJECT_DEPENDS "${VARNEL_RESOURCE_DIR}/varnel.ico;${VARNEL_RESOURCE_DIR}/varnel.manifest")
set_target_properties(varnel PROPERTIES WIN32_EXECUTABLE ON)

# What the program loads at run time: the Qt modules it links, the windows platform plugin, the
# style and image format plugins, and the mingw runtime the Qt DLLs were built against.
get_filename_component(VARNEL_QT_PREFIX "${Qt5_DIR}/../../.." ABSOLUTE)
set(VARNEL_QT_DLLS Qt5Core Qt5Gui Qt5Widgets Qt5Network)
set(VARNEL_RUNTIME_DLLS libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
set(VARNEL_QT_PLUGINS platforms/qwindows styles/qwindowsvistastyle imageformats/qgif
    imageformats/qico imageformats/qjpeg)
set(deploy_commands "")
foreach(dll IN LISTS VARNEL_QT_DLLS VARNEL_RUNTIME_DLLS)
  list(APPEND deploy_commands COMMAND ${CMAKE_COMMAND} -E copy_if_different
       ${VARNEL_QT_PREFIX}/bin/${dll}.dll ${VARNEL_STAGE_DIR}/)
endforeach()
foreach(plugin IN LISTS VARNEL_QT_PLUGINS)
  get_filename_component(plugin_dir ${plugin} DIRECTORY)
  list(APPEND deploy_commands
       COMMAND ${CMAKE_COMMAND} -E make_directory ${VARNEL_STAGE_DIR}/${plugin_dir}
       COMMAND ${CMAKE_COMMAND} -E copy_if_different ${VARNEL_QT_PREFIX}/plugins/${plugin}.dll
               ${VARNEL_STAGE_DIR}/${plugin_dir}/)
endforeach()
add_custom_target(stage_windows_runtime ALL ${deploy_commands}
                  COMMENT "Staging the Qt and mingw DLLs beside varnel.exe")
add_dependencies(varnel stage_windows_runtime)

# The install folder is the staged folder, as it is.
install(DIRECTORY ${VARNEL_STAGE_DIR}/ DESTINATION .)

set(CPACK_GENERATOR NSIS)
set(CPACK_PACKAGE_NAME Varnel)
set(CPACK_PACKAGE_VENDOR TALVERON-PC)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Varnel Control Center")
set(CPACK_PACKAGE_INSTALL_DIRECTORY Varnel)
set(CPACK_PACKAGE_INSTALL_REGISTRY_KEY Varnel)
set(VARNEL_INSTALLER_NAME Varnel-${PROJECT_VERSION}-setup)
set(CPACK_PACKAGE_FILE_NAME ${VARNEL_INSTALLER_NAME})
set(CPACK_PACKAGE_EXECUTABLES varnel "Varnel")
set(CPACK_NSIS_INSTALL_ROOT "$PROGRAMFILES64")
set(CPACK_NSIS_PACKAGE_NAME "Varnel")
set(CPACK_NSIS_DISPLAY_NAME "Varnel")
set(CPACK_NSIS_MUI_ICON ${VARNEL_RESOURCE_DIR}/varnel.ico)
set(CPACK_NSIS_MUI_UNIICON ${VARNEL_RESOURCE_DIR}/varnel.ico)
set(CPACK_NSIS_INSTALLED_ICON_NAME varnel.exe)
set(CPACK_NSIS_EXECUTABLES_DIRECTORY .)
set(CPACK_NSIS_MUI_FINISHPAGE_RUN varnel.exe)
# A 64-bit setup program for a 64-bit program (and for a Wine without 32-bit support).
set(CPACK_NSIS_DEFINES "Target amd64-unicode")
# CPack's NSIS script asks for administrator rights (RequestExecutionLevel admin) by itself:
# Program Files and the all-users Start menu need them.
include(CPack)

# The setup program is part of the build, so every test run installs what it just built.
find_program(VARNEL_MAKENSIS makensis)
set(VARNEL_INSTALLER ${CMAKE_BINARY_DIR}/${VARNEL_INSTALLER_NAME}.exe)
if(VARNEL_MAKENSIS)
  file(GLOB_RECURSE dist_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/dist/*)
  add_custom_command(
    OUTPUT ${VARNEL_INSTALLER}
    COMMAND ${CMAKE_CPACK_COMMAND} -G NSIS --config ${CMAKE_BINARY_DIR}/CPackConfig.cmake
    DEPENDS varnel stage_windows_runtime ${dist_files}
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
    COMMENT "Building the setup program ${VARNEL_INSTALLER_NAME}.exe")
  add_custom_target(windows_installer ALL DEPENDS ${VARNEL_INSTALLER})
else()
  message(WARNING "makensis (Debian package nsis) is missing: no setup program is built")
endif()
