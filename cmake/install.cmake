# What `cmake --install` puts under the prefix: the library, the headers in
# include/kvtbase/, a CMake package and kvtbase.pc.
include(CMakePackageConfigHelpers)

install(TARGETS kvtbase EXPORT kvtbaseTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kvtbase
  FILES_MATCHING PATTERN "*.h")

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/kvtbase)
install(EXPORT kvtbaseTargets NAMESPACE kvtbase:: DESTINATION ${package})
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/kvtbaseConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  cmake/kvtbaseConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/kvtbaseConfigVersion.cmake
  DESTINATION ${package})

# kvtbase.pc finds the prefix from its own place, so that the installed tree can
# be moved; folders that were given as absolute paths stay where they are.
set(pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${pc_folder}")
  set(KVT_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  file(RELATIVE_PATH up "/${pc_folder}" "/")
  string(REGEX REPLACE "/$" "" up "${up}")
  set(KVT_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(folder LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(KVT_PC_${folder} "${CMAKE_INSTALL_${folder}}")
  else()
    set(KVT_PC_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
configure_file(cmake/kvtbase.pc.in kvtbase.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kvtbase.pc DESTINATION ${pc_folder})
