# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
# How every target of Tarn is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(TARN_CCACHE ccache)
if(TARN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${TARN_CCACHE}")
endif()

add_library(tarn_options INTERFACE)
target_include_directories(tarn_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wcast-qual -Wformat=2 -Werror
  # Records are built by naming some of their fields; the others have their defaults, by definition.
  -Wno-missing-field-initializers)
target_compile_definitions(tarn_options INTERFACE QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)

if(TARN_SANITIZE)
  add_compile_options(-fsanitize=${TARN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARN_SANITIZE})
endif()

# tarn_module(NAME SOURCES ... USES ...): one static library per folder of src/; USES names the
# libraries that it builds on.
function(tarn_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${MODULE_SOURCES})
  target_link_libraries(${name} PUBLIC tarn_options ${MODULE_USES})
endfunction()
