# What the rooms' CMakeLists.txt are written with.

# vantle_glob(<out> [folder...]): the sources and headers below the folders (default: this one), sorted.
# Headers are listed so that moc sees classes that have no source of their own.
function(vantle_glob out)
  set(folders ${ARGN})
  if(NOT folders)
    set(folders .)
  endif()
  set(found)
  foreach(folder IN LISTS folders)
    cmake_path(ABSOLUTE_PATH folder NORMALIZE OUTPUT_VARIABLE folder)
    file(GLOB_RECURSE files CONFIGURE_DEPENDS "${folder}/*.cpp" "${folder}/*.h")
    list(APPEND found ${files})
  endforeach()
  set(sources ${found})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  if(NOT sources)
    set(found)
  endif()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# vantle_skip(<name>): says that a target has no sources yet.
function(vantle_skip name)
  message(STATUS "${name}: no sources yet, skipped")
endfunction()

set(pch_headers <algorithm> <array> <atomic> <charconv> <cmath> <cstdint> <cstring> <functional> <memory> <mutex>
    <string> <string_view> <unordered_map> <vector>)

function(vantle_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<BOOL:${VANTLE_WERROR}>:-Werror>)
endfunction()

# All targets with Qt share one precompiled header. The warnings are part of what must match.
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/generated/qt_pch.cpp" CONTENT "")
function(vantle_add_qt_pch)
  add_library(vantle_qt_pch OBJECT "${CMAKE_BINARY_DIR}/generated/qt_pch.cpp")
  vantle_warnings(vantle_qt_pch)
  target_link_libraries(vantle_qt_pch PRIVATE Qt6::Widgets Threads::Threads)
  target_precompile_headers(vantle_qt_pch PRIVATE ${pch_headers} <QtWidgets>)
endfunction()

# vantle_target(<target> [QT] [GTEST]): warnings, include root and precompiled header of an own target.
function(vantle_target target)
  cmake_parse_arguments(arg "QT;GTEST" "" "" ${ARGN})
  vantle_warnings(${target})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  if(arg_QT)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    target_precompile_headers(${target} REUSE_FROM vantle_qt_pch)
  elseif(arg_GTEST)
    target_precompile_headers(${target} PRIVATE ${pch_headers} <gtest/gtest.h>)
  else()
    target_precompile_headers(${target} PRIVATE ${pch_headers})
  endif()
endfunction()

# vantle_install_package(<target> [DEPENDS <package>...] [HEADERS <header>...]): installs a library, the headers of
# this folder (all, or the ones named) and a CMake package of the target's name.
function(vantle_install_package target)
  cmake_parse_arguments(arg "" "" "DEPENDS;HEADERS" ${ARGN})
  set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${target}")
  install(TARGETS ${target} EXPORT ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT ${target} NAMESPACE qor:: FILE ${target}-targets.cmake DESTINATION ${package_dir})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
  if(NOT arg_HEADERS)
    install(DIRECTORY . DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${room} FILES_MATCHING PATTERN "*.h")
  endif()
  foreach(header IN LISTS arg_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${header}" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${room}/${folder})
  endforeach()

  set(config "include(CMakeFindDependencyMacro)\n")
  foreach(package IN LISTS arg_DEPENDS)
    # Packages installed together lie beside each other.
    if(package MATCHES "^Qt6")
      string(APPEND config "find_dependency(Qt6 COMPONENTS Widgets OpenGLWidgets)\n")
    else()
      string(APPEND config "find_dependency(${package} HINTS \"\${CMAKE_CURRENT_LIST_DIR}/../${package}\")\n")
    endif()
  endforeach()
  string(APPEND config "include(\"\${CMAKE_CURRENT_LIST_DIR}/${target}-targets.cmake\")\n")
  set(config_file "${CMAKE_CURRENT_BINARY_DIR}/${target}-config.cmake")
  set(version_file "${CMAKE_CURRENT_BINARY_DIR}/${target}-config-version.cmake")
  file(CONFIGURE OUTPUT "${config_file}" CONTENT "${config}" @ONLY)
  include(CMakePackageConfigHelpers)
  write_basic_package_version_file("${version_file}" COMPATIBILITY SameMinorVersion)
  install(FILES "${config_file}" "${version_file}" DESTINATION ${package_dir})
endfunction()
