// A PC and a partition object connected to its Virtual Disk Service, as a host program has it.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/com_apartment.h"
#include "base/utf.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/support/transcript.h"
#include "vds/vds_ex.h"
#include "vds/vds_partition.h"

using Holdings = std::map<std::string, int>;

class VdsSession {
  public:
    // Initialises COM, connects and forgets what was recorded by then.
    explicit VdsSession(machine::Pc facts);
    ~VdsSession();

    CVDSPartition* operator->() { return &*partition_; }
    CVDSPartition& operator*() { return *partition_; }
    machine::Disk& Disk(size_t position = 0) { return pc.facts.disks.at(position); }
    machine::Partition& Partition(uint32_t number);
    std::string Records() const { return Transcript(pc.journal); }
    // Every call of that name fails with the code from now on, or the nth one alone.
    void Fail(const std::string& call, uint32_t code, uint32_t nth = 0, bool afterEffect = false);
    // Ends the object and COM; what is on loan still. The strings of the disks' properties, which nobody ever
    // frees, are counted beyond those that so many disk records have.
    Holdings Left(int diskRecords);
    // The same without those strings, for operations that may have read any number of disks.
    Holdings LeftBesideStrings();

    machine::EmulatedPc pc;

  private:
    void End();

    std::optional<ComApartment> com_{std::in_place};
    std::optional<CVDSPartition> partition_;
};

// Records as Transcript writes them, one a line.
std::string Lines(std::initializer_list<std::string_view> lines);

// What GetFirstInternalDriveNumber and QueryPartitions write in an installed Windows whose one disk is 0.
extern const std::string firstDiskRecords;
extern const std::string queryPartitionsRecords;
// The same when the list of partitions is refused with E_FAIL.
extern const std::string refusedPartitionsRecords;

// An MBR disk in Windows PE without IDE.INI, for lists of disks.
machine::Disk PlainDisk(uint32_t number, uint64_t size = uint64_t{1} << 30);
machine::Pc WindowsPe(std::vector<machine::Disk> disks);

// A disk as WMI and its port driver report it too, and Windows PE with an IDE.INI.
machine::Disk KnownDisk(uint32_t number, uint64_t size, const std::string& location);
machine::Pc WithSettingFile(std::vector<machine::Disk> disks);
// The disks 0 and 1 on Target Ids of bus 6.
machine::Pc TwoTargets(uint64_t firstSize, uint64_t secondSize);
