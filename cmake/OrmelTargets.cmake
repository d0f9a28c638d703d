# Flags, libraries and tests of the whole project in one place.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(ORMEL_CCACHE ccache)
if(ORMEL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ORMEL_CCACHE}")
endif()

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

add_library(ormel_warnings INTERFACE)
target_compile_options(ormel_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>  # false alarms of GCC 12 on joined strings
  $<$<BOOL:${ORMEL_WERROR}>:-Werror>)

if(ORMEL_SANITIZE)
  add_compile_options(-fsanitize=${ORMEL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORMEL_SANITIZE})
endif()

# ormel_library(<name> SOURCES ... [LINK ...] [PRIVATE_LINK ...])
# A library of a folder of src/ or engine/: includes are written from src/ or engine/.
function(ormel_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR PARENT_PATH parent)
  target_include_directories(${name} PUBLIC "${parent}")
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE ormel_warnings ${ARG_PRIVATE_LINK})
endfunction()

# ormel_test(<name> SOURCES ... LINK ... [TIMEOUT seconds])
# One test program, one ctest entry, a temporary folder of its own per test (see tests/support).
function(ormel_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE ${ARG_LINK} ormel_warnings GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    ORMEL_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data"
    ORMEL_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    ORMEL_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()

# ormel_bench(<name> SOURCES ... LINK ...)
function(ormel_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} ormel_warnings benchmark::benchmark_main)
endfunction()
