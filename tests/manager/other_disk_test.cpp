// The internal disk need not be disk 0: every operation acts on disk 1 as it acts on disk 0.
#include <gtest/gtest.h>

#include "base/utf.h"
#include "base/wide_string.h"
#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"

namespace {

machine::Pc Numbered(machine::Pc facts, uint32_t number) {
    facts.disks.resize(1);
    facts.disks[0].number = number;
    facts.disks[0].vdsName = "\\\\?\\PhysicalDrive" + std::to_string(number);
    return facts;
}

// The internal disk by its number among other outputs.
std::string DiskText(int disk, int internal) {
    return disk == internal ? "internal" : std::to_string(disk);
}

std::string LetterText(WCHAR letter) {
    return ToUtf8(WideString(1, letter));
}

// Results and outputs as one text; the disk's number is given.
using Answer = std::string (*)(Kestova&, int internal);

template <int (Kestova::*Question)()>
std::string Ask(Kestova& kestova, int) {
    return std::to_string((kestova.*Question)());
}

template <int (Kestova::*Question)(WCHAR&)>
std::string AskForLetter(Kestova& kestova, int) {
    WCHAR letter = TEXT('?');
    const int code = (kestova.*Question)(letter);
    return std::to_string(code) + " " + LetterText(letter);
}

template <DWORD (Kestova::*Question)(int&, int&, WCHAR&)>
std::string AskForPlace(Kestova& kestova, int internal) {
    int disk = 77;
    int partition = 77;
    WCHAR letter = TEXT('?');
    const DWORD code = (kestova.*Question)(disk, partition, letter);
    return std::to_string(code) + " " + DiskText(disk, internal) + " " + std::to_string(partition) + " " +
           LetterText(letter);
}

template <typename Tag>
std::string Search(Kestova& kestova, int internal) {
    int disk = 77;
    int partition = 77;
    int exists = 77;
    const int code = (kestova.*Open(Tag()))(disk, partition, exists);
    return std::to_string(code) + " " + DiskText(disk, internal) + " " + std::to_string(partition) + " " +
           std::to_string(exists);
}

std::string DiskType(Kestova& kestova, int) {
    tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
    const int code = kestova.GetCurrentDiskType(type);
    return std::to_string(code) + " " + std::to_string(type);
}

std::string LetterAndBack(Kestova& kestova, int internal) {
    std::string assigned = AskForLetter<&Kestova::AssignRecoveryPartition>(kestova, internal) +
                           AskForLetter<&Kestova::AssignWinREPartition>(kestova, internal);
    kestova.RemoveRecoveryPartition();
    kestova.RemoveWinREPartition();
    return assigned;
}

std::string Setting(Kestova& kestova, int) {
    WCHAR file[MAX_PATH] = {};
    const int code = (kestova.*Open(internals::GetSystemVolumeIniTag()))(file, MAX_PATH);
    return std::to_string(code) + " " + ToUtf8(file);
}

std::string Status(Kestova& kestova, int) {
    return std::to_string((kestova.*Open(internals::CheckMBRRcvprtStatusTag()))(1));
}

struct Operation {
    const char* name;
    Answer answer;
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const Operation operations[] = {
    {"GetCurrentDiskType", DiskType},
    {"ActiveOrvoBootPartition", AskForLetter<&Kestova::ActiveOrvoBootPartition>},
    {"DisableOrvoBootPartition", Ask<&Kestova::DisableOrvoBootPartition>},
    {"ActiveGPTSystemPartition", AskForLetter<&Kestova::ActiveGPTSystemPartition>},
    {"DisableGPTSystemPartition", Ask<&Kestova::DisableGPTSystemPartition>},
    {"AssignRecoveryPartition", AskForLetter<&Kestova::AssignRecoveryPartition>},
    {"AssignWinREPartition", AskForLetter<&Kestova::AssignWinREPartition>},
    {"RemoveRecoveryPartition", LetterAndBack},
    {"IsExistRcvprt", Ask<&Kestova::IsExistRcvprt>},
    {"GetBitLockerSystemInfo", AskForPlace<&Kestova::GetBitLockerSystemInfo>},
    {"GetVistaOSInfo", AskForPlace<&Kestova::GetVistaOSInfo>},
    {"IsExistRecoveryPartition", Search<internals::IsExistRecoveryPartitionTag>},
    {"IsExistWinREPartition", Search<internals::IsExistWinREPartitionTag>},
    {"GetSystemVolumeIni", Setting},
    {"CheckMBRRcvprtStatus", Status},
    {"SetRcvprtActive", Ask<&Kestova::SetRcvprtActive>},
    {"SetSystemActive", Ask<&Kestova::SetSystemActive>},
    {"SetPOneActive", Ask<&Kestova::SetPOneActive>},
    {"SetPTwoActive", Ask<&Kestova::SetPTwoActive>},
    {"GetActivePartitionNumber", Ask<&Kestova::GetActivePartitionNumber>},
    {"ClearActive", Ask<&Kestova::ClearActive>},
};

// What the operation answered, and the PC afterwards as if the disk were disk 0.
struct Outcome {
    std::string answer;
    machine::Pc facts;
};

Outcome OutcomeOn(const machine::Pc& facts, uint32_t number, const Operation& operation) {
    Application application(Numbered(facts, number));
    std::string answer = operation.answer(application.kestova, static_cast<int>(number));
    return {std::move(answer), Numbered(application.pc.facts, 0)};
}

class OtherDisk : public testing::TestWithParam<Operation> {};

}  // namespace

TEST_P(OtherDisk, InternalDisk1_ActsAsOnDisk0) {
    for (const machine::Pc& facts : {machine::FactoryMbr(), machine::FactoryGpt(), machine::WinPeMedia()}) {
        const Outcome expected = OutcomeOn(facts, 0, GetParam());
        const Outcome outcome = OutcomeOn(facts, 1, GetParam());
        EXPECT_EQ(outcome.answer, expected.answer);
        EXPECT_EQ(outcome.facts, expected.facts);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, OtherDisk, testing::ValuesIn(operations),
                         [](const auto& tested) { return std::string(tested.param.name); });
