#include "base/guid.h"

#include <gtest/gtest.h>

#include "platform/partition_types.h"

namespace {

TEST(Guid, AnyGuid_GuidText_IsLowerCaseWithDashes) {
    EXPECT_EQ(GuidText(PARTITION_SYSTEM_GUID), "c12a7328-f81f-11d2-ba4b-00a0c93ec93b");
    EXPECT_EQ(GuidText(Guid()), "00000000-0000-0000-0000-000000000000");
}

TEST(Guid, TextInAnyCaseWithOrWithoutBraces_GuidFromText_ReturnsTheGuid) {
    for (const char* const text :
         {"c12a7328-f81f-11d2-ba4b-00a0c93ec93b", "C12A7328-F81F-11D2-BA4B-00A0C93EC93B",
          "{c12a7328-f81f-11d2-ba4b-00a0c93ec93b}"}) {
        EXPECT_TRUE(GuidFromText(text) == Guid(PARTITION_SYSTEM_GUID)) << text;
    }
}

TEST(Guid, MalformedText_GuidFromText_ReturnsNothing) {
    for (const char* const text :
         {"", "{}", "c12a7328", "c12a7328-f81f-11d2-ba4b-00a0c93ec93",
          "c12a7328-f81f-11d2-ba4b-00a0c93ec93bb", "c12a7328xf81f-11d2-ba4b-00a0c93ec93b",
          "c12a7328-f81f-11d2-ba4b-00a0c93ec93g", "{c12a7328-f81f-11d2-ba4b-00a0c93ec93b",
          "{c12a7328-f81f-11d2-ba4b-00a0c93ec93b)", "(c12a7328-f81f-11d2-ba4b-00a0c93ec93b}",
          "-c12a732-f81f-11d2-ba4b-00a0c93ec93b"}) {
        EXPECT_FALSE(GuidFromText(text)) << text;
    }
}

TEST(Guid, OneByteChanged_Compare_IsDifferent) {
    Guid other = PARTITION_SYSTEM_GUID;
    EXPECT_TRUE(other == Guid(PARTITION_SYSTEM_GUID));
    other.Data4[7] ^= 1;
    EXPECT_FALSE(other == Guid(PARTITION_SYSTEM_GUID));
}

}  // namespace
