# `cmake --build build/debug --target tidy` runs clang-tidy over all sources, `format-check` the formatting.
find_program(CLANG_TIDY_PROGRAM clang-tidy)
find_program(RUN_CLANG_TIDY_PROGRAM NAMES run-clang-tidy run-clang-tidy-14)
find_program(CLANG_FORMAT_PROGRAM clang-format)

if(RUN_CLANG_TIDY_PROGRAM)
  add_custom_target(tidy
    COMMAND ${RUN_CLANG_TIDY_PROGRAM} -quiet -p ${CMAKE_BINARY_DIR}
            "${CMAKE_SOURCE_DIR}/(skyleaf|host|demo/documents-server|tests|benchmarks)/.*\\.cpp"
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} USES_TERMINAL)
endif()

if(CLANG_FORMAT_PROGRAM)
  add_custom_target(format-check
    COMMAND git ls-files "*.cpp" "*.h" | xargs ${CLANG_FORMAT_PROGRAM} --dry-run --Werror
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM COMMAND_EXPAND_LISTS)
endif()
