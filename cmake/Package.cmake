# What is installed where, and the Debian package: `cpack` in the build tree, or scripts/package.
include(GNUInstallDirs)

set(documents ${CMAKE_INSTALL_DATADIR}/doc/ecu-console)
install(TARGETS ecu-console ecu-controller ecu-cli ecu-tour RUNTIME)
install(DIRECTORY packaging/session DESTINATION ${CMAKE_INSTALL_DATADIR}/ecu-console)
install(FILES packaging/desktop/ecu-console.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/desktop/ecu-console.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/desktop/ecu-console.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES packaging/copyright packaging/README.Debian DESTINATION ${documents})

# Debian wants pages and changelog packed, with nothing in them that differs from one build to the next.
find_program(ECU_GZIP gzip)
set(packed)
foreach(page ecu-console ecu-controller ecu-cli ecu-tour)
  list(APPEND packed "packaging/man/${page}.1|${page}.1.gz|${CMAKE_INSTALL_MANDIR}/man1")
endforeach()
list(APPEND packed "packaging/changelog|changelog.gz|${documents}")
foreach(entry ${packed})
  string(REPLACE "|" ";" parts ${entry})
  list(GET parts 0 source)
  list(GET parts 1 name)
  list(GET parts 2 folder)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/packed/${name}
                     COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packed
                     COMMAND ${ECU_GZIP} -9nc ${CMAKE_SOURCE_DIR}/${source} > ${CMAKE_BINARY_DIR}/packed/${name}
                     DEPENDS ${CMAKE_SOURCE_DIR}/${source} VERBATIM)
  list(APPEND packed_files ${CMAKE_BINARY_DIR}/packed/${name})
  install(FILES ${CMAKE_BINARY_DIR}/packed/${name} DESTINATION ${folder})
endforeach()
add_custom_target(ecu_packed ALL DEPENDS ${packed_files})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ecu-console)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The maintainers <maintainers@ecu-console.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "monitor and program an engine controller")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Live values, maps, configuration, whole calibrations to and from files, logs,
dyno runs and firmware, over a serial line from a laptop beside the engine.

A virtual engine is included, so that all of it can be tried with no hardware.")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libcap2-bin)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_SOURCE_DIR}/packaging/postinst)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
