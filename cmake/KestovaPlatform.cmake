# What every source is compiled with: the platform's headers, wide text, and warnings as errors.

add_library(kestova_platform INTERFACE)
target_include_directories(kestova_platform INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(kestova_platform INTERFACE UNICODE _UNICODE NOMINMAX)

if(WIN32)
  target_link_libraries(kestova_platform INTERFACE ole32 oleaut32 wbemuuid setupapi shlwapi advapi32 uuid)
else()
  find_path(KESTOVA_WINE_HEADERS windows.h PATHS /usr/include/wine/wine/windows /usr/include/wine/windows
    NO_DEFAULT_PATH REQUIRED DOC "The Wine development headers (package libwine-dev)")
  target_include_directories(kestova_platform SYSTEM INTERFACE ${KESTOVA_WINE_HEADERS})
endif()

if(MSVC)
  # The class holds standard containers: an application is built by the same compiler.
  target_compile_options(kestova_platform INTERFACE /W4 /wd4251 /utf-8 /sdl /guard:cf)
  target_compile_definitions(kestova_platform INTERFACE _SILENCE_CXX17_CODECVT_HEADER_DEPRECATION_WARNING)
else()
  target_compile_options(kestova_platform INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Werror)
endif()

# Nothing but assertions; it fails to compile where the platform's records are laid out otherwise.
add_library(kestova_layout_checks OBJECT ${CMAKE_SOURCE_DIR}/platform/layout_checks.cpp)
target_link_libraries(kestova_layout_checks PRIVATE kestova_platform)
if(NOT MSVC)
  # The same for the slots of methods, which the optimiser works out.
  target_sources(kestova_layout_checks PRIVATE ${CMAKE_SOURCE_DIR}/platform/slot_checks.cpp)
  set_property(SOURCE ${CMAKE_SOURCE_DIR}/platform/slot_checks.cpp PROPERTY COMPILE_OPTIONS -O2)
endif()
