// Writing and reading the number that SystemVolume.ini records.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "manager/system_volume_ini.h"
#include "tests/support/application/application.h"

namespace {

using machine::FactoryMbr;

TEST(RecordedPartition, WrittenNumber_IsReadBack) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    ASSERT_TRUE(RecordActivePartition(TEXT("C:\\SystemVolume.ini"), 3));
    EXPECT_EQ(SystemVolumeIni(pc), "[System]\r\nActive=3\r\n");
    int partition = 0;
    EXPECT_TRUE(ReadRecordedPartition(TEXT("C:\\SystemVolume.ini"), partition));
    EXPECT_EQ(partition, 3);
}

TEST(RecordedPartition, MissingDrive_CannotBeWritten) {
    machine::EmulatedPc pc(FactoryMbr());
    EXPECT_FALSE(RecordActivePartition(TEXT("Q:\\SystemVolume.ini"), 2));
    EXPECT_FALSE(RecordActivePartition(TEXT(""), 2));
}

struct Content {
    const char* name;
    const char* content;
    bool readable;
    int partition;
};

void PrintTo(const Content& content, std::ostream* out) {
    *out << content.name;
}

class RecordContent : public testing::TestWithParam<Content> {};

TEST_P(RecordContent, AnyContent_IsReadAsTheProfileCallsReadIt) {
    machine::Pc facts = machine::WinPeTwoDisks();
    PartitionOf(facts, 1).volume->files.PutFile("SystemVolume.ini", GetParam().content);
    machine::EmulatedPc pc(facts);
    int partition = 77;
    EXPECT_EQ(ReadRecordedPartition(TEXT("C:\\systemvolume.INI"), partition), GetParam().readable);
    EXPECT_EQ(partition, GetParam().partition);
}

const Content contents[] = {
    {"Number", "[System]\r\nActive=4\r\n", true, 4},
    {"OtherSpelling", "[SYSTEM]\n active = 4 \n", true, 4},
    {"NumberAndMore", "[System]\r\nActive=7abc\r\n", true, 7},
    {"Negative", "[System]\r\nActive=-1\r\n", true, -1},
    {"TooLarge", "[System]\r\nActive=4294967298\r\n", true, 2},
    {"Word", "[System]\r\nActive=abc\r\n", false, 77},
    {"Empty", "[System]\r\nActive=\r\n", false, 77},
    {"NoKey", "[System]\r\nOther=2\r\n", false, 77},
    {"NoSection", "[Other]\r\nActive=2\r\n", false, 77},
    {"EmptyFile", "", false, 77},
    {"TheDefaultItself", "[System]\r\nActive=_no_value_\r\n", false, 77},
    {"Binary", "\x01\x02\xff\xfe[System", false, 77},
};

INSTANTIATE_TEST_SUITE_P(Of, RecordContent, testing::ValuesIn(contents),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
