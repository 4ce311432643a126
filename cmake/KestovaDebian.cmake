# The Debian package of the tool, which `./dev package deb` makes. Its pages of the manual and its completions come from the
# tool itself.
include(GNUInstallDirs)
include(KestovaLicence)
kestova_programs(system deb)

set(pages ${CMAKE_CURRENT_BINARY_DIR}/pages)
set(completions ${CMAKE_CURRENT_BINARY_DIR}/completions)
add_custom_command(OUTPUT ${pages}/kestova.1.gz
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${pages}
  COMMAND ${CMAKE_COMMAND} -E env PATH=${KESTOVA_PROGRAMS}
    ${CMAKE_CURRENT_SOURCE_DIR}/packaging/man-pages $<TARGET_FILE:kestova_tool> ${pages}
  DEPENDS kestova_tool packaging/man-pages
  COMMENT "Pages of the manual")
set(scripts)
foreach(shell bash zsh fish)
  add_custom_command(OUTPUT ${completions}/${shell}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${completions}
    COMMAND kestova_tool completion ${shell} >${completions}/${shell}
    DEPENDS kestova_tool
    COMMENT "Completion of ${shell}")
  list(APPEND scripts ${completions}/${shell})
endforeach()
add_custom_target(kestova_pages ALL DEPENDS ${pages}/kestova.1.gz ${scripts})

install(TARGETS kestova_tool RUNTIME DESTINATION bin)
install(DIRECTORY ${pages}/ DESTINATION share/man/man1)
install(FILES ${completions}/bash DESTINATION share/bash-completion/completions RENAME kestova)
install(FILES ${completions}/zsh DESTINATION share/zsh/vendor-completions RENAME _kestova)
install(FILES ${completions}/fish DESTINATION share/fish/vendor_completions.d RENAME kestova.fish)
# For applications and their tests: the library for C, which has described PCs behind it here, and what other languages have
# over it.
install(TARGETS KestovaC LIBRARY DESTINATION lib/${CMAKE_LIBRARY_ARCHITECTURE})
install(FILES kestova/kestova_c.h DESTINATION include/kestova)
install(FILES csharp/Kestova.cs csharp/Kestova.dll.config DESTINATION share/kestova/csharp)
install(DIRECTORY python/kestova DESTINATION lib/python3/dist-packages FILES_MATCHING PATTERN *.py PATTERN py.typed)
install(FILES examples/recovery.c examples/Recovery.cs examples/recovery.py DESTINATION share/doc/kestova/examples)
kestova_install_licence(share/doc/kestova)
install(FILES packaging/copyright CHANGELOG.md SECURITY.md THIRD-PARTY.md docs/command-line.md docs/operations.md docs/pc-description.md docs/log.md
  docs/hazards.md docs/recovery-partitions.md docs/real-pc.md docs/survey.md docs/csharp.md docs/result-codes.md
  DESTINATION share/doc/kestova)

set(CPACK_GENERATOR DEB)
set(CPACK_KESTOVA_DOCUMENT usr/share/doc/kestova/sbom.spdx.json)
set(CPACK_KESTOVA_LOADED "libhivex0, libnettle8, libnbd0, libewf2")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/describe.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/repack.cmake)
set(CPACK_PACKAGE_CONTACT "The developers of Kestova <kestova@localhost>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Shows what the partitions of a Windows PC are (recovery, Windows RE, EFI,
hibernation), which letters they have, and makes the PC boot its recovery
partition or Windows again: on disk images, virtual disks and disks of this
computer. What it changes is whole or not there, and can be taken back.
With the library for C, which has described PCs for the tests of
applications, and what C# and Python have over it.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded for registry hives and hashes.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libhivex0, libnettle8")
# They open virtual disks and E01 images; the program says which of them an image needs.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qemu-utils, libnbd0, libewf2")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
