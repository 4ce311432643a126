// The picture of disks on images, with the tools of others as judges: places and slots of partitions, free
// space, names, labels, and in what condition a volume was left.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/program/program.h"

namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;

class PictureOfImages : public ProgramTest {
  protected:
    // A disk of 300 MiB with the table that sfdisk makes of the script.
    void MakeDisk(const std::string& table) {
        WriteFile("table", table);
        ASSERT_EQ(
            Shell("rm -f disk.img && truncate -s 300M disk.img && sfdisk --quiet disk.img <table").status, 0)
            << ReadFile(".errors");
    }
    void Take(const std::string& image) {
        ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/" + image + " disk.img").status, 0);
    }
    // A volume into its partition; the words make it of the file "part".
    void Put(int startMiB, int sizeMiB, const std::string& words) {
        const std::string size = std::to_string(sizeMiB);
        ASSERT_EQ(Shell("rm -f part && truncate -s " + size + "M part && { " + words +
                        " ; } >/dev/null && dd if=part of=disk.img bs=1M seek=" + std::to_string(startMiB) +
                        " conv=notrunc,sparse status=none")
                      .status,
                  0)
            << ReadFile(".errors");
    }
    // The volume that is there is changed by the words.
    void Change(int startMiB, int sizeMiB, const std::string& words) {
        ASSERT_EQ(Shell("dd if=disk.img of=part bs=1M status=none skip=" + std::to_string(startMiB) +
                        " count=" + std::to_string(sizeMiB) + " && { " + words +
                        " ; } >/dev/null && dd if=part of=disk.img bs=1M conv=notrunc status=none seek=" +
                        std::to_string(startMiB))
                      .status,
                  0)
            << ReadFile(".errors");
    }
    json Disk(const std::string& words = "") {
        return json::parse(Kestova("--image disk.img " + words + " --json status").output)["disks"][0];
    }
    std::string Condition(size_t partition, const std::string& words = "") {
        const json condition = Disk(words)["partitions"][partition - 1]["condition"];
        return condition.is_null() ? "null" : condition.get<std::string>();
    }
    // Start, size and slot of each partition, as sfdisk counts; without an extended one.
    std::vector<std::vector<int64_t>> TableBySfdisk() {
        std::vector<std::vector<int64_t>> table;
        const json found = json::parse(Shell("sfdisk --json disk.img").output)["partitiontable"];
        for (const json& row : found["partitions"]) {
            if (row["type"] == "f" || row["type"] == "5") continue;
            const std::string node = row["node"];
            table.push_back({row["start"].get<int64_t>() * 512, row["size"].get<int64_t>() * 512,
                             std::stoi(node.substr(std::string("disk.img").size()))});
        }
        return table;
    }
    std::vector<std::vector<int64_t>> Table() {
        std::vector<std::vector<int64_t>> table;
        const json disk = Disk();
        for (const json& row : disk["partitions"])
            table.push_back({row["offset"], row["size"], row["slot"]});
        return table;
    }
};

TEST_F(PictureOfImages, MbrWithLogicalPartitionsAndUnusedSlots_Status_AgreesWithSfdisk) {
    MakeDisk(
        "label: dos\n"
        "4: start=200MiB, size=20MiB, type=7\n"
        "2: start=1MiB, size=20MiB, type=17\n"
        "3: start=40MiB, size=100MiB, type=f\n"
        "5: start=41MiB, size=20MiB, type=7\n"
        "6: start=70MiB, size=30MiB, type=c, bootable\n");
    EXPECT_EQ(Table(), TableBySfdisk());
    const json disk = Disk();
    EXPECT_EQ(disk["partitions"][0]["number"], 1);
    EXPECT_EQ(disk["partitions"][0]["slot"], 2);
    EXPECT_EQ(disk["partitions"][0]["hidden"], true);
    EXPECT_EQ(disk["partitions"][2]["slot"], 5);
    EXPECT_EQ(disk["isInternal"], true);
    EXPECT_EQ(disk["reason"], "an image counts as SATA; the first internal disk");
    EXPECT_THAT(Kestova("--image disk.img status").output, HasSubstr("\n  #  Slot  Start  "));
}

