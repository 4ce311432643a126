#include "tests/vds/vds_session.h"

namespace {

const std::string diskString = "VDS_DISK_PROP string";

}  // namespace

VdsSession::VdsSession(machine::Pc facts) : pc(std::move(facts)) {
    partition_.emplace();
    EXPECT_TRUE(partition_->Initialize());
    pc.journal.Clear();
}

VdsSession::~VdsSession() {
    End();
    EXPECT_TRUE(pc.ledger.Violations().empty()) << pc.ledger.Violations().front();
}

void VdsSession::End() {
    if (!partition_) return;
    partition_.reset();
    com_.reset();
}

machine::Partition& VdsSession::Partition(uint32_t number) {
    for (machine::Partition& partition : Disk().partitions) {
        if (partition.number == number) return partition;
    }
    throw std::out_of_range("no such partition");
}

void VdsSession::Fail(const std::string& call, uint32_t code, uint32_t nth, bool afterEffect) {
    pc.faults.Arm({.call = call, .nth = nth, .afterEffect = afterEffect, .code = code});
}

Holdings VdsSession::Left(int diskRecords) {
    constexpr int stringsOfRecord = 5;
    End();
    Holdings left = pc.ledger.Outstanding();
    left[diskString] -= diskRecords * stringsOfRecord;
    if (left[diskString] == 0) left.erase(diskString);
    return left;
}

Holdings VdsSession::LeftBesideStrings() {
    End();
    Holdings left = pc.ledger.Outstanding();
    left.erase(diskString);
    return left;
}

std::string Lines(std::initializer_list<std::string_view> lines) {
    std::string text;
    for (const std::string_view line : lines) {
        text.append(line).append("\n");
    }
    return text;
}

const std::string firstDiskRecords = Lines({
    "4 Kestova CVDSPartition::GetFirstInternalDriveNumber Start",
    "4 Kestova CVDSPartition::GetFirstInternalDriveNumber bWindowsPE = FALSE",
    "4 Kestova CVDSEx::QueryDisks\\tStart",
    "4 Kestova CVDSPartition::GetFirstInternalDriveNumber lNumberOfDisks = {long 1}",
    "4 Kestova CVDSPartition::GetPhysicalDriveNumber\\tStart. pszName = \\\\?\\PhysicalDrive0",
    "4 Kestova CVDSPartition::GetPhysicalDriveNumber\\tEnd (TRUE). Number = {int 0}",
    "4 Kestova CVDSPartition::GetFirstInternalDriveNumber  DiskNumber = nDiskNumber = {int 0}",
    "4 Kestova CVDSPartition::GetFirstInternalDriveNumber End DiskNumber = {int 0} bFind = {int 1}",
});

const std::string queryPartitionsRecords = "4 Kestova CVDSPartition::QueryPartitions Start\n" +
                                           firstDiskRecords +
                                           Lines({
                                               "4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                               "4 Kestova CVDSEx::GetVdsAdvancedDisk End",
                                               "4 Kestova CVDSPartition::QueryPartitions End",
                                           });

const std::string refusedPartitionsRecords =
    "4 Kestova CVDSPartition::QueryPartitions Start\n" + firstDiskRecords +
    Lines({
        "4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
        "4 Kestova CVDSEx::GetVdsAdvancedDisk End",
        "1 Kestova CVDSPartition::QueryPartitions QueryPartitions S_OK != hResult. hResult = "
        "{long -2147467259} GetLastError = {ulong 2}",
    });

machine::Disk PlainDisk(uint32_t number, uint64_t size) {
    machine::Disk disk;
    disk.number = number;
    disk.vdsName = "\\\\?\\PhysicalDrive" + std::to_string(number);
    disk.size = size;
    disk.signature = number + 1;
    machine::Partition partition;
    partition.number = 1;
    partition.offset = 1024ULL * 1024;
    partition.size = size / 2;
    partition.mbrType = 0x07;
    disk.partitions = {partition};
    return disk;
}

machine::Pc WindowsPe(std::vector<machine::Disk> disks) {
    machine::Pc pc;
    pc.system.kind = machine::SystemKind::WindowsPe;
    pc.system.windowsDirectory = "X:\\Windows";
    pc.system.startOptions = " FASTDETECT MININT";
    pc.host.path = "X:\\Recovery\\Recovery.exe";
    pc.disks = std::move(disks);
    return pc;
}

machine::Disk KnownDisk(uint32_t number, uint64_t size, const std::string& location) {
    machine::Disk disk = PlainDisk(number, size);
    const std::string digit = std::to_string(number);
    disk.wmi = machine::WmiDisk{"\\\\.\\PHYSICALDRIVE" + digit, "IDE\\DISK" + digit, "IDE"};
    disk.location = location;
    disk.scsiAddress = machine::ScsiAddress{0, static_cast<uint8_t>(number), 0, 0};
    disk.controllers = {"PCI\\VEN_8086&DEV_2922\\" + digit};
    return disk;
}

machine::Pc WithSettingFile(std::vector<machine::Disk> disks) {
    machine::Pc pc = WindowsPe(std::move(disks));
    pc.host.files.PutFile("IDE.INI", "[Exclude]\r\n");
    return pc;
}

machine::Pc TwoTargets(uint64_t firstSize, uint64_t secondSize) {
    return WithSettingFile({KnownDisk(0, firstSize, "Bus Number 6, Target Id 0, LUN 0"),
                            KnownDisk(1, secondSize, "Bus Number 6, Target Id 1, LUN 0")});
}
