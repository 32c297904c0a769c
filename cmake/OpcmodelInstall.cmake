# Installs, in components: `runtime` (shared libraries), `development` (headers, CMake package, pkg-config files, static
# libraries), `tool` (opctool), `python` and `docs`.

include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY OPCMODEL_LIBRARIES)
install(TARGETS ${libraries} EXPORT opcmodelTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
set(components development)
if(BUILD_SHARED_LIBS)
  list(APPEND components runtime)
endif()
if(TARGET opctool)
  install(TARGETS opctool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  list(APPEND components tool)
endif()
foreach(component IN LISTS components) # each can be installed without the others
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/NOTICE"
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/${component} COMPONENT ${component})
endforeach()

if(OPCMODEL_DOCS)
  add_custom_target(reference ALL
    COMMAND "${PROJECT_SOURCE_DIR}/scripts/docs" "${CMAKE_BINARY_DIR}/reference"
    COMMENT "Making the API reference"
    VERBATIM)
  install(DIRECTORY "${CMAKE_BINARY_DIR}/reference/html" DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT docs)
  list(APPEND components docs)
endif()

foreach(folder include platform/core/include platform/network/include platform/crypto/include
               platform/certificates/include platform/codesigning_verifier/include
               physical/lenient/include physical/memory/include physical/zip/include
               inspection/include editing/include standard_signatures/include scanning/include)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development FILES_MATCHING PATTERN "*.hpp")
endforeach()
install(DIRECTORY "${CMAKE_BINARY_DIR}/generated/include/" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development)

# The CMake package. Its components are the names of the targets.
set(OPCMODEL_COMPONENTS "")
foreach(library IN LISTS libraries)
  get_target_property(name ${library} EXPORT_NAME)
  list(APPEND OPCMODEL_COMPONENTS ${name})
endforeach()
list(JOIN OPCMODEL_COMPONENTS " " OPCMODEL_COMPONENTS)
set(OPCMODEL_SHARED OFF)
if(BUILD_SHARED_LIBS)
  set(OPCMODEL_SHARED ON)
endif()
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/opcmodel)
install(EXPORT opcmodelTargets NAMESPACE opcmodel:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/opcmodelConfig.cmake.in "${CMAKE_BINARY_DIR}/opcmodelConfig.cmake"
  INSTALL_DESTINATION ${package_dir} NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/opcmodelConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_BINARY_DIR}/opcmodelConfig.cmake" "${CMAKE_BINARY_DIR}/opcmodelConfigVersion.cmake"
  DESTINATION ${package_dir} COMPONENT development)

# For pkg-config: `opcmodel`, and `opcmodel-xerces` for programs that use the classes with the name of Xerces. A program
# that links the static libraries links what these are built on. That isn't private: with `pkg-config --static` it would
# also get what shared libraries of others hide. A shared library hides what it is built on, so it asks for nothing.
set(OPCMODEL_PC_LIBS
  "-lopcmodel_editing -lopcmodel_scanning -lopcmodel_inspection -lopcmodel_lenient -lopcmodel_zip -lopcmodel_memory")
string(APPEND OPCMODEL_PC_LIBS
  " -lopcmodel_standard_signatures -lopcmodel -lopcmodel_crypto -lopcmodel_network -lopcmodel_core -pthread")
if(BUILD_SHARED_LIBS)
  set(OPCMODEL_PC_REQUIRES "")
  set(OPCMODEL_PC_XERCES_LIBS "Libs: -L\${libdir} -lopcmodel_xerces\n")
else()
  set(OPCMODEL_PC_REQUIRES "Requires: xerces-c zlib libdeflate libcrypto\n")
  set(OPCMODEL_PC_XERCES_LIBS "")
endif()
# Counted from the file's own folder: `cmake --install --prefix` puts it elsewhere.
file(RELATIVE_PATH OPCMODEL_PC_TO_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" OPCMODEL_PC_TO_PREFIX "${OPCMODEL_PC_TO_PREFIX}")
foreach(file opcmodel.pc opcmodel-xerces.pc)
  configure_file(cmake/${file}.in "${CMAKE_BINARY_DIR}/${file}" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/${file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

add_custom_target(uninstall
  COMMAND "${CMAKE_COMMAND}" "-DBUILD=${CMAKE_BINARY_DIR}" -P "${CMAKE_CURRENT_LIST_DIR}/OpcmodelUninstall.cmake"
  COMMENT "Removing what was installed"
  VERBATIM)
