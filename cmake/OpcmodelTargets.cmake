# The flags that every target of the project shares, and the helpers that declare libraries and tests.

add_library(opcmodel_flags INTERFACE)
target_compile_options(opcmodel_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion)
# A parameter of a constructor has the name of the member that it initialises. Clang's -Wshadow lets it, GCC's doesn't.
# In a unity build Clang would also compare with what is local to other files.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(opcmodel_flags INTERFACE -Wshadow=local)
  if(CMAKE_UNITY_BUILD) # there a source is included, and GCC takes it for a header
    target_compile_options(opcmodel_flags INTERFACE -Wno-subobject-linkage)
  endif()
elseif(NOT CMAKE_UNITY_BUILD)
  target_compile_options(opcmodel_flags INTERFACE -Wshadow)
endif()
target_link_options(opcmodel_flags INTERFACE LINKER:--as-needed) # a library that isn't used isn't loaded
if(OPCMODEL_DEVELOPER)
  target_compile_options(opcmodel_flags INTERFACE -Werror)
endif()
if(NOT OPCMODEL_SANITIZE) # whose functions only a program has
  target_link_options(opcmodel_flags INTERFACE $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:-z,defs>)
endif()
if(OPCMODEL_SANITIZE)
  target_compile_options(opcmodel_flags INTERFACE
    -fsanitize=${OPCMODEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(opcmodel_flags INTERFACE -fsanitize=${OPCMODEL_SANITIZE})
endif()
if(OPCMODEL_COVERAGE)
  target_compile_options(opcmodel_flags INTERFACE --coverage -fprofile-update=atomic) # threads count, too
  target_link_options(opcmodel_flags INTERFACE --coverage)
endif()

# While the major version is 0, each minor version may break what was built for the one before.
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(OPCMODEL_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
else()
  set(OPCMODEL_SOVERSION ${PROJECT_VERSION_MAJOR})
endif()

# opcmodel_export_ours(TARGET)
#
# Templates of other libraries are visible whatever our flags say. This hides them in the shared library TARGET.
set(OPCMODEL_EXPORTED "${CMAKE_CURRENT_LIST_DIR}/exported.map")
include(CheckLinkerFlag)
check_linker_flag(CXX "LINKER:--version-script=${OPCMODEL_EXPORTED}" OPCMODEL_LINKER_HAS_VERSION_SCRIPTS)
function(opcmodel_export_ours target)
  if(OPCMODEL_LINKER_HAS_VERSION_SCRIPTS)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${OPCMODEL_EXPORTED}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${OPCMODEL_EXPORTED}")
  endif()
endfunction()

# opcmodel_group_functions(TARGET)
#
# The first open of a process waits until the code that it calls is in memory. So the functions that it calls, which first_open.txt
# lists, get sections by whose names linkers put them together. Builds for development do without, to link sooner, and objects
# for optimisation at link time don't have such sections yet.
set(OPCMODEL_GROUPS_FUNCTIONS OFF)
if(CMAKE_OBJCOPY AND CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang)$" AND NOT OPCMODEL_SANITIZE
   AND (NOT OPCMODEL_DEVELOPER OR CMAKE_BUILD_TYPE STREQUAL "Release")
   AND NOT CMAKE_INTERPROCEDURAL_OPTIMIZATION AND NOT CMAKE_CXX_FLAGS MATCHES "-flto")
  set(OPCMODEL_GROUPS_FUNCTIONS ON)
endif()
set(OPCMODEL_FUNCTION_GROUP "${CMAKE_CURRENT_LIST_DIR}")
function(opcmodel_group_functions target)
  if(OPCMODEL_GROUPS_FUNCTIONS)
    target_compile_options(${target} PRIVATE -ffunction-sections)
    add_custom_command(TARGET ${target} PRE_LINK
      COMMAND "${CMAKE_COMMAND}" "-DOBJCOPY=${CMAKE_OBJCOPY}" "-DOBJECTS=$<TARGET_OBJECTS:${target}>"
        -P "${OPCMODEL_FUNCTION_GROUP}/GroupFunctions.cmake"
      VERBATIM)
  endif()
endfunction()

# opcmodel_library(TARGET ALIAS EXPORT_HEADER MACRO_BASE)
#
# Declares the library TARGET, known as opcmodel::ALIAS, with a generated header that holds its export macro.
function(opcmodel_library target alias header base)
  include(GenerateExportHeader)
  add_library(${target})
  add_library(opcmodel::${alias} ALIAS ${target})
  generate_export_header(${target}
    BASE_NAME ${base}
    EXPORT_FILE_NAME "${CMAKE_BINARY_DIR}/generated/include/${header}")
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/generated/include>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:opcmodel_flags>)
  target_compile_features(${target} PUBLIC cxx_std_17)
  opcmodel_group_functions(${target})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${alias}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${OPCMODEL_SOVERSION})
  if(BUILD_SHARED_LIBS)
    opcmodel_export_ours(${target})
  else()
    string(TOUPPER ${base} upper)
    target_compile_definitions(${target} PUBLIC ${upper}_STATIC_DEFINE)
  endif()
  set_property(GLOBAL APPEND PROPERTY OPCMODEL_LIBRARIES ${target})
endfunction()

# opcmodel_module_sources(TARGET file...)
#
# Adds to TARGET sources that a program can also have in a module, which it loads. It then links a static library without
# them: the linker chooses file by file, so a unity build leaves each a file of its own.
function(opcmodel_module_sources target)
  target_sources(${target} PRIVATE ${ARGN})
  if(NOT BUILD_SHARED_LIBS)
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# opcmodel_test(NAME SOURCES file... LIBRARIES target...)
#
# One test program for each folder of the tests; ctest sees each of its cases.
function(opcmodel_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(test_${name} ${TEST_SOURCES})
  target_include_directories(test_${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests" "${PROJECT_SOURCE_DIR}/src")
  target_compile_definitions(test_${name} PRIVATE
    OPCMODEL_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(test_${name} PRIVATE opcmodel_flags ${TEST_LIBRARIES} opcmodel_cases GTest::gtest_main)
  gtest_discover_tests(test_${name} TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT ${OPCMODEL_TEST_LIMIT})
endfunction()
