# The Debian package, built by CPack from the install() rules below and from any other
# install() rule in the tree (the system helper installs its own files). Linux builds only.
#
#   cpack -G DEB --config <build>/CPackConfig.cmake
#
# Layout: the install folder is /usr/lib/varnel (binary and shipped files, as in the stage);
# /usr/bin/varnel points at it. The install folder is read-only there, so the program works in
# a per-user folder (see platform/linux/workingfolder.h).

include(GNUInstallDirs)
set(VARNEL_INSTALL_FOLDER lib/varnel)

install(TARGETS varnel RUNTIME DESTINATION ${VARNEL_INSTALL_FOLDER})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/dist/branding ${PROJECT_SOURCE_DIR}/dist/cpuprofiles
                  ${PROJECT_SOURCE_DIR}/dist/settings
        DESTINATION ${VARNEL_INSTALL_FOLDER}
        PATTERN src EXCLUDE)

set(varnel_launcher ${CMAKE_CURRENT_BINARY_DIR}/packaging/varnel)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packaging)
execute_process(COMMAND ${CMAKE_COMMAND} -E create_symlink ../lib/varnel/varnel
                        ${varnel_launcher})
install(FILES ${varnel_launcher} DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES ${PROJECT_SOURCE_DIR}/dist/linux/varnel.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/dist/branding/src/varnel_system_tray.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME varnel.svg)

# Debian wants the changelog compressed reproducibly (gzip -9n) beside the copyright file.
set(varnel_changelog ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(OUTPUT ${varnel_changelog}
  COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/dist/linux/changelog > ${varnel_changelog}
  DEPENDS ${PROJECT_SOURCE_DIR}/dist/linux/changelog VERBATIM)
add_custom_target(varnel_changelog ALL DEPENDS ${varnel_changelog})
install(FILES ${PROJECT_SOURCE_DIR}/dist/linux/copyright ${varnel_changelog}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/varnel)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME varnel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "TALVERON-PC")
set(CPACK_PACKAGE_CONTACT "TALVERON-PC Support <support@talveron-pc.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "control centre for gaming laptops")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "Varnel switches power modes, sets panel and external-monitor brightness and\n\
volume, switches the laptop's devices, shows GPU sensors and offers two small\n\
desktop widgets, from one window and a tray icon.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.talveron-pc.example/varnel")
set(CPACK_STRIP_FILES ON)
set(CPACK_OUTPUT_FILE_PREFIX ${CMAKE_BINARY_DIR}/package)
include(CPack)

# The package as a user gets it: built, installed, started, removed. Needs root (CI has it).
find_program(VARNEL_XVFB_RUN xvfb-run)
add_test(NAME e2e_debian_package
  COMMAND ${PROJECT_SOURCE_DIR}/tests/e2e/debian_package.sh ${CMAKE_BINARY_DIR})
set_tests_properties(e2e_debian_package PROPERTIES TIMEOUT 600 SKIP_RETURN_CODE 77
  RUN_SERIAL TRUE)
