# A folder below src/ is a static library of its own, so that the linker refuses what tools/check-includes refuses.

add_library(tavix_options INTERFACE)
target_compile_options(tavix_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# At -O3 GCC 12 sees an overlap in every "x" + std::string (its bug 105329).
target_compile_options(tavix_options INTERFACE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict>)
# GCC collects its garbage from 128 MB on, again and again in almost every file of ours, which need 300 to 700.
target_compile_options(tavix_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=524288>)
if(TAVIX_SANITIZE)
  target_compile_options(tavix_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined)
  target_link_options(tavix_options INTERFACE -fsanitize=address,undefined)
elseif(TAVIX_SANITIZE_THREADS)
  target_compile_options(tavix_options INTERFACE -fsanitize=thread)
  target_link_options(tavix_options INTERFACE -fsanitize=thread)
endif()
if(TAVIX_SANITIZE OR TAVIX_SANITIZE_THREADS)
  # GCC 12 sees uninitialised members of std::optional where there are none once the sanitizers are on.
  target_compile_options(tavix_options INTERFACE -fno-omit-frame-pointer
                                                $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
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

# The same for a folder with widgets: moc runs, Qt headers are precompiled once, in base/ui.
function(tavix_ui_library folder)
  tavix_library(${folder} ${ARGN})
  set(target tavix_${folder})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PUBLIC Qt6::Widgets)
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
  if(TAVIX_PCH AND target STREQUAL "tavix_base_ui")
    target_precompile_headers(${target} PRIVATE <QtWidgets>)
  elseif(TAVIX_PCH)
    target_precompile_headers(${target} REUSE_FROM tavix_base_ui)
  endif()
endfunction()

# Tests spend their time in what they test, and a third of the building is theirs: so they are hardly optimised, and read
# precompiled headers of the library HEADERS. Precompiled are the test framework's headers and Qt's, and none of ours, of
# the C++ library's or of fmt, so that a file that forgets one of those is found.
function(tavix_build_fast target headers)
  target_compile_options(${target} PRIVATE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:RelWithDebInfo>>:-Og>)
  if(TAVIX_PCH AND NOT target STREQUAL headers)
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
endfunction()

# tavix_test_program(tavix_walk_tests SOURCES a_test.cpp DEPS ... [QT]): a program of tests, not yet known to CTest. With
# QT it has widgets: its main makes a QApplication on the offscreen platform and fails a test on a Qt warning.
function(tavix_test_program target)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_DEPS} tavix_test_folder GTest::gmock)
  if(ARG_QT)
    target_link_libraries(${target} PRIVATE tavix_qt_test_main GTest::gtest)
    tavix_build_fast(${target} tavix_qt_test_main)
  else()
    set_target_properties(${target} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${target} PRIVATE GTest::gtest_main)
    tavix_build_fast(${target} tavix_test_folder)
  endif()
endfunction()

# tavix_tests(base SOURCES a_test.cpp DEPS ...): the program tavix_base_tests, each test known to CTest.
function(tavix_tests folder)
  if(NOT TAVIX_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  set(target tavix_${folder}_tests)
  tavix_test_program(${target} SOURCES ${ARG_SOURCES} DEPS tavix_${folder} ${ARG_DEPS})
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
  tavix_test_program(${target} SOURCES ${ARG_SOURCES} DEPS tavix_${folder} ${ARG_DEPS} tavix_test_support)
  add_test(NAME ${folder}.servers COMMAND ${target})
  set_tests_properties(${folder}.servers PROPERTIES TIMEOUT 300 COST 5)
endfunction()

# Widget tests.
function(tavix_ui_tests folder)
  if(NOT TAVIX_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  set(target tavix_${folder}_tests)
  tavix_test_program(${target} QT SOURCES ${ARG_SOURCES} DEPS tavix_${folder} ${ARG_DEPS})
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
