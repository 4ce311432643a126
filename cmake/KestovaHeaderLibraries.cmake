# The two header-only libraries of the emulated PC and the tool: nlohmann-json and CLI11.

add_library(kestova_header_libraries INTERFACE)
if(WIN32)
  # They are beside the build machine's own headers, which must not be seen.
  set(headers ${CMAKE_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${headers})
  foreach(library CLI nlohmann)
    file(CREATE_LINK /usr/include/${library} ${headers}/${library} SYMBOLIC)
  endforeach()
  target_include_directories(kestova_header_libraries SYSTEM INTERFACE ${headers})
else()
  find_package(nlohmann_json REQUIRED)
  find_package(CLI11 REQUIRED)
  target_link_libraries(kestova_header_libraries INTERFACE nlohmann_json::nlohmann_json CLI11::CLI11)
endif()
