# Language, flags and where the output goes; the same for every target of the tree.
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# One library folder everywhere: programs and plug-ins find their libraries relative to themselves.
set(CMAKE_INSTALL_LIBDIR lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib;$ORIGIN")
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)

# Within a shared library calls may be inlined: nobody interposes single functions of ours.
add_compile_options(-fno-semantic-interposition)
add_link_options(-Wl,--as-needed)

if(VANTLE_SANITIZE)
  # The instrumented code of std::function and std::regex looks uninitialised to GCC's warning.
  add_compile_options(-fsanitize=${VANTLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
                      -Wno-maybe-uninitialized)
  # The sanitizer's dlopen() does not see the caller's RUNPATH; an RPATH of the program serves it.
  add_link_options(-fsanitize=${VANTLE_SANITIZE} -Wl,--disable-new-dtags)
else()
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,--no-undefined>)
endif()
if(VANTLE_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# GCC 12 sees overflows in std::string that are not there (its bugs 105329 and 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict> $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds>
                      $<$<COMPILE_LANGUAGE:CXX>:-Wno-stringop-overflow>)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT VANTLE_COVERAGE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${CCACHE_PROGRAM}")
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  else()
    # Lets ccache see which precompiled header a source used.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
  endif()
endif()

# The linker keeps this library although nothing calls it.
set(CMAKE_LINK_LIBRARY_USING_always_kept "LINKER:--push-state,--no-as-needed" "<LINK_ITEM>" "LINKER:--pop-state")
set(CMAKE_LINK_LIBRARY_USING_always_kept_SUPPORTED TRUE)
