# What `cmake --install` puts beside the programs: the library, its headers, and how others find it;
# manual pages, and what shells complete.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/dravo)

install(TARGETS dravo EXPORT dravo-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/dravo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT dravo-targets NAMESPACE dravo:: DESTINATION ${package_folder})

configure_package_config_file(cmake/dravo-config.cmake.in dravo-config.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(dravo-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dravo-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/dravo-config-version.cmake DESTINATION ${package_folder})

# A static library names what it needs itself.
file(RELATIVE_PATH DRAVO_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
list(JOIN LAPACK_LIBRARIES " " DRAVO_PC_LIBRARIES)
string(APPEND DRAVO_PC_LIBRARIES " -lfmt -lnlopt -pthread")
configure_file(cmake/dravo.pc.in dravo.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dravo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  FILES_MATCHING PATTERN "dravo*.1")

# zsh looks into other folders below /usr/local than below /usr, where those of the system are.
set(completions ${PROJECT_BINARY_DIR}/completions)
set(zsh_folder site-functions)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(zsh_folder vendor-completions)
endif()
install(FILES ${completions}/dravo.bash RENAME dravo
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${completions}/_dravo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_folder})
