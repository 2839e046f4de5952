# vantle_shared_library(ARCHIVE EXPORT_NAME NAME EXPORT_HEADER FILE EXPORT_MACRO MACRO COMPONENT COMPONENT
#                       DESCRIPTION TEXT HEADERS... GENERATED_HEADERS... LIBS... PRIVATE_LIBS... PKG_CONFIG_REQUIRES...)
#
# The shared library that hosts link, VantlePresets::NAME, with an interface of the public headers alone; its
# installation as part of COMPONENT, and what CMake and pkg-config have to know of it. The library is
# made of the objects of the static library ARCHIVE, so that nothing is compiled twice. What belongs to this
# project and needs the library's inside (tests, benchmarks, command lines) links the archive; a program links
# archives or shared libraries, never both.
include(GenerateExportHeader)
include(GNUInstallDirs)

set(VANTLE_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/vantle")
set(VANTLE_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/VantlePresets")

function(vantle_shared_library archive)
  cmake_parse_arguments(arg "" "EXPORT_NAME;EXPORT_HEADER;EXPORT_MACRO;COMPONENT;DESCRIPTION"
                        "HEADERS;GENERATED_HEADERS;LIBS;PRIVATE_LIBS;PKG_CONFIG_REQUIRES" ${ARGN})
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
               INSTALL_RPATH "$ORIGIN"
               AUTOMOC OFF)
  target_compile_features(${shared} INTERFACE cxx_std_20)
  # Hosts need not have what only the inside links.
  list(TRANSFORM arg_PRIVATE_LIBS REPLACE "(.+)" "$<BUILD_INTERFACE:\\1>")
  target_link_libraries(${shared} PUBLIC ${arg_LIBS} PRIVATE ${arg_PRIVATE_LIBS})
  string(REPLACE "_EXPORT" "_NO_EXPORT" no_export_macro ${arg_EXPORT_MACRO})
  generate_export_header(
    ${shared} BASE_NAME ${archive} EXPORT_MACRO_NAME ${arg_EXPORT_MACRO} NO_EXPORT_MACRO_NAME ${no_export_macro}
    EXPORT_FILE_NAME "${generated}/${arg_EXPORT_HEADER}")
  list(TRANSFORM arg_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  list(TRANSFORM arg_GENERATED_HEADERS PREPEND "${generated}/")
  target_sources(
    ${shared}
    PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${arg_HEADERS}
    PUBLIC FILE_SET export_header TYPE HEADERS BASE_DIRS "${generated}" FILES "${generated}/${arg_EXPORT_HEADER}" ${arg_GENERATED_HEADERS})

  install(
    TARGETS ${shared}
    EXPORT VantlePresets${arg_EXPORT_NAME}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${arg_COMPONENT} NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION ${VANTLE_INSTALL_INCLUDEDIR} COMPONENT development
    FILE_SET export_header DESTINATION ${VANTLE_INSTALL_INCLUDEDIR} COMPONENT development)
  install(
    EXPORT VantlePresets${arg_EXPORT_NAME}
    NAMESPACE VantlePresets::
    FILE VantlePresets${arg_EXPORT_NAME}Targets.cmake
    DESTINATION ${VANTLE_INSTALL_CMAKEDIR}
    COMPONENT development)

  # Relative to the file itself, so that the installed tree can be moved.
  file(RELATIVE_PATH prefix "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
  string(REGEX REPLACE "/$" "" prefix "${prefix}")
  list(JOIN arg_PKG_CONFIG_REQUIRES ", " requires)
  set(library ${archive})
  set(description "${arg_DESCRIPTION}")
  configure_file("${PROJECT_SOURCE_DIR}/packaging/library.pc.in" "${generated}/${archive}.pc" @ONLY)
  install(
    FILES "${generated}/${archive}.pc"
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endfunction()
