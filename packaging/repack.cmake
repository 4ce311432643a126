# After cpack has packed: the same again in an order and with dates that depend on nothing but the sources.
# SOURCE_DATE_EPOCH is the date.
string(TIMESTAMP date "%Y-%m-%d %H:%M:%S UTC" UTC)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(CPACK_GENERATOR STREQUAL "DEB")
    set(content ${CPACK_TEMPORARY_DIRECTORY}.deb)
    file(REMOVE_RECURSE ${content})
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND find ${content} -exec touch --no-dereference --date "${date}" {} +
      COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${content} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  else()
    cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH above)
    file(GLOB_RECURSE files RELATIVE ${above} ${CPACK_TEMPORARY_DIRECTORY}/*)
    list(JOIN files "\n" lines)
    file(WRITE ${package}.list "${lines}\n")
    execute_process(COMMAND ${CMAKE_COMMAND} -E env TZ=UTC ${CMAKE_COMMAND} -E tar cf ${package} --format=zip
      --mtime=${date} --files-from=${package}.list WORKING_DIRECTORY ${above} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package}.list)
  endif()
endforeach()
