# Loading shared libraries, libstdc++ above all, takes a large part of the time of a short command.
# tavix_link_statically(tavix FOLDERS...) links all but libc and the ODBC driver manager statically. Changes nothing if
# the system lacks one of the static libraries. Not for programs with widgets: Qt brings the shared ICU.

option(TAVIX_STATIC_TOOL "Link the command line program with static libraries where the system has them" ON)

function(tavix_link_statically target)
  if(NOT TAVIX_STATIC_TOOL OR TAVIX_SANITIZE OR TAVIX_SANITIZE_THREADS OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    return()
  endif()
  set(archives)
  foreach(name IN ITEMS sqlite3 xxhash re2 yaml-cpp icuuc icudata z bz2 lzma zstd)
    find_library(TAVIX_STATIC_${name} lib${name}.a)
    mark_as_advanced(TAVIX_STATIC_${name})
    if(NOT TAVIX_STATIC_${name})
      message(STATUS "${target} is linked with shared libraries: lib${name}.a is missing")
      return()
    endif()
    list(APPEND archives ${TAVIX_STATIC_${name}})
  endforeach()
  add_library(tavix_static_fmt STATIC ${CMAKE_SOURCE_DIR}/cmake/StaticFmt.cpp)
  set_target_properties(tavix_static_fmt PROPERTIES AUTOMOC OFF)
  target_link_libraries(tavix_static_fmt PRIVATE fmt::fmt-header-only)
  target_compile_options(tavix_static_fmt PRIVATE -fkeep-inline-functions)
  list(APPEND archives tavix_static_fmt)
  # In one group with the folders' libraries, and thus before the shared libraries, which are then not needed.
  list(JOIN archives "," archives)
  target_link_libraries(${target} PRIVATE "$<LINK_GROUP:RESCAN,${ARGN},${archives}>")
  target_link_options(${target} PRIVATE -Wl,--as-needed -static-libgcc -static-libstdc++
                      # Database drivers use this SQLite: two copies of it in a process break its file locks.
                      "-Wl,--export-dynamic-symbol=sqlite3_*")
endfunction()
