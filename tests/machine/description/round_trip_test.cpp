// A written description reads back as the same PC.

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "tests/machine/description/random_pc.h"

namespace {

using namespace machine;

TEST(WriteDescription, PredefinedMachines_ReadBackTheSame) {
    for (const NamedMachine& machine : NamedMachines()) {
        const Pc pc = machine.make();
        EXPECT_TRUE(ReadDescription(WriteDescription(pc), "pc.json") == pc) << WriteDescription(pc);
    }
}

// Set KESTOVA_SEED in the environment to repeat a run.
TEST(WriteDescription, RandomPcs_ReadBackTheSame) {
    const char* const given = std::getenv("KESTOVA_SEED");
    const auto first = given != nullptr ? static_cast<uint32_t>(std::stoul(given)) : std::random_device()();
    const uint32_t runs = given != nullptr ? 1 : 300;
    for (uint32_t seed = first; seed != first + runs; ++seed) {
        const Pc pc = RandomPc(seed);
        const std::string text = WriteDescription(pc);
        ASSERT_TRUE(ReadDescription(text, "pc.json") == pc) << "KESTOVA_SEED=" << seed << "\n" << text;
        ASSERT_EQ(WriteDescription(ReadDescription(text, "pc.json")), text) << "KESTOVA_SEED=" << seed;
    }
}

TEST(WriteDescription, DefaultPc_WritesNoKeys) {
    EXPECT_EQ(WriteDescription(Pc()), "{}\n");
}

TEST(WriteDescription, StandardDisk_WritesOnlyItsNumber) {
    const Pc pc = ReadDescription(R"({"disks": [{"number": 3, "busType": "usb"}]})", "pc.json");
    EXPECT_EQ(WriteDescription(pc),
              "{\n  \"disks\": [\n    {\n      \"number\": 3,\n      \"busType\": \"usb\"\n    }\n  ]\n}\n");
}

TEST(WriteDescription, SizesAndCodes_AreWrittenWithUnitsAndHexadecimally) {
    Pc pc;
    Disk& disk = pc.disks.emplace_back();
    disk.size = uint64_t{500} << 30;
    disk.signature = 0xB2F6;
    Partition& partition = disk.partitions.emplace_back();
    partition.offset = 32256;
    partition.size = uint64_t{220161} << 20;
    partition.mbrType = 7;
    pc.faults = {{"CreateFileW", 0, false, false, 5}, {"CoCreateInstance", 0, false, false, 0x80040154}};
    const std::string text = WriteDescription(pc);
    for (const char* const expected :
         {"\"size\": \"500 GiB\"", "\"signature\": \"0x0000B2F6\"", "\"offset\": 32256",
          "\"size\": \"220161 MiB\"", "\"mbrType\": \"0x07\"", "\"code\": 5", "\"code\": \"0x80040154\""}) {
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " is not in\n" << text;
    }
}

TEST(WriteDescription, DiskOnImage_LeavesOutWhatTheImageSupplies) {
    Pc pc;
    Disk& disk = pc.disks.emplace_back();
    disk.image = "factory.img";
    disk.size = 4096;
    disk.signature = 1;
    Partition& partition = disk.partitions.emplace_back();
    partition.number = 1;
    partition.size = 512;
    partition.volume = Volume();
    partition.volume->letters = "C";
    partition.volume->label = std::string("Windows");
    const Pc read = ReadDescription(WriteDescription(pc), "pc.json");
    ASSERT_EQ(read.disks.size(), 1u);
    EXPECT_EQ(read.disks[0].image, "factory.img");
    EXPECT_EQ(read.disks[0].size, 0u);
    EXPECT_EQ(read.disks[0].signature, 0u);
    ASSERT_EQ(read.disks[0].partitions.size(), 1u);
    EXPECT_EQ(read.disks[0].partitions[0].size, 0u);
    EXPECT_EQ(read.disks[0].partitions[0].volume->letters, "C");
    EXPECT_EQ(read.disks[0].partitions[0].volume->label, std::string());
}

TEST(WriteDescription, FoldersInSeveralSpellings_KeepTheirSpelling) {
    Pc pc;
    pc.host.files.PutFolder("Sources");
    pc.host.files.PutFile("sources/a.ini", "a");
    pc.host.files.PutFolder("SOURCES/empty");
    EXPECT_TRUE(ReadDescription(WriteDescription(pc), "pc.json") == pc) << WriteDescription(pc);
}

TEST(WriteDescription, TextThatIsNotUtf8_IsRefused) {
    Pc pc;
    pc.name = "bad";
    pc.host.path = "\xFF";
    try {
        WriteDescription(pc);
        FAIL() << "it was written";
    } catch (const DescriptionError& error) {
        EXPECT_STREQ(error.what(), "description: bad: the PC holds text that is not UTF-8");
    }
}

}  // namespace
