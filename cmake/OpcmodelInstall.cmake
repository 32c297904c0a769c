# Installs libraries, headers, a CMake package and a pkg-config file.

include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY OPCMODEL_LIBRARIES)
install(TARGETS ${libraries} EXPORT opcmodelTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET opctool)
  install(TARGETS opctool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

foreach(folder include platform/core/include platform/network/include platform/crypto/include
               platform/certificates/include platform/codesigning_verifier/include
               physical/lenient/include physical/memory/include physical/zip/include
               inspection/include editing/include standard_signatures/include scanning/include)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN "*.hpp")
endforeach()
install(DIRECTORY "${CMAKE_BINARY_DIR}/generated/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/opcmodel)
install(EXPORT opcmodelTargets NAMESPACE opcmodel:: DESTINATION ${package_dir})
configure_package_config_file(cmake/opcmodelConfig.cmake.in "${CMAKE_BINARY_DIR}/opcmodelConfig.cmake"
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file("${CMAKE_BINARY_DIR}/opcmodelConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/opcmodelConfig.cmake" "${CMAKE_BINARY_DIR}/opcmodelConfigVersion.cmake"
  DESTINATION ${package_dir})

# Counted from the file's own folder: `cmake --install --prefix` puts it elsewhere.
file(RELATIVE_PATH OPCMODEL_PC_TO_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" OPCMODEL_PC_TO_PREFIX "${OPCMODEL_PC_TO_PREFIX}")
configure_file(cmake/opcmodel.pc.in "${CMAKE_BINARY_DIR}/opcmodel.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/opcmodel.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
