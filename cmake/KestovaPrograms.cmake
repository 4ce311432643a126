# The programs that scripts and tests start, as packages.txt lists them.

# The only folder in which tests and scripts find programs: what the table does not list is missing everywhere alike.
set(KESTOVA_PROGRAMS ${CMAKE_BINARY_DIR}/programs)

# kestova_programs(GROUP...): looks for the groups' programs and links each into that folder.
function(kestova_programs)
  set(table ${CMAKE_SOURCE_DIR}/packages.txt)
  set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})
  file(STRINGS ${table} rows REGEX "^[a-z]")
  foreach(row IN LISTS rows)
    separate_arguments(words UNIX_COMMAND "${row}")
    list(POP_FRONT words group package)
    list(REMOVE_ITEM words "-")
    if(NOT group IN_LIST ARGN)
      continue()
    endif()
    foreach(program IN LISTS words)
      find_program(KESTOVA_PROGRAM_${program} ${program} PATHS /usr/bin /usr/sbin /bin /sbin NO_DEFAULT_PATH
        DOC "From the package ${package}")
      mark_as_advanced(KESTOVA_PROGRAM_${program})
      if(NOT KESTOVA_PROGRAM_${program})
        message(FATAL_ERROR "${program} is missing; install the package ${package}")
      endif()
      file(MAKE_DIRECTORY ${KESTOVA_PROGRAMS})
      file(CREATE_LINK ${KESTOVA_PROGRAM_${program}} ${KESTOVA_PROGRAMS}/${program} SYMBOLIC)
    endforeach()
  endforeach()
endfunction()
