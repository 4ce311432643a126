# find_package(Kestova [COMPONENTS KestovaC]): the imported targets Kestova::Kestova, the class, with Kestova::Logging, and
# Kestova::KestovaC, the interface for C, for the word size and the compiler of the project that asks. The class is there for
# the compiler that built it only: an application made by another asks for the component KestovaC, and gets that alone.
# Kestova_DLLS: the files that each of them needs beside the program.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH kestova_folder)
cmake_path(GET kestova_folder PARENT_PATH kestova_folder)
cmake_path(GET kestova_folder PARENT_PATH kestova_folder)

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(kestova_word_size x64)
else()
  set(kestova_word_size x86)
endif()

set(Kestova_FOUND TRUE)
set(Kestova_DLLS)
foreach(library Logging Kestova KestovaC)
  list(APPEND Kestova_DLLS ${kestova_folder}/bin/${kestova_word_size}/${library}.dll)
endforeach()
set(kestova_libraries KestovaC)
if(NOT Kestova_FIND_COMPONENTS STREQUAL "KestovaC")
  list(APPEND kestova_libraries Logging Kestova)
endif()
foreach(library IN LISTS kestova_libraries)
  if(MSVC)
    set(kestova_import_library ${kestova_folder}/lib/${kestova_word_size}/${library}.lib)
  else()
    set(kestova_import_library ${kestova_folder}/lib/${kestova_word_size}/lib${library}.dll.a)
  endif()
  set(kestova_dll ${kestova_folder}/bin/${kestova_word_size}/${library}.dll)
  if(NOT EXISTS ${kestova_import_library} OR NOT EXISTS ${kestova_dll})
    set(Kestova_FOUND FALSE)
    string(CONCAT Kestova_NOT_FOUND_MESSAGE "This package has no ${library}.dll for this compiler and word size "
      "(${kestova_import_library}); docs/integrators.md says how to build one")
    return()
  endif()
  if(NOT TARGET Kestova::${library})
    add_library(Kestova::${library} SHARED IMPORTED)
    set_target_properties(Kestova::${library} PROPERTIES
      IMPORTED_LOCATION ${kestova_dll}
      IMPORTED_IMPLIB ${kestova_import_library}
      INTERFACE_INCLUDE_DIRECTORIES ${kestova_folder}/include)
  endif()
endforeach()
if(TARGET Kestova::Kestova)
  set_target_properties(Kestova::Kestova Kestova::Logging PROPERTIES
    INTERFACE_COMPILE_DEFINITIONS "UNICODE;_UNICODE"
    INTERFACE_COMPILE_FEATURES cxx_std_20)
  set_property(TARGET Kestova::Kestova PROPERTY INTERFACE_LINK_LIBRARIES Kestova::Logging)
endif()