TEST_F(PictureOfImages, GptWithUnusedSlots_Status_AgreesWithSgdiskAndSfdisk) {
    ASSERT_EQ(Shell("truncate -s 300M disk.img && sgdisk -n 3:1M:+20M -t 3:2700 -c '3:Rück 回復' "
                    "-n 7:60M:+30M -t 7:0700 -A 7:set:62 disk.img")
                  .status,
              0);
    EXPECT_EQ(Table(), TableBySfdisk());
    const json disk = Disk();
    EXPECT_EQ(disk["partitions"][0]["name"], "Rück 回復");
    EXPECT_EQ(disk["partitions"][0]["hidden"], false);
    EXPECT_EQ(disk["partitions"][1]["slot"], 7);
    EXPECT_EQ(disk["partitions"][1]["hidden"], true);
    // What sgdisk calls the total free space, but for the alignment before the first partition.
    int64_t free = 0;
    for (const json& gap : disk["gaps"])
        free += gap["size"].get<int64_t>();
    const std::string sectors = std::to_string(free / 512 + 2048 - 34);
    EXPECT_THAT(Shell("sgdisk -p disk.img").output, HasSubstr("Total free space is " + sectors + " sectors"));
}

TEST_F(PictureOfImages, LabelsWithoutLetters_Status_AreThoseOfNtfslabelAndBlkid) {
    MakeDisk(
        "label: dos\nstart=1MiB, size=40MiB, type=27\nstart=50MiB, size=40MiB, type=1c\n"
        "start=100MiB, size=40MiB, type=84\n");
    Put(1, 40, "mkntfs --fast --force --label \"$(printf 'E\\033[31m 日本')\" part");
    Put(50, 40, "mkfs.fat -F 16 -n HIDDEN part");
    Put(100, 40, "mkfs.exfat -L Sleep part");
    const json disk = Disk("--windows");
    const auto label = [&](size_t partition) {
        return disk["partitions"][partition]["label"].get<std::string>();
    };
    for (const size_t partition : {0U, 1U, 2U})
        EXPECT_EQ(disk["partitions"][partition]["letter"], nullptr) << partition;
    EXPECT_EQ(label(0) + "\n", Shell("dd if=disk.img of=part bs=1M skip=1 count=40 status=none; "
                                     "LC_ALL=C.UTF-8 ntfslabel --force part")
                                   .output);
    EXPECT_EQ(label(1) + "\n",
              Shell("blkid --probe --offset 52428800 --size 41943040 -o value -s LABEL disk.img").output);
    EXPECT_EQ(label(2) + "\n",
              Shell("blkid --probe --offset 104857600 --size 41943040 -o value -s LABEL disk.img").output);
    EXPECT_EQ(disk["partitions"][0]["fileSystem"], "NTFS");
    EXPECT_EQ(disk["partitions"][1]["fileSystem"], "FAT");
    EXPECT_EQ(disk["partitions"][2]["fileSystem"], "exFAT");
    EXPECT_THAT(Kestova("--image disk.img --windows --columns label,filesystem --quiet status").output,
                EndsWith("  Label             File system\n"
                         "  E\\u001B[31m 日本  NTFS\n"
                         "  HIDDEN            FAT\n"
                         "  Sleep             exFAT\n"));
}

// --- in what condition Windows left the volume ---

TEST_F(PictureOfImages, NtfsWithoutALetter_Status_ShowsItsCondition) {
    Take("factory-mbr.img");
    EXPECT_EQ(Condition(1, "--windows"), "clean");
    EXPECT_EQ(Condition(4, "--windows"), "null");
    Change(1, 60, "ntfsfix part");
    EXPECT_EQ(Disk("--windows")["partitions"][0]["letter"], nullptr);
    EXPECT_EQ(Condition(1, "--windows"), "dirty");
    EXPECT_THAT(Kestova("--image disk.img --windows --columns label,condition status").output,
                HasSubstr("\n  Recovery  dirty\n"));
}

TEST_F(PictureOfImages, HibernatedNtfs_Status_SaysSo) {
    Take("factory-mbr.img");
    Change(
        1, 60,
        "{ printf hibr; head -c 4092 /dev/zero; } >hiberfil.sys && ntfscp --force part hiberfil.sys hiberfil.sys");
    EXPECT_EQ(Condition(1, "--windows"), "hibernated");
    EXPECT_EQ(Condition(1), "hibernated");
    EXPECT_THAT(Kestova("--image disk.img --dry-run boot recovery").errors, HasSubstr("is hibernated"));
}

TEST_F(PictureOfImages, DamagedAndEncryptedVolumes_Status_SaysSo) {
    Take("factory-mbr.img");
    // The record of the root folder.
    Change(181, 90, "dd if=/dev/zero of=part bs=1024 seek=21 count=1 conv=notrunc status=none");
    EXPECT_EQ(Condition(3), "damaged");
    Take("bitlocker.img");
    EXPECT_EQ(Condition(2), "BitLocker");
}

