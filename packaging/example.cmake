# The example as a project of its own:
#     cmake -S examples -B build -DCMAKE_PREFIX_PATH=<the folder of the package> && cmake --build build
cmake_minimum_required(VERSION 3.25)
project(Recovery LANGUAGES CXX)

find_package(Kestova REQUIRED)

add_executable(recovery recovery.cpp open_pc_real.cpp)
target_include_directories(recovery PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/..)
target_link_libraries(recovery PRIVATE Kestova::Kestova ole32)
if(MINGW)
  # The runtime of the compiler goes into the program.
  target_link_options(recovery PRIVATE -static)
endif()

# Windows finds the two libraries beside the program.
add_custom_command(TARGET recovery POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_RUNTIME_DLLS:recovery> $<TARGET_FILE_DIR:recovery> COMMAND_EXPAND_LISTS)
