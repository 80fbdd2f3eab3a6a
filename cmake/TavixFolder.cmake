# Each folder below src/ is a static library, so the linker also refuses what tools/check-includes refuses.

add_library(tavix_options INTERFACE)
target_compile_options(tavix_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# At -O3 GCC 12 reports an overlap in every "x" + std::string (GCC bug 105329).
target_compile_options(tavix_options INTERFACE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict>)
# By default GCC collects garbage from 128 MB on, so again and again: most of our files need 300 to 700 MB.
target_compile_options(tavix_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=524288>)
if(TAVIX_SANITIZE)
  target_compile_options(tavix_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined)
  target_link_options(tavix_options INTERFACE -fsanitize=address,undefined)
elseif(TAVIX_SANITIZE_THREADS)
  target_compile_options(tavix_options INTERFACE -fsanitize=thread)
  target_link_options(tavix_options INTERFACE -fsanitize=thread)
endif()
if(TAVIX_SANITIZE OR TAVIX_SANITIZE_THREADS)
  # With sanitizers, GCC 12 wrongly reports uninitialised members of std::optional.
  target_compile_options(tavix_options INTERFACE -fno-omit-frame-pointer
                                                $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
if(TAVIX_FUZZ)
  # Clang's -Wconversion is stricter than GCC's, which the code follows.
  target_compile_options(tavix_options INTERFACE -fsanitize=fuzzer-no-link -Wno-sign-conversion)
endif()
target_include_directories(tavix_options INTERFACE ${CMAKE_SOURCE_DIR}/src)

# tavix_library(base SOURCES a.cpp b.cpp DEPS fmt::fmt) defines the target tavix_base. A folder x/ui is named x_ui.
function(tavix_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;PRIVATE_DEPS" ${ARGN})
  set(target tavix_${folder})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC tavix_options ${ARG_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
  set_target_properties(${target} PROPERTIES AUTOMOC OFF)
endfunction()

# The same for a folder with widgets: runs moc; Qt headers are precompiled once, in base/ui.
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

# Tests take a third of the build and spend their run time in the code under test. So they are hardly optimised and use
# the precompiled headers of the library HEADERS. Only headers of the test framework and of Qt are precompiled: if an
# include of ours, of the C++ library or of fmt is missing, it remains an error.
function(tavix_build_fast target headers)
  target_compile_options(${target} PRIVATE $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:RelWithDebInfo>>:-Og>)
  if(TAVIX_PCH AND NOT target STREQUAL headers)
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
endfunction()

# tavix_test_program(tavix_walk_tests SOURCES a_test.cpp DEPS ... [QT]) defines a test program without adding it to
# CTest. With QT, its main creates a QApplication on the offscreen platform and fails tests on Qt warnings.
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

# tavix_tests(base SOURCES a_test.cpp DEPS ...) defines the program tavix_base_tests and adds each test to CTest.
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

# Tests that share a database server: the program tavix_source_server_tests, one test in CTest. The server starts once.
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

# The same as tavix_tests for widgets.
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

# tavix_fuzzer(filter condition_block SOURCES a.cpp) defines the program fuzz_condition_block over the folder's library.
# Its corpus is tests/corpus/condition_block or tests/corpus.
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
