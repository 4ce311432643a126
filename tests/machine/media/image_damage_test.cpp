// Truncated and damaged images at many places: each is read or refused with an ImageError, without a crash,
// a write or terminal output.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "machine/facts/file_store.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

class ImageDamageTest : public ImageTest {};

// Opens the image in each mode and makes the library's queries as far as possible.
void AskEverything(const std::string& image) {
    for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Overlay, ImageAccess::Write}) {
        try {
            const Pc pc = PcOfImages({image}, SystemKind::Windows, access);
            for (const Partition& partition : pc.disks[0].partitions) {
                if (!partition.volume || !partition.volume->store) continue;
                std::string content;
                partition.volume->store->Find("sources/Orvo");
                partition.volume->store->Read("sources/Qelhdrcv.ini", content);
                partition.volume->store->Read("Windows/System32/Winload.exe", content);
                if (access != ImageAccess::Write) partition.volume->store->Write("SystemVolume.ini", "[x]");
            }
        } catch (const ImageError&) {
            // A refusal is expected.
        }
    }
}

// Damages one byte at a time, runs the queries and restores it; `places` are file offsets.
void ExpectUnharmed(const std::string& original, const std::string& image,
                    const std::vector<uint64_t>& places, uint32_t seed) {
    std::mt19937 random(seed);
    for (const uint64_t place : places) {
        const uint8_t before = ByteAt(image, place);
        const auto damaged = static_cast<uint8_t>(before ^ (1 + random() % 255));
        PatchByte(image, place, damaged);
        AskEverything(image);
        ASSERT_EQ(ByteAt(image, place), damaged) << "place " << place << ", seed " << seed;
        PatchByte(image, place, before);
    }
    EXPECT_TRUE(AreSame(original, image)) << "seed " << seed;
}

std::vector<uint64_t> Every(uint64_t step, uint64_t from, uint64_t to) {
    std::vector<uint64_t> places;
    for (uint64_t place = from; place < to; place += step)
        places.push_back(place);
    return places;
}

TEST_F(ImageDamageTest, TruncatedAtAnyLength_AttachForChanges_FailsAndChangesNothing) {
    const std::string image = FactoryMbrImage();
    for (uint64_t length = 298 * MiB; length > 0; length = length * 2 / 3) {
        std::filesystem::resize_file(image, length);
        for (const ImageAccess access : {ImageAccess::Write, ImageAccess::Overlay})
            EXPECT_NE(Complaint(image, access), "") << length;
        Complaint(image, ImageAccess::Read);  // what is left is shown, or refused
        EXPECT_EQ(std::filesystem::file_size(image), length);
    }
}

TEST_F(ImageDamageTest, DamagedMbrTable_Attach_AnswersOrFails) {
    ExpectUnharmed(FactoryMbrImage("original.img"), FactoryMbrImage(), Every(1, 440, 512), 1);
}

TEST_F(ImageDamageTest, DamagedGptHeaderAndEntries_Attach_AnswersOrFails) {
    ExpectUnharmed(FactoryGptImage("original.img"), FactoryGptImage(), Every(7, 512, 1024 + 6 * 128), 2);
}

TEST_F(ImageDamageTest, DamagedNtfsBootSector_Attach_AnswersOrFails) {
    ExpectUnharmed(FactoryMbrImage("original.img"), FactoryMbrImage(), Every(1, 61 * MiB + 3, 61 * MiB + 84),
                   3);
}

TEST_F(ImageDamageTest, DamagedMasterFileTable_Attach_AnswersOrFails) {
    const std::string image = FactoryMbrImage();
    const uint64_t cluster =
        std::stoull(OutputOf("od -An -tu8 -j " + std::to_string(61 * MiB + 0x30) + " -N 8 '" + image + "'"));
    const uint64_t mft = 61 * MiB + cluster * 4096;
    ExpectUnharmed(FactoryMbrImage("original.img"), image, Every(61, mft, mft + 16ULL * 1024), 4);
}

TEST_F(ImageDamageTest, DamagedImage_Attach_PrintsNothing) {
    const std::string image = FactoryMbrImage();
    PatchByte(image, 61 * MiB + 0x30, 0xFF);
    const std::string gpt = FactoryGptImage();
    PatchByte(gpt, 512, 0);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();

    AskEverything(image);
    AskEverything(gpt);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace machine
