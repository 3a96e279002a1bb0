# What 'cmake --install' puts where. Components: program, vision, development, runtime, documentation; python/ adds its own.
# Installed files name each other by relative paths only, so that the whole prefix can be moved.
include(CMakePackageConfigHelpers)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/esttform)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/esttform)
set(runtime_dir ${CMAKE_INSTALL_DATADIR}/esttform/rt)

# ---- Program, host library, block
install(TARGETS esttform EXPORT esttformTargets RUNTIME COMPONENT program)
install(TARGETS blockhost EXPORT esttformTargets
  LIBRARY COMPONENT program NAMELINK_COMPONENT development)
install(TARGETS szelesttform LIBRARY DESTINATION ${ESTTFORM_MODULE_DIR} COMPONENT program)
install(FILES ${PROJECT_BINARY_DIR}/share/esttform.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${PROJECT_BINARY_DIR}/share/esttform.bash RENAME esttform
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
if(TARGET esttform_vision)
  install(TARGETS esttform_vision LIBRARY DESTINATION ${ESTTFORM_MODULE_DIR} COMPONENT vision)
endif()

# ---- Headers, for programs and for those who write blocks; the files of CMake and pkg-config
install(FILES blockhost/estimator.h blockhost/codegen.h DESTINATION ${header_dir} COMPONENT development)
install(DIRECTORY host/ DESTINATION ${header_dir}/host COMPONENT development FILES_MATCHING PATTERN "*.h")
install(TARGETS esttform_host_interface EXPORT esttformTargets)
install(EXPORT esttformTargets NAMESPACE esttform:: DESTINATION ${cmake_dir} COMPONENT development)

configure_package_config_file(cmake/esttformConfig.cmake.in ${PROJECT_BINARY_DIR}/install/esttformConfig.cmake
  INSTALL_DESTINATION ${cmake_dir} PATH_VARS runtime_dir)
# Before 1.0 each minor version may change what programs see.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/esttformConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/install/esttformConfig.cmake ${PROJECT_BINARY_DIR}/install/esttformConfigVersion.cmake
  DESTINATION ${cmake_dir} COMPONENT development)

file(RELATIVE_PATH pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_prefix ${pc_prefix})
configure_file(cmake/esttform.pc.in ${PROJECT_BINARY_DIR}/install/esttform.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/esttform.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# ---- Runtime of generated code
install(FILES ${ESTTFORM_RT_FILES} DESTINATION ${runtime_dir} COMPONENT runtime)

# ---- Documentation, in folders as here, so that the links between pages hold
install(FILES README.md CHANGELOG.md NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation
  REGEX "examples/CMakeLists.txt$" EXCLUDE)
