# What `cmake --install` puts in place: headers, libraries, the command, and the ways to find them.
include(CMakePackageConfigHelpers)

install(TARGETS hearth_core hearth_all EXPORT hearth)
if(HEARTH_NET)
  install(TARGETS hearth_net EXPORT hearth)
else()
  set(hearth_left_out PATTERN "platform" EXCLUDE)
endif()
if(TARGET hearth_cli)
  install(TARGETS hearth_cli)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/hearth TYPE INCLUDE
  FILES_MATCHING PATTERN "*.h" PATTERN "*.inc" PATTERN "*_p.h" EXCLUDE ${hearth_left_out})

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
set(hearth_pc_cflags "")
if(NOT BUILD_SHARED_LIBS)
  set(hearth_pc_cflags " -DHEARTH_STATIC")
endif()
# hearth_pc(NAME DESCRIPTION [LIBRARY name] [REQUIRES names...] [PRIVATE names...]): NAME.pc; the private packages
# are those that the library calls.
function(hearth_pc name hearth_pc_description)
  cmake_parse_arguments(PC "" "LIBRARY" "REQUIRES;PRIVATE" ${ARGN})
  set(hearth_pc_name ${name})
  set(hearth_pc_libs "")
  if(PC_LIBRARY)
    set(hearth_pc_libs "-L\${libdir} -l${PC_LIBRARY}")
  endif()
  list(JOIN PC_PRIVATE " " hearth_pc_packages)
  list(JOIN PC_REQUIRES " " hearth_pc_requires)
  if(NOT BUILD_SHARED_LIBS)
    string(STRIP "${hearth_pc_requires} ${hearth_pc_packages}" hearth_pc_requires)
    set(hearth_pc_packages "")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/hearth.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

hearth_pc(hearth-core "Texts, trees and their readers" LIBRARY hearth-core PRIVATE icu-uc icu-i18n zlib)
set(hearth_pc_all hearth-core)
if(HEARTH_NET)
  hearth_pc(hearth-net "The HTTP client" LIBRARY hearth-net REQUIRES hearth-core PRIVATE libcurl libssl libcrypto)
  list(PREPEND hearth_pc_all hearth-net)
endif()
hearth_pc(hearth "${PROJECT_DESCRIPTION}" REQUIRES ${hearth_pc_all})
