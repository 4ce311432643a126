// The identifiers that the toolchain's libraries define.

#include <gtest/gtest.h>

#include "platform/windows_api.h"

namespace {

TEST(Identifiers, ToolchainLibraries_WmiLocator_HasThePublishedGuids) {
    constexpr GUID locatorClass = {0x4590f811, 0x1d3a, 0x11d0, {0x89, 0x1f, 0, 0xaa, 0, 0x4b, 0x2e, 0x24}};
    constexpr GUID locator = {0xdc12a687, 0x737f, 0x11cf, {0x88, 0x4d, 0, 0xaa, 0, 0x4b, 0x2e, 0x24}};
    EXPECT_TRUE(IsEqualGUID(CLSID_WbemLocator, locatorClass));
    EXPECT_TRUE(IsEqualGUID(IID_IWbemLocator, locator));
}

}  // namespace
