// An object without memory: made, copied and assigned; and what another logging library receives.

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "machine/facts/machines.h"
#include "tests/faults/memory/failing_memory.h"
#include "tests/faults/memory/foreign_logger.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/application/two_systems.h"
#include "vds/vds_partition.h"

namespace {

using internals::PEDriveMapTag;
using internals::WinDriveMapTag;

// Storage of an object that is never destroyed: its source frees what both share.
struct Storage {
    alignas(Kestova) char bytes[sizeof(Kestova)];
};

// Three letters in each map; the object that owns the buffers frees them.
void FillMaps(Kestova& kestova) {
    for (const WCHAR letter : {TEXT('C'), TEXT('D'), TEXT('E')}) {
        (kestova.*Open(WinDriveMapTag()))[letter] = {new BYTE[1]{1}, 1};
        (kestova.*Open(PEDriveMapTag()))[letter] = {new BYTE[1]{2}, 1};
    }
}

void ForgetMaps(Kestova& kestova) {
    (kestova.*Open(WinDriveMapTag())).clear();
    (kestova.*Open(PEDriveMapTag())).clear();
}

void ExpectSharedPointersAndEmptyMaps(Kestova& copy, Kestova& source) {
    EXPECT_EQ(copy.*Open(internals::VolumeLayerTag()), source.*Open(internals::VolumeLayerTag()));
    EXPECT_EQ(copy.*Open(internals::EncryptionLayerTag()), source.*Open(internals::EncryptionLayerTag()));
    EXPECT_TRUE((copy.*Open(WinDriveMapTag())).empty());
    EXPECT_TRUE((copy.*Open(PEDriveMapTag())).empty());
}

TEST(ObjectWithoutMemory, Constructor_EachAllocationFails_LeavesThatMemberNull) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    for (uint32_t place = 1; place <= 4; ++place) {
        Storage storage;
        Kestova* made = nullptr;
        {
            const FailingMemory memory(place, false);
            made = new (storage.bytes) Kestova;
            ASSERT_TRUE(memory.HasFailed());
        }
        EXPECT_EQ(made->*Open(internals::EncryptionLayerTag()) == nullptr, place == 1);
        EXPECT_EQ(made->*Open(internals::VolumeLayerTag()) == nullptr, place == 2);
        std::destroy_at(made);
    }
}

TEST(ObjectWithoutMemory, Copy_EachAllocationFails_SharesThePointersAndHasEmptyMaps) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    Kestova source;
    FillMaps(source);
    for (uint32_t place = 1; place <= 6; ++place) {
        Storage storage;
        const FailingMemory memory(place, false);
        Kestova* const copy = new (storage.bytes) Kestova(source);
        ASSERT_TRUE(memory.HasFailed());
        ExpectSharedPointersAndEmptyMaps(*copy, source);
    }
}

TEST(ObjectWithoutMemory, Assignment_EachAllocationFails_SharesThePointersAndHasEmptyMaps) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    Kestova source;
    FillMaps(source);
    for (uint32_t place = 1; place <= 6; ++place) {
        Storage storage;
        Kestova* const target = new (storage.bytes) Kestova;
        for (void* const own : {static_cast<void*>(target->*Open(internals::VolumeLayerTag())),
                                static_cast<void*>(target->*Open(internals::EncryptionLayerTag()))})
            ASSERT_NE(own, nullptr);
        Storage owner;
        Kestova* const owned = new (owner.bytes) Kestova(*target);
        {
            const FailingMemory memory(place, false);
            *target = source;
            ASSERT_TRUE(memory.HasFailed());
        }
        ExpectSharedPointersAndEmptyMaps(*target, source);
        std::destroy_at(owned);
    }
}

// An object that reads the three letters of the running system, on a PC of its own.
struct RegistryReader {
    machine::EmulatedPc pc{TwoSystems()};
    Kestova kestova;
    std::basic_string<WCHAR> path = TEXT("SYSTEM\\MountedDevices");

    void Read() { (kestova.*Open(internals::ReadRegistryTag()))(path.data()); }
    size_t Letters() { return (kestova.*Open(PEDriveMapTag())).size(); }
};

std::vector<uint32_t> PlacesInReadRegistry() {
    RegistryReader reader;
    FailingMemory memory;
    reader.Read();
    memory.Stop();
    return memory.Places();
}

TEST(ObjectWithoutMemory, ReadRegistry_NoMemoryForTheDataOfALetter_LeavesThatOneOut) {
    int withoutOne = 0;
    for (const uint32_t place : PlacesInReadRegistry()) {
        RegistryReader reader;
        const FailingMemory memory(place, false);
        try {
            reader.Read();
        } catch (const std::bad_alloc&) {
            continue;  // it was that of the map
        }
        ASSERT_TRUE(memory.HasFailed());
        if (reader.Letters() == 2) ++withoutOne;
    }
    EXPECT_EQ(withoutOne, 3);
}

// An object that has selected the recovery partition, which has no letter, on a PC of its own.
struct LetterlessRecovery {
    static constexpr int recovery = 6;
    Application application{machine::FactoryGpt()};

    LetterlessRecovery() {
        CVDSPartition& partitions = *(application.kestova.*Open(internals::VolumeLayerTag()));
        partitions.SelectDisk(0);
        partitions.SelectPartition(recovery);
    }
    void Recognise() {
        int is = 0;
        (application.kestova.*Open(internals::IsRecoveryPartitionTag()))(0, recovery, is);
    }
};

std::vector<uint32_t> PlacesInRecognition() {
    LetterlessRecovery recovery;
    FailingMemory memory;
    recovery.Recognise();
    memory.Stop();
    EXPECT_EQ(recovery.application.pc.journal.Calls("IVdsAdvancedDisk::DeleteDriveLetter").size(), 1U);
    return memory.Places();
}

// Those of the deletion, too, which is then tried a second time.
TEST(ObjectWithoutMemory, TemporaryLetter_EachAllocationFailsOnce_IsDeleted) {
    for (const uint32_t place : PlacesInRecognition()) {
        LetterlessRecovery recovery;
        const FailingMemory memory(place, false);
        EXPECT_NO_THROW(recovery.Recognise());
        ASSERT_TRUE(memory.HasFailed());
        EXPECT_EQ(recovery.application.pc.facts, machine::FactoryGpt()) << place;
    }
}

TEST(ModuleContext, ConstructorCopiesAndDestructor_TakeNone) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    Received() = {};
    Storage storage;
    Storage copied;
    FailingMemory memory;
    Kestova* const made = new (storage.bytes) Kestova;
    FillMaps(*made);
    Kestova* const copy = new (copied.bytes) Kestova(*made);
    *copy = *made;
    ForgetMaps(*copy);
    std::destroy_at(made);
    memory.Stop();
    EXPECT_GE(memory.Places().size(), 10U);
    EXPECT_FALSE(memory.SawCurrentModule());
    EXPECT_GT(Received().count, 0);
    EXPECT_EQ(Received().ofCurrentModule, 0);
}

TEST(ForeignLogger, DiskWithoutAName_ReceivesNoNullText) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks.front().vdsName.reset();
    Application application(facts);
    Received() = {};
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), -1);
    EXPECT_GT(Received().count, 0);
    EXPECT_EQ(Received().nullTexts, 0);
}

}  // namespace
