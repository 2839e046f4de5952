# One interface target holds the language level, the warnings and Qt's strictness for every target here.
add_library(vantle_strict INTERFACE)
target_compile_features(vantle_strict INTERFACE cxx_std_20)
target_include_directories(vantle_strict INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(vantle_strict INTERFACE -Wall -Wextra -Wpedantic)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns of an overlap inside its own std::string when it inlines a concatenation at -O3.
  target_compile_options(vantle_strict INTERFACE -Wno-restrict)
endif()
if(VANTLE_WERROR)
  target_compile_options(vantle_strict INTERFACE -Werror)
endif()
target_compile_definitions(
  vantle_strict
  INTERFACE QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_CAST_FROM_BYTEARRAY
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_KEYWORDS
            QT_NO_FOREACH
            QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_USE_QSTRINGBUILDER)
