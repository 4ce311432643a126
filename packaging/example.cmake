# The examples as a project of their own:
#     cmake -S examples -B build -DCMAKE_PREFIX_PATH=<the folder of the package> && cmake --build build
cmake_minimum_required(VERSION 3.25)
project(Recovery LANGUAGES C CXX)

find_package(Kestova QUIET)
if(NOT Kestova_FOUND)
  # The class was built by another compiler.
  find_package(Kestova REQUIRED COMPONENTS KestovaC)
endif()

set(programs recovery-c)
add_executable(recovery-c recovery.c)
target_link_libraries(recovery-c PRIVATE Kestova::KestovaC)
if(TARGET Kestova::Kestova)
  list(APPEND programs recovery)
  add_executable(recovery recovery.cpp open_pc_real.cpp)
  target_include_directories(recovery PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/..)
  target_link_libraries(recovery PRIVATE Kestova::Kestova ole32)
endif()

foreach(program IN LISTS programs)
  if(MINGW)
    # The runtime of the compiler goes into the program.
    target_link_options(${program} PRIVATE -static)
  endif()
  # Windows finds the libraries beside the program.
  add_custom_command(TARGET ${program} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${Kestova_DLLS} $<TARGET_FILE_DIR:${program}>)
endforeach()
