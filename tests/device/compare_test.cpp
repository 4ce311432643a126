// The order of two disks, row by row.
#include <gtest/gtest.h>

#include <ostream>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

// What the comparison looks at.
struct Row {
    int interfaceType = INTERFACE_IDE;
    int busType = BUS_TYPE_SATA;
    int location = -1;
    int marker = 0;
    int scsi[4] = {-1, 0, 0, 0};  // port, path, target, lun; no port: no address
    int number = 0;
};

struct Case {
    const char* name;
    Row candidate;
    Row best;
    bool candidateWins;
    bool hasScsi = true;
    bool hasLocation = true;
};

void PrintTo(const Case& row, std::ostream* out) {
    *out << row.name;
}

void Put(tagDiskDriveTable_t& table, int index, const Row& row) {
    table.nInterfaceType[index] = row.interfaceType;
    table.nBusType[index] = row.busType;
    table.nLocation[index] = row.location;
    table.nTargetLocation[index] = row.marker;
    table.bScsiAddress[index] = row.scsi[0] >= 0 ? 1 : 0;
    table.PortNumber[index] = static_cast<BYTE>(row.scsi[0]);
    table.PathId[index] = static_cast<BYTE>(row.scsi[1]);
    table.TargetId[index] = static_cast<BYTE>(row.scsi[2]);
    table.Lun[index] = static_cast<BYTE>(row.scsi[3]);
    table.nDriveNumber[index] = row.number;
}

Row At(int location, int marker = 0) {
    return {.location = location, .marker = marker};
}

Row On(int interfaceType, int busType, int location) {
    return {.interfaceType = interfaceType, .busType = busType, .location = location};
}

Row Scsi(int port, int path, int target, int lun, int number = 0) {
    return {.scsi = {port, path, target, lun}, .number = number};
}

Row Number(int number) {
    return {.number = number};
}

constexpr int IDE = INTERFACE_IDE;
constexpr int SCSI = INTERFACE_SCSI;
constexpr int ATA = BUS_TYPE_ATA;
constexpr int RAID = BUS_TYPE_RAID;
constexpr int SATA = BUS_TYPE_SATA;

