# Debian keeps manual pages and changelogs compressed, without names and dates.
file(GLOB_RECURSE documents "${CPACK_TEMPORARY_DIRECTORY}/*")
list(FILTER documents INCLUDE REGEX "/man1/[^/]+\\.1$|/changelog\\.Debian$")
foreach(document IN LISTS documents)
  execute_process(COMMAND gzip -9n "${document}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
