// Several threads, each with an object of its own, on one PC. Under the thread sanitizer (./dev threads) a
// race in the library ends the program.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "base/com_apartment.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "manager/kestova.h"
#include "tests/support/application/application.h"

namespace {

constexpr int threadCount = 8;
constexpr int rounds = 3;

// On each thread one object after another.
void OnManyThreads(const std::function<void(Kestova& kestova)>& body) {
    std::vector<std::thread> threads;
    for (int count = 0; count < threadCount; ++count) {
        threads.emplace_back([&] {
            const ComApartment com;
            for (int round = 0; round < rounds; ++round) {
                Kestova kestova;
                kestova.Initialize(false);
                body(kestova);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace

TEST(Threads, QuestionsOfManyObjects_AreAnsweredAsOfOne) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    std::atomic<int> right = 0;
    OnManyThreads([&](Kestova& kestova) {
        THardDiskType style = HARD_DISK_UNKNOWN;
        const bool disk = kestova.GetFirstInternalDriveNumber() == 0 && kestova.GetDiskStyle(style) == 1 &&
                          style == HARD_DISK_MBR && kestova.GetActivePartitionNumber() == 2;
        const bool volumes = kestova.GetDriveLetter(0, 2) == TEXT('C') && kestova.GetRCVDISC() == TEXT('0') &&
                             kestova.IsVistaOS(TEXT('C')) == 1 && kestova.IsEFIBootSystem() == 0;
        right += disk && volumes ? 1 : 0;
    });
    EXPECT_EQ(right, threadCount * rounds);
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

TEST(Threads, EncryptedVolumesAskedByManyObjects_AreThoseOfThePc) {
    const machine::EmulatedPc pc(machine::WinPeMedia());
    std::atomic<int> right = 0;
    OnManyThreads([&](Kestova& kestova) {
        right += kestova.GetEncryptVolume() == TEXT('D') && kestova.GetRCVUFD() == TEXT('U') ? 1 : 0;
    });
    EXPECT_EQ(right, threadCount * rounds);
}

// They take turns with the flag in any order; each success leaves it set.
TEST(Threads, SwitchesOfManyObjects_LeaveABootablePc) {
    machine::Pc facts = machine::FactoryMbr();
    facts.switches.activeFlagIsExclusive = true;
    machine::EmulatedPc pc(facts);
    OnManyThreads([](Kestova& kestova) {
        kestova.SetRcvprtActive();
        kestova.SetSystemActive();
    });
    EXPECT_EQ(ActivePartitions(pc).size(), 1U);
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

// Objects that translate letters share one hive and one batch file: one at a time.
TEST(Threads, LettersTranslatedOnOneThreadWhileOthersAsk_AreRight) {
    const machine::EmulatedPc pc(machine::WinPeMedia());
    std::atomic<bool> taken = false;
    std::atomic<int> right = 0;
    OnManyThreads([&](Kestova& kestova) {
        if (taken.exchange(true)) {
            right += kestova.GetFirstInternalDriveNumber() == 0 ? 1 : 0;
            return;
        }
        tagDriveInfo_t records[26] = {};
        right += kestova.GetWinDriveLetters(records, 26) == 1 && records[0].cDriveLetter == TEXT('C') ? 1 : 0;
    });
    EXPECT_EQ(right, threadCount * rounds);
    EXPECT_FALSE(pc.facts.registry.contains("HKLM\\TEMSYSTEM"));
}
