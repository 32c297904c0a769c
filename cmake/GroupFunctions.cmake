# Renames the sections of the functions that first_open.txt lists, in OBJECTS, to what compilers call those of hot functions.
# scripts/first-open makes the list.

file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/first_open.txt" functions REGEX "^_Z")
list(TRANSFORM functions REPLACE "(.+)" "--rename-section;.text.\\1=.text.hot.\\1")
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND "${OBJCOPY}" --preserve-dates ${functions} "${object}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
