# A folder below src/ is a static library of its own, so that the linker refuses what tools/check-includes refuses.

add_library(tavix_options INTERFACE)
target_compile_options(tavix_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# At -O3 GCC 12 sees an overlap in every "x" + std::string (its bug 105329).
target_compile_options(tavix_options INTERFACE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict>)
if(TAVIX_SANITIZE)
  target_compile_options(tavix_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                                -fno-omit-frame-pointer)
  # GCC 12 sees uninitialised members of std::optional where there are none once the sanitizers are on.
  target_compile_options(tavix_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(tavix_options INTERFACE -fsanitize=address,undefined)
endif()
if(TAVIX_FUZZ)
  # Clang's -Wconversion asks for more than GCC's, by which the code is written.
  target_compile_options(tavix_options INTERFACE -fsanitize=fuzzer-no-link -Wno-sign-conversion)
endif()
target_include_directories(tavix_options INTERFACE ${CMAKE_SOURCE_DIR}/src)

# tavix_library(base SOURCES a.cpp b.cpp DEPS fmt::fmt): the target tavix_base. A folder x/ui is named x_ui.
function(tavix_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;PRIVATE_DEPS" ${ARGN})
  set(target tavix_${folder})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC tavix_options ${ARG_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
endfunction()

# The same for a folder with widgets: moc runs, Qt headers are precompiled once and shared.
function(tavix_ui_library folder)
  tavix_library(${folder} ${ARGN})
  set(target tavix_${folder})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PUBLIC Qt6::Widgets)
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
  if(TAVIX_PCH)
    target_precompile_headers(${target} PRIVATE <QtWidgets>)
  endif()
endfunction()

# tavix_tests(base SOURCES a_test.cpp DEPS ...): the program tavix_base_tests, each test known to CTest.
function(tavix_tests folder)
  if(NOT TAVIX_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  set(target tavix_${folder}_tests)
  add_executable(${target} ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
  target_link_libraries(${target} PRIVATE tavix_${folder} ${ARG_DEPS} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE TAVIX_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  gtest_discover_tests(${target} TEST_PREFIX "${folder}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 120)
endfunction()

# Tests that start a database server: the program tavix_source_server_tests, one test to CTest, so that it starts once.
function(tavix_server_tests folder)
  if(NOT TAVIX_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  set(target tavix_${folder}_server_tests)
  add_executable(${target} ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
  target_link_libraries(${target} PRIVATE tavix_${folder} ${ARG_DEPS} tavix_test_support GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE TAVIX_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  add_test(NAME ${folder}.servers COMMAND ${target})
  set_tests_properties(${folder}.servers PROPERTIES TIMEOUT 300)
endfunction()

# Widget tests: their main makes a QApplication on the offscreen platform and fails a test on a Qt warning.
function(tavix_ui_tests folder)
  if(NOT TAVIX_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  set(target tavix_${folder}_tests)
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE tavix_${folder} ${ARG_DEPS} tavix_qt_test_main GTest::gmock GTest::gtest
                                          Qt6::Test)
  target_compile_definitions(${target} PRIVATE TAVIX_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  gtest_discover_tests(${target} TEST_PREFIX "${folder}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 120)
endfunction()

# tavix_fuzzer(filter condition_block SOURCES a.cpp): the program fuzz_condition_block over the folder's library. What it
# starts from lies in tests/corpus/condition_block, or in tests/corpus.
function(tavix_fuzzer folder name)
  if(NOT TAVIX_FUZZ)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_executable(fuzz_${name} ${ARG_SOURCES})
  set_target_properties(fuzz_${name} PROPERTIES AUTOMOC OFF)
  target_link_libraries(fuzz_${name} PRIVATE tavix_${folder})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  if(NOT TARGET fuzzers)
    add_custom_target(fuzzers)
  endif()
  add_dependencies(fuzzers fuzz_${name})
endfunction()
