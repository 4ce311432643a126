#include "machine/api/wmi/path.h"

#include <gtest/gtest.h>

using machine::NamespaceOf;
using machine::ReadWmiPath;

TEST(NamespacePath, WithMachineName_DropsTheMachine) {
    EXPECT_EQ(NamespaceOf("\\\\.\\root\\CIMV2"), "root\\CIMV2");
    EXPECT_EQ(NamespaceOf("\\\\PC1\\root\\cimv2\\Security"), "root\\cimv2\\Security");
    EXPECT_EQ(NamespaceOf("root\\CIMV2"), "root\\CIMV2");
    EXPECT_EQ(NamespaceOf("//./root/CIMV2"), "root\\CIMV2");
}

TEST(NamespacePath, MalformedPath_IsRefused) {
    for (const char* path : {"", "\\", "\\\\", "\\\\.", "\\\\.\\", "\\\\\\root", "\\root", "root\\"})
        EXPECT_EQ(NamespaceOf(path), std::nullopt) << path;
}

TEST(ObjectPath, Class_IsItsName) {
    const auto path = ReadWmiPath("Win32_DiskDrive");
    ASSERT_TRUE(path);
    EXPECT_EQ(path->className, "Win32_DiskDrive");
    EXPECT_EQ(path->space, "");
    EXPECT_EQ(path->value, std::nullopt);
    EXPECT_FALSE(path->Names(""));
}

TEST(ObjectPath, Instance_HasItsKeyInEitherQuotes) {
    const auto raw = ReadWmiPath("\\\\.\\root\\CIMV2\\Security:Win32_Volume.DeviceID='\\\\?\\Volume{1}\\'");
    ASSERT_TRUE(raw);
    EXPECT_EQ(raw->space, "root\\CIMV2\\Security");
    EXPECT_EQ(raw->className, "Win32_Volume");
    EXPECT_EQ(raw->key, "DeviceID");
    EXPECT_TRUE(raw->Names("\\\\?\\volume{1}\\"));
    EXPECT_FALSE(raw->Names("\\\\?\\Volume{2}\\"));
    const auto doubled = ReadWmiPath("Win32_Volume.DeviceID=\"\\\\\\\\?\\\\Volume{1}\\\\\"");
    ASSERT_TRUE(doubled);
    EXPECT_TRUE(doubled->Names("\\\\?\\Volume{1}\\"));
    const auto keyless = ReadWmiPath("Win32_Volume='C:=.'");
    ASSERT_TRUE(keyless);
    EXPECT_TRUE(keyless->Names("C:=."));
}

TEST(ObjectPath, MalformedPath_IsRefused) {
    for (const char* path :
         {"", ":", ".", "=", "Class.", "Class.='x'", "Class.Key", "Class.Key=", "Class.Key=x",
          "Class.Key='x\"", "Class.Key='", "\\root:Class", ".Key='x'", "root:", ":Class"})
        EXPECT_FALSE(ReadWmiPath(path)) << path;
}
