# What `cmake --install` puts in place: headers, libraries, the command, and the ways to find them.
include(CMakePackageConfigHelpers)

install(TARGETS hearth_core hearth_all EXPORT hearth)
if(TARGET hearth_cli)
  install(TARGETS hearth_cli)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/hearth TYPE INCLUDE
  FILES_MATCHING PATTERN "*.h" PATTERN "*.inc" PATTERN "*_p.h" EXCLUDE)

set(hearth_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/hearth)
install(EXPORT hearth NAMESPACE hearth:: FILE hearthTargets.cmake DESTINATION ${hearth_package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/hearthConfig.cmake.in
  ${PROJECT_BINARY_DIR}/hearthConfig.cmake INSTALL_DESTINATION ${hearth_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/hearthConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/hearthConfig.cmake ${PROJECT_BINARY_DIR}/hearthConfigVersion.cmake
  DESTINATION ${hearth_package_dir})

# The prefix is told relative to the file, so that an installed tree may move.
set(hearth_pc_prefix ${CMAKE_INSTALL_PREFIX})
if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  file(RELATIVE_PATH hearth_pc_up /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" hearth_pc_up ${hearth_pc_up})
  set(hearth_pc_prefix "\${pcfiledir}/${hearth_pc_up}")
endif()
# Whoever links the archive links its packages too; behind the shared library they are nobody's business.
set(hearth_pc_private ".private")
set(hearth_pc_cflags "")
if(NOT BUILD_SHARED_LIBS)
  set(hearth_pc_private "")
  set(hearth_pc_cflags " -DHEARTH_STATIC")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/hearth.pc.in ${PROJECT_BINARY_DIR}/hearth.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/hearth.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
