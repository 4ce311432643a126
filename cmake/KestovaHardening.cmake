# What a program on Linux is built with, as the tool reads disk images of unknown origin as root: it may be placed
# anywhere (PIE), its tables of functions are read-only before it begins (RELRO, BIND_NOW), and overwritten stacks and
# buffers end it. Not the builds for tests: the sanitizers find more.

if(NOT WIN32 AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  add_compile_options(-fstack-protector-strong)
  add_link_options(-Wl,-z,relro -Wl,-z,now)
  # It needs an optimiser.
  add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
endif()
