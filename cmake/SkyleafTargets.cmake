# The settings that every target of the project shares, and helpers to declare targets.

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/archive")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime;CCACHE_BASEDIR=${CMAKE_SOURCE_DIR};CCACHE_NOHASHDIR=1;${CCACHE_PROGRAM}")
endif()

# Many test programs are linked: the quick linker where there is one.
find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM)
  add_link_options(-fuse-ld=lld)
endif()

# The strict interface: language standard, warnings, and the Qt macros that forbid silent conversions.
add_library(skyleaf_strict INTERFACE)
target_compile_features(skyleaf_strict INTERFACE cxx_std_17)
target_compile_options(skyleaf_strict INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  $<$<BOOL:${SKYLEAF_WARNINGS_AS_ERRORS}>:-Werror>
  -fpch-preprocess)
target_compile_definitions(skyleaf_strict INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH QT_NO_KEYWORDS
  QT_USE_QSTRINGBUILDER QT_STRICT_ITERATORS
  QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

if(SKYLEAF_SANITIZE_ADDRESS)
  target_compile_options(skyleaf_strict INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize=vptr)
  target_link_options(skyleaf_strict INTERFACE -fsanitize=address,undefined)
elseif(SKYLEAF_SANITIZE_THREAD)
  target_compile_options(skyleaf_strict INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(skyleaf_strict INTERFACE -fsanitize=thread)
endif()

# skyleaf_test(NAME name SOURCES files... LIBRARIES targets... [LABELS labels...] [NEEDS_DISPLAY])
# One executable per unit, named as the unit. Needs its own main only when it says so by listing no gtest main:
# link `skyleaf_test_main` (QApplication) or GTest::gtest_main through LIBRARIES.
function(skyleaf_test)
  cmake_parse_arguments(arg "" "NAME;TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE skyleaf_strict ${arg_LIBRARIES} GTest::gmock)
  add_test(NAME ${arg_NAME} COMMAND ${arg_NAME})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set_tests_properties(${arg_NAME} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "unit;${arg_LABELS}"
    ENVIRONMENT "QTWEBENGINE_DISABLE_SANDBOX=1;ASAN_OPTIONS=detect_leaks=0:abort_on_error=0;TSAN_OPTIONS=halt_on_error=1;UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
endfunction()
