# Precompiled headers: the standard library and the platform. No header of ours is among them but for tests, so that a
# change of one compiles again what includes it and nothing else. The preset linux compiles without: g++ gains nothing
# by them there, and so notices a header that a source forgets to include.

set(KESTOVA_STANDARD_HEADERS <algorithm> <cstdint> <cstring> <functional> <map> <memory> <optional> <string> <string_view>
  <utility> <vector>)
set(KESTOVA_PLATFORM_HEADERS <platform/windows_api.h> <platform/vds.h>)

# kestova_precompiled(TARGET HEADER...): the target's own, which others share with kestova_share_precompiled.
function(kestova_precompiled target)
  target_precompile_headers(${target} PRIVATE ${ARGN})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # Without the time of each header the file depends on their contents alone, and a compiler cache can know it again.
    target_compile_options(${target} PRIVATE SHELL:-Xclang -fno-pch-timestamp)
  endif()
endfunction()

# kestova_share_precompiled(TARGET OWNER): for a target with the same options as the owner.
function(kestova_share_precompiled target owner)
  target_precompile_headers(${target} REUSE_FROM ${owner})
endfunction()
