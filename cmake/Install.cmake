# What other projects need to find the libraries: the CMake package and the pkg-config files. Neither names the folder
# that it is installed to, so that the installed tree can be moved.
include(CMakePackageConfigHelpers)

set(cmake_package ${CMAKE_INSTALL_LIBDIR}/cmake/mifreader)
install(EXPORT mifreaderTargets FILE mifreaderConfig.cmake NAMESPACE mifreader:: DESTINATION ${cmake_package}
  COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/mifreaderConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mifreaderConfigVersion.cmake DESTINATION ${cmake_package} COMPONENT development)

set(pkgconfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr") # stays where it is, and pkg-config leaves its folders out
  set(pc_prefix /usr)
else()
  file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  string(PREPEND pc_prefix "\${pcfiledir}/")
endif()
file(RELATIVE_PATH pc_libdir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH pc_includedir ${CMAKE_INSTALL_PREFIX} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
list(TRANSFORM CMAKE_DL_LIBS PREPEND -l OUTPUT_VARIABLE pc_dl)
foreach(name mifreader mifhost)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig} COMPONENT development)
endforeach()

# What users of the program read beside its manual page.
if(MIFREADER_BUILD_TOOLS)
  set(doc ${CMAKE_INSTALL_DATAROOTDIR}/doc/mifread)
  install(FILES docs/token-stream.md DESTINATION ${doc} COMPONENT program)
  install(DIRECTORY examples/batch DESTINATION ${doc}/examples COMPONENT program USE_SOURCE_PERMISSIONS)
endif()
