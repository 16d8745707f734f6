# The house rules as CMake: one interface target carries standard, warnings and
# definitions; each folder is a library with an include root of its own, so that
# a header of a folder that is not linked is not found.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_AUTOMOC OFF)

find_program(HERBORA_CCACHE ccache)
if(HERBORA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers need this sloppiness for ccache to hit at all.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      ${HERBORA_CCACHE})
endif()

add_library(herbora_rules INTERFACE)
target_compile_definitions(herbora_rules INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_FOREACH QT_NO_JAVA_STYLE_ITERATORS QT_NO_KEYWORDS
  HERBORA_VERSION="${PROJECT_VERSION}")
target_compile_options(herbora_rules INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
if(CMAKE_UNITY_BUILD)
  # It warns of unnamed namespaces outside the file that is compiled, which is now the joined one.
  target_compile_options(herbora_rules INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
endif()
if(HERBORA_WERROR)
  target_compile_options(herbora_rules INTERFACE -Werror)
endif()
if(HERBORA_SANITIZE)
  target_compile_options(herbora_rules INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(herbora_rules INTERFACE -fsanitize=address,undefined)
endif()
find_program(HERBORA_MOLD mold)
find_program(HERBORA_LLD ld.lld)
if(HERBORA_MOLD)
  target_link_options(herbora_rules INTERFACE -fuse-ld=mold)
elseif(HERBORA_LLD)
  target_link_options(herbora_rules INTERFACE -fuse-ld=lld)
endif()

set(HERBORA_ROOTS "${CMAKE_BINARY_DIR}/roots")
set(HERBORA_PCH_CORE "${PROJECT_SOURCE_DIR}/cmake/pch_core.h")
set(HERBORA_PCH_WIDGETS "${PROJECT_SOURCE_DIR}/cmake/pch_widgets.h")

# _herbora_root(target folder): makes build/roots/<first part of folder> with a
# link to src/<first part>, and gives it to the target as its include root.
function(_herbora_root target folder)
  string(REGEX REPLACE "/.*" "" top "${folder}")
  file(MAKE_DIRECTORY "${HERBORA_ROOTS}/${top}")
  if(NOT EXISTS "${HERBORA_ROOTS}/${top}/${top}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${top}" "${HERBORA_ROOTS}/${top}/${top}" SYMBOLIC)
  endif()
  get_target_property(kind ${target} TYPE)
  if(kind STREQUAL "INTERFACE_LIBRARY")
    target_include_directories(${target} INTERFACE "${HERBORA_ROOTS}/${top}")
  else()
    target_include_directories(${target} PUBLIC "${HERBORA_ROOTS}/${top}")
  endif()
endfunction()

# Precompiling the same headers for every target costs more than a third of a full build. Full builds
# share one for all logic and one for all windows; a header touched in between makes all targets anew.
option(HERBORA_SHARED_PCH "Share the precompiled headers between targets" OFF)

# _herbora_pch(target core|widgets)
function(_herbora_pch target kind)
  string(TOUPPER "${kind}" upper)
  if(NOT HERBORA_SHARED_PCH)
    target_precompile_headers(${target} PRIVATE "${HERBORA_PCH_${upper}}")
    return()
  endif()
  set(shared herbora_pch_${kind})
  if(NOT TARGET ${shared})
    file(WRITE "${CMAKE_BINARY_DIR}/${shared}.cpp" "namespace {}\n")
    add_library(${shared} STATIC "${CMAKE_BINARY_DIR}/${shared}.cpp")
    target_link_libraries(${shared} PUBLIC herbora_rules Qt6::Core)
    if(kind STREQUAL "widgets")
      target_link_libraries(${shared} PUBLIC Qt6::Gui Qt6::Widgets)
    endif()
    target_precompile_headers(${shared} PRIVATE "${HERBORA_PCH_${upper}}")
  endif()
  target_precompile_headers(${target} REUSE_FROM ${shared})
endfunction()

# herbora_library(NAME folder SOURCES … USES …): a logic library. Qt Core (and
# Gui where GUI is given) but never Widgets.
function(herbora_library name folder)
  cmake_parse_arguments(A "WIDGETS;GUI;AUTOMOC" "" "SOURCES;USES;PRIVATE_USES" ${ARGN})
  add_library(${name} STATIC ${A_SOURCES})
  _herbora_root(${name} ${folder})
  target_link_libraries(${name} PUBLIC herbora_rules Qt6::Core ${A_USES} PRIVATE ${A_PRIVATE_USES})
  if(A_GUI OR A_WIDGETS)
    target_link_libraries(${name} PUBLIC Qt6::Gui)
  endif()
  if(A_WIDGETS)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
    _herbora_pch(${name} widgets)
  else()
    _herbora_pch(${name} core)
  endif()
  if(A_AUTOMOC OR A_WIDGETS)
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  endif()
endfunction()

# herbora_test(name SOURCES … USES …): one GoogleTest executable of a folder,
# registered as one CTest entry on the offscreen platform with a French locale.
function(herbora_test name)
  cmake_parse_arguments(A "WIDGETS" "TIMEOUT" "SOURCES;USES" ${ARGN})
  add_executable(${name} ${A_SOURCES})
  target_link_libraries(${name} PRIVATE herbora_rules herbora_test_support ${A_USES})
  if(A_WIDGETS)
    _herbora_pch(${name} widgets)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  else()
    _herbora_pch(${name} core)
  endif()
  if(NOT A_TIMEOUT)
    set(A_TIMEOUT 300)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${A_TIMEOUT} ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen;LANG=C.UTF-8;LC_ALL=C.UTF-8;QT_HASH_SEED=0;HERBORA_SOURCE=${PROJECT_SOURCE_DIR};HERBORA_BUILD=${CMAKE_BINARY_DIR}")
endfunction()
