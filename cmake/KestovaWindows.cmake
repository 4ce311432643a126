# What every file that ships for Windows has: version information, the loader's protections, nothing of the toolchain
# beside it, no date of its build, and no larger than need be. The linker's map says what it has from where.

# The programs are beside their libraries, where Windows looks for them.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

if(MINGW)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-ffunction-sections> $<$<COMPILE_LANGUAGE:CXX>:-fdata-sections>)

  # In place of what the runtime would link to report an unhandled error on a console.
  add_library(kestova_runtime OBJECT ${CMAKE_SOURCE_DIR}/platform/mingw/runtime.cpp)
endif()

# kestova_shipped(TARGET FILE DESCRIPTION)
function(kestova_shipped target version_file version_description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(version_type VFT_APP)
  else()
    set(version_type VFT_DLL)
  endif()
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  if(MINGW)
    target_link_options(${target} PRIVATE -static -s -Wl,--gc-sections -Wl,--exclude-all-symbols -Wl,--dynamicbase
      -Wl,--nxcompat -Wl,--no-insert-timestamp -Wl,-Map=${CMAKE_BINARY_DIR}/${version_file}.map $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>:-Wl,--high-entropy-va>)
  elseif(MSVC)
    target_link_options(${target} PRIVATE /DYNAMICBASE /NXCOMPAT /guard:cf /CETCOMPAT
      $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},8>:/HIGHENTROPYVA>)
  endif()
endfunction()

# kestova_guarded(TARGET): a function whose part of the stack was overwritten ends the program. Not for Kestova.dll, which
# has to stay small.
function(kestova_guarded target)
  if(MINGW)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
      target_link_options(${target} INTERFACE -fstack-protector-strong)
    else()
      target_link_options(${target} PRIVATE -fstack-protector-strong)
    endif()
  endif()
endfunction()
