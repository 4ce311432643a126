# Before cpack packs: the list of what the package has in it, in a form that other programs read. Every fourth word of
# the projects is a build folder.
list(LENGTH CPACK_INSTALL_CMAKE_PROJECTS words)
math(EXPR last "${words} - 1")
set(builds)
foreach(index RANGE 0 ${last} 4)
  list(GET CPACK_INSTALL_CMAKE_PROJECTS ${index} build)
  list(APPEND builds ${build})
endforeach()
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/spdx.py ${CPACK_PACKAGE_NAME} ${CPACK_PACKAGE_VERSION}
  ${CPACK_TEMPORARY_DIRECTORY} ${CPACK_KESTOVA_DOCUMENT} "${CPACK_KESTOVA_LOADED}" ${builds}
  COMMAND_ERROR_IS_FATAL ANY)
