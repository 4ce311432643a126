// The numbers that callers receive; manager/kestova.h says what each means.
#include "manager/result_codes.h"

#include <gtest/gtest.h>

TEST(ResultCodes, EveryCode_HasItsPublishedNumber) {
    EXPECT_EQ(NO_INTERNAL_DISK, 100);
    EXPECT_EQ(ERROR_GET_PARTITION_TYPE, 101);
    EXPECT_EQ(ERROR_GET_DRIVE_LETTER, 104);
    EXPECT_EQ(ERROR_SET_DRIVE_LETTER, 105);
    EXPECT_EQ(UNKNOWN_DISK_STYLE, 106);
    EXPECT_EQ(ERROR_NO_EXIST_OS, 110);
    EXPECT_EQ(ERROR_GET_DISK_STYLE, 111);
    EXPECT_EQ(ERROR_NOT_ORVOBOOT_GUID, 113);
    EXPECT_EQ(NO_SYSTEM_PARTITION_TYPE, 115);
    EXPECT_EQ(NO_VOLUME_LAYER, 116);
}
