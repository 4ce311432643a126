# find_package(Kestova): the imported targets Kestova::Kestova and Kestova::Logging, for the word size and the compiler
# of the project that asks.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH kestova_folder)
cmake_path(GET kestova_folder PARENT_PATH kestova_folder)
cmake_path(GET kestova_folder PARENT_PATH kestova_folder)

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(kestova_word_size x64)
else()
  set(kestova_word_size x86)
endif()

set(Kestova_FOUND TRUE)
foreach(library Logging Kestova)
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
      INTERFACE_INCLUDE_DIRECTORIES ${kestova_folder}/include
      INTERFACE_COMPILE_DEFINITIONS "UNICODE;_UNICODE"
      INTERFACE_COMPILE_FEATURES cxx_std_20)
  endif()
endforeach()
set_property(TARGET Kestova::Kestova PROPERTY INTERFACE_LINK_LIBRARIES Kestova::Logging)
