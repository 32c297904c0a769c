# opcmodel_embed_schemas(OUTPUT NAME=FILE...)
#
# Writes the C++ file OUTPUT, which defines for each pair the constant opc::model::schemas::NAME with the bytes of
# FILE. A changed file runs CMake again.
function(opcmodel_embed_schemas output)
  set(schema_arrays "")
  set(schema_constants "")
  foreach(pair ${ARGN})
    string(REPLACE "=" ";" pair "${pair}")
    list(GET pair 0 name)
    list(GET pair 1 file)
    get_filename_component(buffer_name "${file}" NAME)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" bytes HEX)
    string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
    string(APPEND schema_arrays "constexpr unsigned char ${name}_TEXT[] = {${bytes}};\n")
    string(APPEND schema_constants
      "const EmbeddedSchema ${name} = {\"${buffer_name}\", ${name}_TEXT, sizeof ${name}_TEXT};\n")
  endforeach()
  file(CONFIGURE OUTPUT "${output}" CONTENT [[
#include "xml/EmbeddedSchemas.hpp"

namespace opc::model::schemas {

namespace {
@schema_arrays@}

@schema_constants@
} // namespace opc::model::schemas
]] @ONLY)
endfunction()
