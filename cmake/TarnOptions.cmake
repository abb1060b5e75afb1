# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# The compiler and linker options of all targets, and functions that define targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# ccache: clones in different folders share results (CCACHE_BASEDIR, CCACHE_NOHASHDIR). It caches files that use a
# precompiled header only with pch_defines and time_macros (manual of ccache, "Precompiled headers").
find_program(TARN_CCACHE ccache)
if(TARN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${TARN_CCACHE}")
endif()

add_library(tarn_options INTERFACE)
target_include_directories(tarn_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wcast-qual -Wformat=2
  # Designated initialisers may leave out fields, which then have their defaults.
  -Wno-missing-field-initializers)
if(TARN_WARNINGS_AS_ERRORS)
  target_compile_options(tarn_options INTERFACE -Werror)
endif()
target_compile_definitions(tarn_options INTERFACE QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)

if(TARN_SANITIZE)
  add_compile_options(-fsanitize=${TARN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARN_SANITIZE})
endif()

if(TARN_PRECOMPILE_HEADERS)
  # Qt's targets set -fPIC. GCC does not use a precompiled header that was built without it.
  add_compile_options(-fPIC)
endif()

if(TARN_FAST_LINKER)
  find_program(TARN_MOLD mold)
  if(TARN_MOLD)
    add_link_options(-fuse-ld=mold)
  endif()
endif()

# tarn_precompile(TARGET HEADER): compiles a target with the precompiled header cmake/pch/HEADER.hpp, which is built
# once for all targets. The release build does not use it, and so fails if a file does not include what it needs.
function(tarn_precompile target header)
  if(NOT TARN_PRECOMPILE_HEADERS)
    return()
  endif()
  if(NOT TARGET tarn_pch_${header})
    add_library(tarn_pch_${header} STATIC "${PROJECT_SOURCE_DIR}/cmake/pch/empty.cpp")
    target_link_libraries(tarn_pch_${header} PRIVATE tarn_options)
    if(header MATCHES qt)
      target_link_libraries(tarn_pch_${header} PRIVATE Qt6::Core Qt6::Gui Qt6::Widgets)
    endif()
    if(header MATCHES test)
      target_link_libraries(tarn_pch_${header} PRIVATE GTest::gmock)
      target_compile_options(tarn_pch_${header} PRIVATE ${TARN_TEST_COMPILE_OPTIONS})
    endif()
    set_target_properties(tarn_pch_${header} PROPERTIES AUTOMOC OFF)
    target_precompile_headers(tarn_pch_${header} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/pch/${header}.hpp")
  endif()
  target_precompile_headers(${target} REUSE_FROM tarn_pch_${header})
endfunction()

# tarn_module(NAME SOURCES ... USES ...): defines the static library of a folder of src/. USES names the libraries that
# it links.
function(tarn_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${MODULE_SOURCES})
  target_link_libraries(${name} PUBLIC tarn_options ${MODULE_USES})
  if(MODULE_USES MATCHES "Qt6::Widgets|tarn_ui")
    tarn_precompile(${name} qt)
  else()
    tarn_precompile(${name} core)
  endif()
endfunction()
