# SPDX-License-Identifier: GPL-3.0-or-later
# Language level, warnings and Qt strictness shared by every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# Off for anyone building from source (a packager's newer compiler may warn where ours
# does not); the project's own scripts and CI turn it on.
option(TESSALOOM_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

# Applied to every target of ours through this interface library.
add_library(TessaloomCompileOptions INTERFACE)
target_compile_options(TessaloomCompileOptions INTERFACE -Wall -Wextra -Wpedantic)
if(TESSALOOM_WARNINGS_AS_ERRORS)
    target_compile_options(TessaloomCompileOptions INTERFACE -Werror)
endif()
target_compile_definitions(TessaloomCompileOptions INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_STRICT_ITERATORS
    QT_USE_QSTRINGBUILDER)
