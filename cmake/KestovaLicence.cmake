# The terms of Kestova itself, which only its owner can choose. Both packages have the file as LICENCE.txt.
set(KESTOVA_LICENCE "" CACHE FILEPATH "The owner's licence; without one the packages say that none is chosen yet")

# kestova_install_licence(FOLDER)
function(kestova_install_licence folder)
  set(licence ${CMAKE_SOURCE_DIR}/packaging/no-licence.txt)
  if(KESTOVA_LICENCE)
    cmake_path(ABSOLUTE_PATH KESTOVA_LICENCE BASE_DIRECTORY ${CMAKE_SOURCE_DIR} OUTPUT_VARIABLE licence)
    if(NOT EXISTS ${licence})
      message(FATAL_ERROR "KESTOVA_LICENCE: there is no file ${licence}")
    endif()
  endif()
  install(FILES ${licence} DESTINATION ${folder} RENAME LICENCE.txt)
endfunction()
