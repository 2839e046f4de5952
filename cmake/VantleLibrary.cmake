# vantle_shared_library(ARCHIVE EXPORT_NAME NAME EXPORT_HEADER FILE EXPORT_MACRO MACRO
#                       HEADERS... LIBS... PRIVATE_LIBS...)
#
# The shared library that hosts link, VantlePresets::NAME, with an interface of the public headers alone. It is
# made of the objects of the static library ARCHIVE, so that nothing is compiled twice. What belongs to this
# project and needs the library's inside (tests, benchmarks, command lines) links the archive; a program links
# archives or shared libraries, never both.
include(GenerateExportHeader)

function(vantle_shared_library archive)
  cmake_parse_arguments(arg "" "EXPORT_NAME;EXPORT_HEADER;EXPORT_MACRO" "HEADERS;LIBS;PRIVATE_LIBS" ${ARGN})
  set(shared "${archive}Shared")
  set(generated "${PROJECT_BINARY_DIR}/generated")
  set_target_properties(
    ${archive} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(${archive} PUBLIC "${PROJECT_SOURCE_DIR}" "${generated}")

  add_library(${shared} SHARED $<TARGET_OBJECTS:${archive}>)
  add_library(VantlePresets::${arg_EXPORT_NAME} ALIAS ${shared})
  set_target_properties(
    ${shared}
    PROPERTIES OUTPUT_NAME ${archive}
               EXPORT_NAME ${arg_EXPORT_NAME}
               VERSION ${PROJECT_VERSION}
               SOVERSION ${VANTLE_SOVERSION}
               LINKER_LANGUAGE CXX
               AUTOMOC OFF)
  target_compile_features(${shared} INTERFACE cxx_std_20)
  target_link_libraries(${shared} PUBLIC ${arg_LIBS} PRIVATE ${arg_PRIVATE_LIBS})
  generate_export_header(
    ${shared} BASE_NAME ${archive} EXPORT_MACRO_NAME ${arg_EXPORT_MACRO} EXPORT_FILE_NAME
    "${generated}/${arg_EXPORT_HEADER}")
  list(TRANSFORM arg_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(
    ${shared}
    PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS}
    PUBLIC FILE_SET export_header TYPE HEADERS BASE_DIRS "${generated}" FILES "${generated}/${arg_EXPORT_HEADER}")
endfunction()
