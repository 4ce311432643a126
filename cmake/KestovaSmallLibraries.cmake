# kestova_small_library(PREFIX MODULE [REQUIRED]): makes PkgConfig::PREFIX of a library, and sets PREFIX_FOUND. What is
# used of it is a table or a function; in what ships that is linked in where the library has an archive, because loading
# the whole of it takes as long as the work of a short command.
function(kestova_small_library prefix module)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(${prefix} ${ARGN} IMPORTED_TARGET GLOBAL ${module})
  set(${prefix}_FOUND ${${prefix}_FOUND} PARENT_SCOPE)
  if(${prefix}_FOUND AND CMAKE_BUILD_TYPE STREQUAL "Release")
    list(GET ${prefix}_LIBRARIES 0 name)
    find_library(${prefix}_ARCHIVE ${CMAKE_STATIC_LIBRARY_PREFIX}${name}${CMAKE_STATIC_LIBRARY_SUFFIX})
    if(${prefix}_ARCHIVE)
      set_target_properties(PkgConfig::${prefix} PROPERTIES INTERFACE_LINK_LIBRARIES ${${prefix}_ARCHIVE})
    endif()
  endif()
endfunction()
