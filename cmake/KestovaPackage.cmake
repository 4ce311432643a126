# What an integrator receives: the install rules, and the zip that `./dev package` makes of both word sizes.
include(CMakePackageConfigHelpers)
include(KestovaLicence)

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(word_size x64)
else()
  set(word_size x86)
endif()

install(TARGETS Kestova KestovaC kestova_logging RUNTIME DESTINATION bin/${word_size} ARCHIVE DESTINATION lib/${word_size})
if(MINGW)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/c/KestovaC.def ${CMAKE_CURRENT_BINARY_DIR}/c/KestovaC.lib DESTINATION lib/${word_size})
endif()
if(KESTOVA_TOOL)
  install(TARGETS kestova_tool RUNTIME DESTINATION bin/${word_size})
endif()

install(FILES manager/kestova.h DESTINATION include/manager)
install(FILES logging/logging.h DESTINATION include/logging)
install(FILES kestova/kestova_c.h DESTINATION include/kestova)

write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/KestovaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES packaging/KestovaConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/KestovaConfigVersion.cmake
  DESTINATION lib/cmake/Kestova)

install(FILES examples/recovery.cpp examples/open_pc.h examples/open_pc_real.cpp DESTINATION examples)
install(FILES examples/recovery.c examples/recovery.py examples/Recovery.cs examples/Recovery.ps1 DESTINATION examples)
install(FILES csharp/Kestova.cs csharp/Kestova.dll.config DESTINATION csharp)
install(FILES powershell/Kestova/Kestova.psd1 powershell/Kestova/Kestova.psm1 DESTINATION powershell/Kestova)
install(FILES packaging/example.cmake DESTINATION examples RENAME CMakeLists.txt)
install(FILES docs/integrators.md docs/operations.md docs/result-codes.md docs/command-line.md docs/pc-description.md docs/log.md docs/hazards.md
  docs/recovery-partitions.md docs/real-pc.md docs/survey.md docs/csharp.md docs/powershell.md DESTINATION docs)
install(FILES packaging/README.md CHANGELOG.md SECURITY.md THIRD-PARTY.md DESTINATION .)
kestova_install_licence(.)

# The reference of the public headers, made once.
if(CMAKE_CROSSCOMPILING AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  kestova_programs(system windows)
  set(reference ${CMAKE_CURRENT_BINARY_DIR}/reference)
  set(headers manager/kestova.h logging/logging.h kestova/kestova_c.h)
  list(JOIN headers " " input)
  add_custom_command(OUTPUT ${reference}/html/index.html
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${reference}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${reference}
    COMMAND ${CMAKE_COMMAND} -E env PATH=${KESTOVA_PROGRAMS} KESTOVA_VERSION=${PROJECT_VERSION}
      KESTOVA_HEADERS=${input} KESTOVA_REFERENCE=${reference} doxygen packaging/Doxyfile
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
    DEPENDS ${headers} packaging/Doxyfile packaging/comments.awk
    COMMENT "Reference of the headers"
    VERBATIM)
  add_custom_target(kestova_reference ALL DEPENDS ${reference}/html/index.html)
  install(DIRECTORY ${reference}/html/ DESTINATION docs/reference)
endif()

# The notices are where the build machine's packages put them.
foreach(notice gcc=gcc-mingw-w64-base mingw-w64=mingw-w64-common CLI11=libcli11-dev nlohmann-json=nlohmann-json3-dev)
  string(REGEX MATCH "(.*)=(.*)" matched ${notice})
  install(FILES /usr/share/doc/${CMAKE_MATCH_2}/copyright DESTINATION licences RENAME ${CMAKE_MATCH_1}.txt OPTIONAL)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_KESTOVA_DOCUMENT sbom.spdx.json)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/describe.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/repack.cmake)
set(CPACK_PACKAGE_FILE_NAME Kestova-${PROJECT_VERSION}-windows)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
