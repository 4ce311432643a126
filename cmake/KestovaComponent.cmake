# kestova_component(FOLDER [ROOMS FOLDER...] [USES FOLDER...]): the static library kestova_FOLDER of all sources in a
# folder and in those of its rooms that are named. Slashes in the folder's name become underscores in the target's.
function(kestova_component folder)
  cmake_parse_arguments(PARSE_ARGV 1 component "" "" "ROOMS;USES")
  string(REPLACE "/" "_" target kestova_${folder})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/${folder}/*.h)
  foreach(room IN LISTS component_ROOMS)
    file(GLOB room_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/${room}/*.cpp)
    list(APPEND sources ${room_sources})
  endforeach()
  add_library(${target} STATIC ${sources})
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${target} PUBLIC kestova_platform)
  if(folder STREQUAL base)
    kestova_precompiled(${target} ${KESTOVA_STANDARD_HEADERS} ${KESTOVA_PLATFORM_HEADERS})
  else()
    kestova_share_precompiled(${target} kestova_base)
  endif()
  foreach(used IN LISTS component_USES)
    string(REPLACE "/" "_" used kestova_${used})
    target_link_libraries(${target} PUBLIC ${used})
  endforeach()
endfunction()

# kestova_measured(TARGET...): with KESTOVA_COVERAGE the sources of these targets count which of their lines and branches
# run. Not the precompiled headers, so that the emulated PC is compiled as it is without. The build folder is named since
# the counts are found by it: a compiler cache must not give these objects to another checkout.
function(kestova_measured)
  if(NOT KESTOVA_COVERAGE)
    return()
  endif()
  foreach(target IN LISTS ARGN)
    get_target_property(sources ${target} SOURCES)
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS
      "-fprofile-instr-generate;-fcoverage-mapping;-fcoverage-compilation-dir=${CMAKE_BINARY_DIR}")
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
      target_link_options(${target} INTERFACE -fprofile-instr-generate)
    endif()
  endforeach()
endfunction()

# What a module gives back when it is unloaded, beyond what its own objects do.
function(kestova_unloadable target)
  if(MINGW)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/platform/mingw/unload.cpp)
  endif()
endfunction()

# The module binding is part of diag: the one with the framework, or the one without.
function(kestova_module_binding)
  if(NOT KESTOVA_FRAMEWORK)
    target_sources(kestova_diag PRIVATE ${CMAKE_SOURCE_DIR}/diag/module_binding/module_app.cpp)
    return()
  endif()
  if(NOT MSVC)
    message(FATAL_ERROR "KESTOVA_FRAMEWORK needs MSVC with MFC; this compiler is ${CMAKE_CXX_COMPILER}")
  endif()
  target_sources(kestova_diag PRIVATE ${CMAKE_SOURCE_DIR}/diag/framework_binding/module_app.cpp)
  # The framework's DLL, and a module entry of our own.
  target_compile_definitions(kestova_diag PRIVATE _AFXDLL _AFXEXT)
endfunction()

# Logging.dll, and its import library under the name that the product links.
function(kestova_logging_dll)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/logging/*.cpp ${CMAKE_SOURCE_DIR}/logging/windows/*.cpp)
  add_library(kestova_logging SHARED ${sources})
  set_target_properties(kestova_logging PROPERTIES OUTPUT_NAME Logging PREFIX "")
  target_compile_definitions(kestova_logging PRIVATE LOGGING_EXPORTS)
  target_link_libraries(kestova_logging PUBLIC kestova_platform)
  kestova_shipped(kestova_logging Logging.dll "Kestova's default logging library")
  kestova_guarded(kestova_logging)
  kestova_unloadable(kestova_logging)
endfunction()

# Kestova.dll: the product's folders in one module that exports the one class.
function(kestova_dll)
  target_compile_definitions(kestova_manager PRIVATE KESTOVA_EXPORTS)
  # The module's entry point must not be left to a library, where MSVC's runtime has one as well.
  add_library(Kestova SHARED $<TARGET_OBJECTS:kestova_manager> $<TARGET_OBJECTS:kestova_diag>)
  set_target_properties(Kestova PROPERTIES PREFIX "" LINKER_LANGUAGE CXX)
  target_link_libraries(Kestova PRIVATE kestova_vds kestova_device kestova_diag kestova_base kestova_logging
    PUBLIC kestova_platform)
  if(MINGW)
    target_link_libraries(Kestova PRIVATE kestova_runtime)
  endif()
  kestova_shipped(Kestova Kestova.dll "Recovery-partition management")
  kestova_unloadable(Kestova)
endfunction()
