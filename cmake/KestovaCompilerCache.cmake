# ccache, where it is installed. Paths below the source folder count relative to it, so that another checkout finds what
# this one has compiled; precompiled headers need the two leniencies.
find_program(KESTOVA_CCACHE ccache DOC "A compiler cache; optional")
if(KESTOVA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros ${KESTOVA_CCACHE})
endif()
