// Damaged discs, sticks and hives: with many bytes changed, each query is answered or refused, without a
// crash or a write.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "machine/facts/file_store.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/hive/hivex_reader.h"
#include "machine/media/medium_image.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

class ReaderDamageTest : public ImageTest {
  protected:
    // A file with the hive of the installed Windows.
    std::string HiveFile() {
        const Disk disk = Attach(MadeImage("installed-windows.img"));
        std::string content;
        EXPECT_EQ(disk.partitions[1].volume->store->Read("Windows/System32/config/SYSTEM", content), 0u);
        std::string file = (Folder() / "hive").string();
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }
};

// A range of a file, in bytes.
struct Stretch {
    uint64_t from;
    uint64_t to;
};

// Repeatedly changes up to 16 bytes of the range, runs the queries and restores the bytes.
void ExpectUnharmed(const std::string& image, Stretch stretch, uint32_t seed,
                    void (*ask)(const std::string& image)) {
    constexpr int rounds = 1000;
    const std::string original = image + ".original";
    CopySparse(image, original);
    std::mt19937 random(seed);
    for (int round = 0; round < rounds; ++round) {
        std::vector<uint64_t> places;
        for (auto count = 1 + random() % 16; count > 0; --count) {
            places.push_back(stretch.from + random() % (stretch.to - stretch.from));
            // Zeros, ones and all bits set are the most effective values.
            const uint8_t values[] = {0, 1, 0xFF, static_cast<uint8_t>(random())};
            PatchByte(image, places.back(), values[random() % 4]);
        }
        ask(image);
        for (const uint64_t place : places)
            PatchByte(image, place, ByteAt(original, place));
    }
    EXPECT_TRUE(AreSame(original, image)) << "seed " << seed;
}

void AskFiles(VolumeStore& store) {
    std::string content;
    std::vector<FileEntry> entries;
    store.Find("");
    store.List("", entries);
    store.List("sources", entries);
    store.Find("sources/Orvo");
    store.Read("sources/Qelhdrcv.ini", content);
    store.Read("sources/Image of the factory state.wim", content);
    store.Read("sources/IMAGE_OF.WIM", content);
    store.Read("sources/sources/none", content);
    EXPECT_EQ(store.Write("sources/Qelhdrcv.ini", "x"), 19u);
}

void AskDisc(const std::string& image) {
    try {
        Pc pc;
        InsertDisc(pc, image);
        AskFiles(*pc.volumes.front().store);
    } catch (const ImageError&) {
        // A refusal is expected.
    }
}

void AskStick(const std::string& image) {
    try {
        Pc pc;
        InsertStick(pc, image);
        AskFiles(*pc.volumes.front().store);
    } catch (const ImageError&) {
        // A refusal is expected.
    }
}

void AskHive(const std::string& image) {
    RegistryKeys keys;
    HivexReader().Read({ContentOf(image)}, keys);
}

constexpr uint64_t KiB = 1024;
constexpr Stretch fatParameters = {11, 64};

TEST_F(ReaderDamageTest, DamagedFat12_Read_AnswersOrFails) {
    const std::string image = MadeImage("stick-fat12.img");
    ExpectUnharmed(image, fatParameters, 1, AskStick);
    ExpectUnharmed(image, {0, 24 * KiB}, 2, AskStick);
}

TEST_F(ReaderDamageTest, DamagedFat16_Read_AnswersOrFails) {
    const std::string image = MadeImage("stick-fat16.img");
    ExpectUnharmed(image, fatParameters, 3, AskStick);
    ExpectUnharmed(image, {2 * KiB, 3 * KiB}, 4, AskStick);
}

TEST_F(ReaderDamageTest, DamagedFat32_Read_AnswersOrFails) {
    const std::string image = MadeImage("stick-fat32.img");
    ExpectUnharmed(image, fatParameters, 5, AskStick);
    ExpectUnharmed(image, {16 * KiB, 17 * KiB}, 6, AskStick);
}

TEST_F(ReaderDamageTest, DamagedExfat_Read_AnswersOrFails) {
    const std::string image = MadeImage("stick-exfat.img");
    ExpectUnharmed(image, {64, 6 * KiB}, 13, AskStick);
    const uint64_t data = uint64_t{Le32(ContentOf(image), 88)} * 512;
    ExpectUnharmed(image, {data, data + 40 * KiB}, 14, AskStick);
}

TEST_F(ReaderDamageTest, DamagedIso_Read_AnswersOrFails) {
    ExpectUnharmed(MadeImage("disc-iso.iso"), {32 * KiB, 64 * KiB}, 7, AskDisc);
}

TEST_F(ReaderDamageTest, DamagedJoliet_Read_AnswersOrFails) {
    ExpectUnharmed(MadeImage("disc-joliet.iso"), {32 * KiB, 72 * KiB}, 8, AskDisc);
}

TEST_F(ReaderDamageTest, DamagedUdf_Read_AnswersOrFails) {
    const std::string image = MadeImage("disc-udf.iso");
    ExpectUnharmed(image, {64 * KiB, 76 * KiB}, 9, AskDisc);
    ExpectUnharmed(image, {512 * KiB, 552 * KiB}, 10, AskDisc);
}

TEST_F(ReaderDamageTest, DamagedUdfOfEachKind_Read_AnswersOrFails) {
    // Where each has its folders.
    const std::pair<const char*, Stretch> discs[] = {
        {"disc-udf-virtual.iso", {1738 * 2 * KiB, 1789 * 2 * KiB}},
        {"disc-udf-sparable.iso", {4385 * 2 * KiB, 4544 * 2 * KiB}},
        {"disc-udf-metadata.iso", {288 * 2 * KiB, 368 * 2 * KiB}}};
    for (const auto& [name, folders] : discs)
        ExpectUnharmed(MadeImage(name), folders, 15, AskDisc);
}

TEST_F(ReaderDamageTest, DamagedHive_Read_AnswersOrFails) {
    const std::string hive = HiveFile();
    ExpectUnharmed(hive, {0, 4 * KiB}, 11, AskHive);
    ExpectUnharmed(hive, {4 * KiB, 6 * KiB}, 12, AskHive);
}

}  // namespace
}  // namespace machine
