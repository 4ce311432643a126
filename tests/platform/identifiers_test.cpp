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

TEST(Identifiers, ToolchainLibraries_WmiInterfaces_HaveThePublishedGuids) {
    constexpr GUID services = {0x9556dc99, 0x828c, 0x11cf, {0xa3, 0x7e, 0, 0xaa, 0, 0x32, 0x40, 0xc7}};
    constexpr GUID enumeration = {0x027947e1, 0xd731, 0x11ce, {0xa3, 0x57, 0, 0, 0, 0, 0, 0x01}};
    constexpr GUID object = {0xdc12a681, 0x737f, 0x11cf, {0x88, 0x4d, 0, 0xaa, 0, 0x4b, 0x2e, 0x24}};
    EXPECT_TRUE(IsEqualGUID(IID_IWbemServices, services));
    EXPECT_TRUE(IsEqualGUID(IID_IEnumWbemClassObject, enumeration));
    EXPECT_TRUE(IsEqualGUID(IID_IWbemClassObject, object));
}

}  // namespace