const Case cases[] = {
    // both locations known, markers differ
    {"TargetOfBus6ReplacesALaterLocation", At(3, 1), At(2), true},
    {"TargetOfBus6LeavesLocation0", At(3, 1), At(0), false},
    {"TargetOfBus6ReplacesAnUnmarkedRow", At(3, 1), At(2, -1), true},
    {"Location0ReplacesATargetOfBus6", At(0), At(5, 1), true},
    {"SmallerLocationLeavesATargetOfBus6", At(1), At(5, 1), false},
    {"UnmarkedLocation0ReplacesATargetOfBus6", At(0, -1), At(5, 1), true},
    {"OtherMarkersThatDifferChangeNothing", At(0, -1), At(5), false},
    {"OtherMarkersThatDifferChangeNothingEither", At(0), At(5, -1), false},
    // same interface, same bus
    {"SmallerLocationWins", At(1), At(2), true},
    {"LargerLocationStaysBehind", At(2), At(1), false},
    {"EqualLocationKeepsTheFirst", At(1), At(1), false},
    {"LocationsAreSigned", At(-2), At(1), true},
    {"TargetsOfBus6AreComparedByLocation", At(1, 1), At(2, 1), true},
    // same interface, different buses
    {"AtaAt0Stays", On(IDE, RAID, 0), On(IDE, ATA, 0), false},
    {"SataAt0Stays", On(IDE, RAID, 0), On(IDE, SATA, 0), false},
    {"RaidAt0ReplacesAtaElsewhere", On(IDE, RAID, 0), On(IDE, ATA, 2), true},
    {"AtaAt0ReplacesSataElsewhere", On(IDE, ATA, 0), On(IDE, SATA, 2), true},
    {"RaidReplacesAtaElsewhere", On(IDE, RAID, 5), On(IDE, ATA, 2), true},
    {"SataElsewhereLeavesAta", On(IDE, SATA, 1), On(IDE, ATA, 2), false},
    {"SataAt0LeavesRaid", On(IDE, SATA, 0), On(IDE, RAID, 0), false},
    {"AtaAt0LeavesRaidElsewhere", On(IDE, ATA, 0), On(IDE, RAID, 5), false},
    // different interfaces, same bus
    {"IdeWinsAt0", On(IDE, SATA, 0), On(SCSI, SATA, 0), true},
    {"ScsiLosesAt0", On(SCSI, SATA, 0), On(IDE, SATA, 0), false},
    {"IdeAtAnotherEqualLocationLoses", On(IDE, SATA, 3), On(SCSI, SATA, 3), false},
    {"ScsiAtAnotherEqualLocationLoses", On(SCSI, SATA, 3), On(IDE, SATA, 3), false},
    {"ScsiWinsAtAnyOtherLocation", On(SCSI, RAID, 5), On(IDE, RAID, 2), true},
    {"IdeLosesAtAnyOtherLocation", On(IDE, RAID, 1), On(SCSI, RAID, 2), false},
    // different interfaces, different buses
    {"AtaAt0StaysBeforeScsi", On(SCSI, RAID, 0), On(IDE, ATA, 0), false},
    {"SataAt0StaysBeforeIde", On(IDE, ATA, 0), On(SCSI, SATA, 0), false},
    {"AtaAt0ReplacesScsiRaid", On(IDE, ATA, 0), On(SCSI, RAID, 0), true},
    {"SataAt0ReplacesScsiRaid", On(IDE, SATA, 0), On(SCSI, RAID, 3), true},
    {"ScsiReplacesAtaElsewhere", On(SCSI, RAID, 5), On(IDE, ATA, 1), true},
    {"ScsiAtaReplacesIdeRaid", On(SCSI, ATA, 4), On(IDE, RAID, 0), true},
    {"IdeElsewhereLeavesScsi", On(IDE, ATA, 2), On(SCSI, RAID, 1), false},
    // a location unknown, both SCSI addresses known
    {"SmallerPathWins", Scsi(0, 0, 9, 9), Scsi(0, 1, 0, 0), true},
    {"LargerPathLosesWhateverFollows", Scsi(0, 1, 0, 0), Scsi(0, 0, 9, 9), false},
    {"SmallerTargetWins", Scsi(0, 1, 0, 9), Scsi(0, 1, 1, 0), true},
    {"LargerTargetLosesWhateverFollows", Scsi(0, 1, 1, 0), Scsi(0, 1, 0, 9), false},
    {"SmallerLunWins", Scsi(0, 1, 1, 0), Scsi(0, 1, 1, 1), true},
    {"LargerLunLoses", Scsi(0, 1, 1, 2), Scsi(0, 1, 1, 1), false},
    {"EqualAddressesKeepTheFirst", Scsi(0, 1, 1, 1), Scsi(5, 1, 1, 1), false},
    {"EqualAddressesDoNotAskTheNumber", Scsi(0, 1, 1, 1, 0), Scsi(0, 1, 1, 1, 1), false, false, false},
    {"AddressesAreUnsigned", Scsi(0, 200, 0, 0), Scsi(0, 100, 0, 0), false},
    {"AddressesCountWhenOneLocationIsKnown", {.location = 5, .scsi = {0, 0, 0, 0}}, Scsi(0, 0, 1, 0), true},
    // neither
    {"SmallerNumberWinsWithoutAnyOtherFact", Number(1), Number(2), true, false, false},
    {"LargerNumberLoses", Number(2), Number(1), false, false, false},
    {"NumberDoesNotCountWhenADiskHasAnAddress", Number(1), Number(2), false, true, false},
    {"NumberDoesNotCountWhenADiskHasALocation", Number(1), Number(2), false, false, true},
    {"OneAddressAloneDecidesNothing", Scsi(0, 0, 0, 0, 1), Number(2), false, true, false},
    {"OneLocationAloneDecidesNothing", At(0), Number(2), false, false, true},
};

}  // namespace

class Compare : public testing::TestWithParam<Case> {};

// The row before both, which is like one of them, plays no part.
TEST_P(Compare, Row_KeepsOrReplacesTheDisk) {
    for (const Row& bystander : {GetParam().best, GetParam().candidate}) {
        const HostedPc pc(machine::FactoryMbr());
        tagDiskDriveTable_t table;
        table.nCount = 3;
        Put(table, 0, bystander);
        Put(table, 1, GetParam().best);
        Put(table, 2, GetParam().candidate);
        int best = 1;
        CDiskDrive().Compare(table, 2, best, GetParam().hasScsi, GetParam().hasLocation);
        EXPECT_EQ(best, GetParam().candidateWins ? 2 : 1);
        EXPECT_EQ(Transcript(pc.emulated.journal),
                  "4 Kestova CDiskDrive::Compare End. nTarget = {int " + std::to_string(best) + "}\n");
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, Compare, testing::ValuesIn(cases),
                         [](const auto& row) { return std::string(row.param.name); });
