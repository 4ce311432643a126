// Generated PCs are valid, the same for a seed everywhere, and as different as those in the field.

#include "machine/generation/generated_pc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "machine/generation/wild_pc.h"
#include "tests/support/application/application.h"

namespace {

using namespace machine;
using testing::IsEmpty;

constexpr uint64_t seed = 500;

std::vector<Pc> GeneratedPcs(uint64_t count) {
    std::vector<Pc> pcs;
    for (uint64_t number = 1; number <= count; ++number)
        pcs.push_back(GeneratedPc(seed, number));
    return pcs;
}

// What the library finds on a PC: a name for each kind of thing, and whether it is there.
std::map<std::string, bool> FoundOn(const Pc& pc) {
    Application application(pc);
    Kestova& kestova = application.kestova;
    const int disk = kestova.GetFirstInternalDriveNumber();
    int at = 0;
    int partition = 0;
    WCHAR letter = 0;
    std::map<std::string, bool> found;
    found["internal disk"] = disk >= 0;
    found["active partition"] = kestova.GetActivePartitionNumber() > 0;
    found["recovery partition"] = kestova.IsExistRcvprt() == 1;
    kestova.AssignWinREPartition(letter);
    found["Windows RE partition"] = letter != L'0';
    found["EFI partition"] = kestova.ActiveGPTSystemPartition(letter) == 0;
    found["encrypted volume"] = kestova.IsExistEncryptVolume() == 1;
    found["recovery disc"] = kestova.GetRCVDISC() != L'0';
    found["recovery stick"] = kestova.GetRCVUFD() != L'0';
    found["installed Windows"] = kestova.GetVistaOSInfo(at, partition, letter) == 0;
    found["hibernation partition"] = false;
    for (int number = 1; number <= 8; ++number)
        if (kestova.IsBIOSHibernationPartition(disk, number) == 1) found["hibernation partition"] = true;
    return found;
}

}  // namespace

TEST(GeneratedPc, ThreeHundred_Describe_AreValidAndReadBackAsTheSame) {
    for (const Pc& pc : GeneratedPcs(300)) {
        const std::string text = WriteDescription(pc);
        EXPECT_THAT(FindMistakes(text), IsEmpty()) << text;
        EXPECT_EQ(ReadDescription(text, "pc.json"), pc) << text;
        EXPECT_EQ(ReadDescription(WriteDescription(pc, Layout::OneLine), "pc.json"), pc);
    }
}

TEST(GeneratedPc, SameSeedAndNumber_IsTheSamePc_WhateverOthersAreMade) {
    const std::vector<Pc> pcs = GeneratedPcs(12);
    EXPECT_EQ(pcs.back(), GeneratedPc(seed, 12));
    EXPECT_EQ(pcs.back().name, "generated 500/12");
    EXPECT_FALSE(pcs.back() == GeneratedPc(seed + 1, 12));
}

// Other compilers and other systems must make the same of a seed. A change of the generator changes these
// numbers.
TEST(Choice, SeedAndNumber_Numbers_AreThoseOfTheStandardsGenerator) {
    Choice choice(7, 12);
    EXPECT_EQ(choice.Below(1'000'000'000), 605550606u);
    EXPECT_EQ(choice.Below(1'000'000'000), 133345334u);
}

TEST(GeneratedPc, FiveHundred_HaveWhateverPcsInTheFieldHave) {
    std::map<std::string, int> counts;
    for (const Pc& pc : GeneratedPcs(500)) {
        ++counts[std::to_string(pc.disks.size()) + " disks"];
        ++counts[pc.system.kind == SystemKind::Windows ? "Windows" : "Windows PE"];
        ++counts[pc.firmware.kind == FirmwareKind::Bios ? "BIOS" : "UEFI"];
        ++counts[pc.encryptableVolumes ? "with BitLocker" : "without BitLocker"];
        for (const Disk& disk : pc.disks) {
            ++counts[disk.style == PartitionStyle::Mbr ? "MBR" : "GPT"];
            ++counts["bus " + std::to_string(disk.busType)];
        }
        for (const Volume& volume : pc.volumes)
            ++counts["drive type " + std::to_string(static_cast<uint32_t>(volume.driveType))];
    }
    for (const char* const kind : {"0 disks",
                                   "1 disks",
                                   "2 disks",
                                   "3 disks",
                                   "4 disks",
                                   "Windows",
                                   "Windows PE",
                                   "BIOS",
                                   "UEFI",
                                   "with BitLocker",
                                   "without BitLocker",
                                   "MBR",
                                   "GPT",
                                   "bus 3",
                                   "bus 7",
                                   "bus 8",
                                   "bus 11",
                                   "bus 17",
                                   "drive type 2",
                                   "drive type 4",
                                   "drive type 5"})
        EXPECT_GE(counts[kind], 3) << kind;
    EXPECT_LT(counts["0 disks"], 50);
}

TEST(GeneratedPc, FiveHundred_AskTheLibrary_FindsEachRoleOnSomeAndNotOnOthers) {
    std::map<std::string, int> there;
    std::map<std::string, int> missing;
    for (const Pc& pc : GeneratedPcs(500)) {
        for (const auto& [what, isThere] : FoundOn(pc))
            ++(isThere ? there : missing)[what];
    }
    EXPECT_EQ(missing.size(), 10u);
    for (const auto& [what, count] : missing) {
        EXPECT_GE(there[what], 10) << what;
        EXPECT_GE(count, 10) << what;
    }
}

// What no machine of the tool is: most of the others can be told from the machine that they were.
TEST(GeneratedPc, FiveHundred_Compare_AreAllDifferent) {
    std::set<std::string> descriptions;
    for (Pc pc : GeneratedPcs(500)) {
        pc.name.clear();
        descriptions.insert(WriteDescription(pc));
    }
    EXPECT_GE(descriptions.size(), 490u);
}
