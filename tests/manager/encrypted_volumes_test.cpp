// The queries for the volumes that BitLocker has encrypted.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using Text = std::basic_string<WCHAR>;

// A PC whose BitLocker lists volumes with these letters, as it writes them; "" is none.
machine::Pc Encrypting(const std::vector<std::string>& letters) {
    machine::Pc facts = machine::FactoryMbr();
    facts.encryptableVolumes.emplace();
    for (const std::string& letter : letters) {
        machine::EncryptableVolume volume;
        volume.deviceId = "\\\\?\\Volume{" + std::to_string(facts.encryptableVolumes->size()) + "}\\";
        volume.persistentVolumeId = "{" + letter + "}";
        volume.driveLetter = letter;
        volume.encryptionMethod = 1;
        facts.encryptableVolumes->push_back(volume);
    }
    return facts;
}

struct Story {
    const char* name;
    machine::Pc facts;
    int isKnown;   // IsExistEncryptVolume and GetAllEncryptVolume
    WCHAR letter;  // GetEncryptVolume
    Text letters;  // GetAllEncryptVolume
};

void PrintTo(const Story& story, std::ostream* out) {
    *out << story.name;
}

class EncryptedVolumes : public testing::TestWithParam<Story> {};

TEST_P(EncryptedVolumes, EveryQuery_ReturnsThem) {
    const Story& story = GetParam();
    Application application(story.facts);
    WCHAR letters[33] = {TEXT('?')};
    EXPECT_EQ(application.kestova.IsExistEncryptVolume(), story.isKnown);
    EXPECT_EQ(application.kestova.GetEncryptVolume(), story.letter);
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 33), story.isKnown);
    EXPECT_EQ(Text(letters), story.letters);
    EXPECT_EQ(application.pc.facts, story.facts);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Story stories[] = {
    {"without_bitlocker", machine::FactoryMbr(), 0, TEXT('0'), TEXT("")},
    {"none", Encrypting({}), 1, TEXT('0'), TEXT("")},
    {"one", Encrypting({"D:"}), 1, TEXT('D'), TEXT("D")},
    {"two", Encrypting({"C:", "D:"}), 1, TEXT('0'), TEXT("CD")},
    // The single letter keeps the case of BitLocker.
    {"lower_case", Encrypting({"d:"}), 1, TEXT('d'), TEXT("D")},
    {"no_letter", Encrypting({""}), 1, TEXT('\0'), TEXT("")},
    // A volume without a letter adds nothing.
    {"second_without_letter", Encrypting({"C:", "", "E:"}), 1, TEXT('0'), TEXT("CE")},
};

INSTANTIATE_TEST_SUITE_P(Every, EncryptedVolumes, testing::ValuesIn(stories),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(GetAllEncryptVolume, MoreVolumesThanRoom_CutsAndTerminates) {
    Application application(Encrypting({"C:", "D:", "E:"}));
    WCHAR letters[4] = {TEXT('1'), TEXT('2'), TEXT('3'), TEXT('4')};
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 3), 1);
    EXPECT_EQ(Text(letters, 4), Text(TEXT("CD\0"
                                          "4"),
                                     4));
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 1), 1);
    EXPECT_EQ(Text(letters, 4), Text(TEXT("\0D\0"
                                          "4"),
                                     4));
}

TEST(GetAllEncryptVolume, NoRoom_WritesNothing) {
    Application application(Encrypting({"C:"}));
    WCHAR letters[1] = {TEXT('?')};
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 0), 1);
    EXPECT_EQ(letters[0], TEXT('?'));
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(nullptr, 33), 1);
}

TEST(GetAllEncryptVolume, FailedQuery_EmptiesTheBuffer) {
    Application application(machine::FactoryMbr());
    WCHAR letters[2] = {TEXT('?'), TEXT('?')};
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 2), 0);
    EXPECT_EQ(letters[0], TEXT('\0'));
}

TEST(GetAllEncryptVolume, MoreThan32Volumes_Returns32Letters) {
    Application application(Encrypting(std::vector<std::string>(40, "C:")));
    WCHAR letters[34] = {};
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 33), 1);
    EXPECT_EQ(Text(letters), Text(32, TEXT('C')));
}

TEST(EncryptedVolumes, NoEncryptionLayer_EveryQueryReturnsNone) {
    Application application(Encrypting({"C:"}));
    const internals::WithoutEncryptionLayer without(application.kestova);
    application.pc.journal.Clear();
    WCHAR letters[2] = {TEXT('?'), TEXT('?')};
    EXPECT_EQ(application.kestova.IsExistEncryptVolume(), 0);
    EXPECT_EQ(application.kestova.GetEncryptVolume(), TEXT('0'));
    EXPECT_EQ(application.kestova.GetAllEncryptVolume(letters, 2), 0);
    EXPECT_EQ(letters[0], TEXT('\0'));
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::IsExistEncryptVolume\\tStart\n"
              "4 Kestova::IsExistEncryptVolume\\tEnd. bReturn = {int 0}\n"
              "4 Kestova::GetEncryptVolume\\tStart\n"
              "4 Kestova::GetEncryptVolume\\tEnd. cDriveLetter = {char 0}\n"
              "4 Kestova::GetAllEncryptVolume\\tStart\n"
              "4 Kestova::GetAllEncryptVolume\\tEnd. bReturn = {int 0}\n");
}

}  // namespace
