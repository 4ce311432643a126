#include "device/controller_path.h"

#include <gtest/gtest.h>

namespace {

tagControllerLinkTable_t Links(std::initializer_list<std::pair<const WCHAR*, const WCHAR*>> rows) {
    tagControllerLinkTable_t links;
    links.nCount = 0;
    for (const auto& [antecedent, dependent] : rows) {
        links.Antecedent[links.nCount] = antecedent;
        links.Dependent[links.nCount] = dependent;
        ++links.nCount;
    }
    return links;
}

}  // namespace

TEST(ExtractPathValue, Empty_StaysEmpty) {
    EXPECT_EQ(ExtractPathValue(TEXT("")), TEXT(""));
}

TEST(ExtractPathValue, ObjectPath_ReturnsItsKey) {
    EXPECT_EQ(
        ExtractPathValue(TEXT("\\\\PC1\\root\\cimv2:Win32_IDEController.DeviceID=\"PCI\\\\VEN_8086&DEV_7111"
                              "\\\\3&18D45AA6&0&39\"")),
        TEXT("PCI\\VEN_8086&DEV_7111\\3&18D45AA6&0&39"));
}

TEST(ExtractPathValue, NoEquals_ReturnsTheWholeCleanedText) {
    EXPECT_EQ(ExtractPathValue(TEXT("\"PCI\\\\VEN_8086\"")), TEXT("PCI\\VEN_8086"));
}

TEST(ExtractPathValue, OnlyTheFirstEquals_Counts) {
    EXPECT_EQ(ExtractPathValue(TEXT("Class.DeviceID=\"A=B\"")), TEXT("A=B"));
}

TEST(ExtractPathValue, NothingBehindEquals_ReturnsEmpty) {
    EXPECT_EQ(ExtractPathValue(TEXT("Class.DeviceID=")), TEXT(""));
}

TEST(ExtractPathValue, Backslashes_AreHalvedPairByPair) {
    EXPECT_EQ(ExtractPathValue(TEXT("A\\\\\\\\B")), TEXT("A\\\\B"));  // four become two
    EXPECT_EQ(ExtractPathValue(TEXT("A\\\\\\B")), TEXT("A\\\\B"));    // three become two
    EXPECT_EQ(ExtractPathValue(TEXT("A\\B")), TEXT("A\\B"));          // a single one stays
}

TEST(FindTopController, NoLink_NamesTheDevice) {
    EXPECT_EQ(FindTopController(TEXT("DISK"), Links({})), TEXT(""));
    EXPECT_EQ(FindTopController(TEXT("DISK"), Links({{TEXT("C.ID=\"PCI\""), TEXT("D.ID=\"CDROM\"")}})),
              TEXT(""));
}

TEST(FindTopController, OneLink_ReturnsItsController) {
    EXPECT_EQ(FindTopController(TEXT("IDE\\DISK"),
                                Links({{TEXT("C.ID=\"PCI\\\\A\""), TEXT("D.ID=\"IDE\\\\DISK\"")}})),
              TEXT("PCI\\A"));
}

TEST(FindTopController, Case_DoesNotCount) {
    EXPECT_EQ(FindTopController(TEXT("ide\\disk"),
                                Links({{TEXT("C.ID=\"PCI\\\\a\""), TEXT("D.ID=\"IDE\\\\DISK\"")}})),
              TEXT("PCI\\a"));
}

TEST(FindTopController, ChainOfLinks_ReturnsTheTop) {
    const auto links = Links({{TEXT("C.ID=\"PCI\""), TEXT("D.ID=\"CHANNEL\"")},
                              {TEXT("C.ID=\"CHANNEL\""), TEXT("D.ID=\"DISK\"")}});
    EXPECT_EQ(FindTopController(TEXT("DISK"), links), TEXT("PCI"));
}

TEST(FindTopController, FirstLinkOfADevice_Counts) {
    const auto links = Links(
        {{TEXT("C.ID=\"FIRST\""), TEXT("D.ID=\"DISK\"")}, {TEXT("C.ID=\"SECOND\""), TEXT("D.ID=\"DISK\"")}});
    EXPECT_EQ(FindTopController(TEXT("DISK"), links), TEXT("FIRST"));
}

TEST(FindTopController, ControllerWithoutId_DoesNotHideTheOneBelow) {
    const auto links =
        Links({{TEXT("C.ID=\"CHANNEL\""), TEXT("D.ID=\"DISK\"")}, {TEXT(""), TEXT("D.ID=\"CHANNEL\"")}});
    EXPECT_EQ(FindTopController(TEXT("DISK"), links), TEXT("CHANNEL"));
}

TEST(FindTopController, Circle_EndsAfterAsManyStepsAsLinks) {
    const auto links = Links({{TEXT("C.ID=\"A\""), TEXT("D.ID=\"DISK\"")},
                              {TEXT("C.ID=\"B\""), TEXT("D.ID=\"A\"")},
                              {TEXT("C.ID=\"A\""), TEXT("D.ID=\"B\"")}});
    EXPECT_EQ(FindTopController(TEXT("DISK"), links), TEXT("A"));
}

TEST(FindTopController, DeviceAboveItself_Ends) {
    EXPECT_EQ(FindTopController(TEXT("DISK"), Links({{TEXT("C.ID=\"DISK\""), TEXT("D.ID=\"DISK\"")}})),
              TEXT("DISK"));
}