TEST_F(PictureOfImages, FatAndExfatMarks_Status_SaysWhetherTheyWereShutDown) {
    MakeDisk(
        "label: dos\nstart=1MiB, size=40MiB, type=6\nstart=50MiB, size=40MiB, type=c\n"
        "start=100MiB, size=40MiB, type=7\n");
    Put(1, 40, "mkfs.fat -F 16 part");
    Put(50, 40, "mkfs.fat -F 32 -s 1 part");
    Put(100, 40, "mkfs.exfat part");
    for (const size_t partition : {1U, 2U, 3U})
        EXPECT_EQ(Condition(partition), "clean") << partition;
    // The highest bit but none of the entry behind the reserved sectors' first, and the flag of exFAT.
    Change(1, 40,
           "printf '\\177' | dd of=part bs=1 conv=notrunc status=none "
           "seek=$(( $(od -An -tu2 -j14 -N2 part) * 512 + 3 ))");
    Change(50, 40,
           "printf '\\367' | dd of=part bs=1 conv=notrunc status=none "
           "seek=$(( $(od -An -tu2 -j14 -N2 part) * 512 + 7 ))");
    Change(100, 40, "printf '\\2' | dd of=part bs=1 conv=notrunc status=none seek=106");
    for (const size_t partition : {1U, 2U, 3U})
        EXPECT_EQ(Condition(partition), "dirty") << partition;
}

TEST_F(PictureOfImages, TwoImages_Status_ShowsBothInTheirOrder) {
    Take("factory-mbr.img");
    ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-gpt.img other.img").status, 0);
    const std::string text = Kestova("--image disk.img --image other.img status").output;
    EXPECT_THAT(text,
                HasSubstr("\nDisk 0: 300.0 MiB, MBR, SATA, Emulated disk; internal: an image counts as SATA; "
                          "the first internal disk\n"));
    EXPECT_THAT(text, HasSubstr("\nDisk 1: "));
    EXPECT_THAT(text, HasSubstr(", GPT, SATA, Emulated disk; internal: an image counts as SATA\n"));
}

// The words of sfdisk, but for what it says of Windows 95.
TEST_F(PictureOfImages, TypesOfOtherSystems_Status_NamesThem) {
    MakeDisk("label: dos\nsize=1MiB,type=c\nsize=1MiB,type=82\nsize=1MiB,type=83\nsize=1MiB,type=8e\n");
    const std::string mbr = Kestova("--image disk.img --columns type status").output;
    for (const char* const type :
         {"  FAT32 (0x0C)\n", "  Linux swap (0x82)\n", "  Linux (0x83)\n", "  Linux LVM (0x8E)\n"})
        EXPECT_THAT(mbr, HasSubstr(type));
    EXPECT_EQ(Disk()["partitions"][2]["typeName"], "unknown (0x83)");

    MakeDisk("label: gpt\nsize=1MiB,type=L\nsize=1MiB,type=S\nsize=1MiB,type=V\nsize=1MiB,type=R\n");
    const std::string gpt = Kestova("--image disk.img --columns type status").output;
    EXPECT_THAT(gpt, HasSubstr("  Linux filesystem\n"));
    std::istringstream types(Shell("sfdisk --quiet --list --output type disk.img | tail -n +2").output);
    for (std::string type; std::getline(types, type);)
        EXPECT_THAT(gpt, HasSubstr("  " + type + "\n"));
}

TEST_F(PictureOfImages, SectorsOf4096Bytes_Status_SaysSo) {
    MakeDisk("label: dos\nstart=256, size=512, type=7\n");
    EXPECT_EQ(Disk()["sectorSize"], 512);
    EXPECT_EQ(Disk("--sector-size 4096")["sectorSize"], 4096);
    EXPECT_THAT(Kestova("--image disk.img --sector-size 4096 status").output,
                HasSubstr("300.0 MiB in sectors of 4096 bytes, MBR"));
}

// A copy that ended early: with the first bytes of the last partition, without them, and in the space before.
TEST_F(PictureOfImages, TruncatedImage_Status_ShowsNoFreeSpaceBehindItsEnd) {
    constexpr int64_t mebibyte = 1 << 20;
    for (const std::string label : {"dos", "gpt"}) {
        for (const int64_t size : {150, 100, 80}) {
            SCOPED_TRACE(label + " " + std::to_string(size));
            MakeDisk("label: " + label + "\nstart=1MiB, size=50MiB\nstart=100MiB, size=100MiB\n");
            ASSERT_EQ(Shell("truncate -s " + std::to_string(size) + "M disk.img").status, 0);

            const json gaps = Disk()["gaps"];

            ASSERT_EQ(gaps.size(), 1u);
            EXPECT_EQ(gaps[0]["offset"], 51 * mebibyte);
            // The last sectors of a GPT disk belong to its table.
            const int64_t end = 51 * mebibyte + gaps[0]["size"].get<int64_t>();
            EXPECT_LE(end, std::min<int64_t>(size, 100) * mebibyte);
            EXPECT_GT(end, std::min<int64_t>(size, 100) * mebibyte - mebibyte / 8);
        }
    }
}

}  // namespace
