# One Debian package for each component; cpack makes them from the preset "package".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The Vantle authors <vantle@orvalle.example>")
set(CPACK_PACKAGE_VENDOR "Orvalle")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
# Each package has a summary of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# For packages of hosts whose tools know no symbols files.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# So that a package's own libraries are found among the files of the others.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/CompressDocuments.cmake")
set(same_version "(= ${PROJECT_VERSION}-1)")

# vantle_package(COMPONENT NAME SECTION DEPENDS SUMMARY DESCRIPTION): every package has a copyright file and a
# changelog, and the reasons for what lintian finds in it.
function(vantle_package component name section depends summary description)
  string(TOUPPER ${component} key)
  foreach(
    setting
    "PACKAGE_NAME;${name}" "PACKAGE_SECTION;${section}" "PACKAGE_DEPENDS;${depends}"
    "DESCRIPTION;${summary}\n${description}")
    list(GET setting 0 variable)
    list(GET setting 1 value)
    set(CPACK_DEBIAN_${key}_${variable} "${value}" PARENT_SCOPE)
  endforeach()
  install(
    FILES "${PROJECT_SOURCE_DIR}/packaging/debian/copyright"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    COMPONENT ${component})
  install(
    FILES "${PROJECT_SOURCE_DIR}/packaging/debian/changelog"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    RENAME changelog.Debian
    COMPONENT ${component})
  set(overrides "${PROJECT_SOURCE_DIR}/packaging/debian/${name}/lintian-overrides")
  if(NOT EXISTS "${overrides}")
    set(overrides "${PROJECT_SOURCE_DIR}/packaging/debian/lintian-overrides")
  endif()
  install(
    FILES "${overrides}"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    RENAME ${name}
    COMPONENT ${component})
endfunction()

vantle_package(common vantlepresets-common misc "passwd" "live-streaming presets: the machine's presets folder"
               "The folder in which all users of a machine keep their presets, the group\nthat may, and the pictures.")
vantle_package(
  libraries libvantlepresets0 libs "vantlepresets-common ${same_version}" "live-streaming presets: libraries"
  "Presets with their video and audio settings, the store that keeps them, and\na folder watcher.")
vantle_package(
  check libvantlepresetscheck0 libs "libvantlepresets0 ${same_version}" "live-streaming presets: check before air"
  "Asks the server that a preset streams to whether it is there, and whether its\ncertificate is right.")
vantle_package(
  editor libvantlepresetseditor0 libs "libvantlepresets0 ${same_version}" "live-streaming presets: editor window"
  "The window in which users create and edit presets, for applications with Qt\nWidgets.")
vantle_package(
  development libvantlepresets-dev libdevel
  "libvantlepresets0 ${same_version}, libvantlepresetscheck0 ${same_version}, libvantlepresetseditor0 ${same_version}, qt6-base-dev"
  "live-streaming presets: development files"
  "Headers, and what CMake and pkg-config have to know, for applications that\nembed presets.")
vantle_package(
  tools vantle-tools video "libvantlepresets0 ${same_version}, libvantlepresetscheck0 ${same_version}" "live-streaming presets: command line"
  "The command line vantlectl, and vrxwatch, which tells what changes in a\nfolder. For machines without a desktop, too.")
vantle_package(
  program vantle video "libvantlepresetseditor0 ${same_version}" "live-streaming presets: editor"
  "The program in which users of a desktop create and edit presets: where a\nstream goes, its video renditions and its audio tracks. Video applications of\nthe same machine use them as soon as they are saved.")
vantle_package(
  python python3-vantle python "python3 (>= 3.10), vantle-tools ${same_version}"
  "live-streaming presets: module for Python"
  "The store of live-streaming presets for programs in Python, by way of\nthe helper vantlectl serve.")
set(CPACK_DEBIAN_COMMON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_COMMON_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/postinst"
                                              "${CMAKE_CURRENT_LIST_DIR}/debian/postrm")
# What packages of hosts depend on follows from the symbols that they use; packaging/symbols keeps the files.
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers"
                                                 "${CMAKE_CURRENT_LIST_DIR}/debian/libvantlepresets0/symbols")
set(CPACK_DEBIAN_CHECK_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers"
                                             "${CMAKE_CURRENT_LIST_DIR}/debian/libvantlepresetscheck0/symbols")
set(CPACK_DEBIAN_EDITOR_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/triggers"
                                              "${CMAKE_CURRENT_LIST_DIR}/debian/libvantlepresetseditor0/symbols")
# Without authorities no server's certificate is trusted.
set(CPACK_DEBIAN_CHECK_PACKAGE_RECOMMENDS "ca-certificates")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "ca-certificates, ffmpeg")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "obs-studio")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "qt6-wayland")
include(CPack)
