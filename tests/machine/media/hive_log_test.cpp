// Hives of an installed Windows that were not closed, with transaction logs that a builder of the tests has
// written.
#include <gmock/gmock.h>

#include <fstream>

#include "machine/api/registry/reg_tool.h"
#include "machine/facts/file_store.h"
#include "machine/facts/volume_files.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/hive/hivex_reader.h"
#include "tests/machine/media/hive_log_builder.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr uint32_t completed = 7;

const std::string applied = "x was not closed, and its transaction logs were applied to what is shown";

std::string NotApplied(const std::string& why) {
    return "x was not closed, and its transaction logs were not applied, because " + why +
           ": letters may be old";
}

std::string PartlyApplied(const std::string& why) {
    return applied + ", but not to the end, because " + why + ": letters may be old";
}

// The states of a hive: the one on the disk, which was not closed, and those after one change and two.
class HiveLogTest : public ImageTest {
  protected:
    void SetUp() override {
        std::string content;
        Disk disk = Attach(MadeImage("installed-windows.img"));
        ASSERT_EQ(disk.partitions[1].volume->store->Read("Windows/System32/config/SYSTEM", content), 0u);
        states_.push_back(content);
        AddState("\\\\DosDevices\\\\H:", 6);
        AddState("\\\\DosDevices\\\\I:", 9000);
        for (std::string& state : states_)
            Number(state, completed + 1, completed);
    }

    const std::string& Hive() const { return states_[0]; }
    const std::string& State(size_t changes) const { return states_[changes]; }
    // What leads to a state from the one before it.
    LogEntry Change(uint32_t number) const {
        return Difference(completed + number - 1, states_[number - 1], states_[number]);
    }
    std::string Bytes(uint32_t number) const { return BytesOf(Change(number)); }

    // Reads the hive, and expects these letters from a state, and one note.
    void ExpectState(size_t changes, const std::string& note, const std::map<std::string, std::string>& logs,
                     const std::string& hive) {
        const auto lettersOf = [](HivexReader& reader, HiveFile file) {
            RegistryKeys keys;
            EXPECT_EQ(reader.Read(std::move(file), keys), 0u);
            return keys["MountedDevices"];
        };
        const auto beside = [&](std::string_view suffix) {
            const auto log = logs.find(std::string(suffix));
            return log != logs.end() ? log->second : std::string();
        };
        std::string expected = states_[changes];
        Number(expected, completed, completed);
        HivexReader closed;
        HivexReader reader;
        EXPECT_EQ(lettersOf(reader, {hive, "x", beside}), lettersOf(closed, {expected, "x"}));
        EXPECT_THAT(reader.Notes(), ElementsAre(note));
        EXPECT_THAT(closed.Notes(), IsEmpty());
    }
    void ExpectState(size_t changes, const std::string& note,
                     const std::map<std::string, std::string>& logs) {
        ExpectState(changes, note, logs, Hive());
    }

  private:
    // Adds a value of that many bytes to the letters.
    void AddState(const std::string& value, size_t bytes) {
        const std::string hive = (Folder() / "state").string();
        std::ofstream(hive, std::ios::binary) << states_.back();
        std::ofstream keys(hive + ".reg");
        keys << "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SYSTEM\\MountedDevices]\n\""
             << value << "\"=hex(3):00";
        for (size_t i = 1; i < bytes; ++i)
            keys << ",0" << i % 10;
        keys << "\n";
        keys.close();
        OutputOf("hivexregedit --merge '" + hive + "' --prefix 'HKEY_LOCAL_MACHINE\\SYSTEM' '" + hive +
                 ".reg'");
        states_.push_back(ContentOf(hive));
    }

    std::vector<std::string> states_;
};

// The first bytes of an entry that Windows wrote, and their hash in it.
TEST(LogHash, HeaderOfARealEntry_IsItsHash) {
    const std::string header(
        "HvLE\0\x4E\0\0\0\0\0\0\3\0\0\0\0\x40\2\0\4\0\0\0\x56\xD5\x29\xCE\xC6\x32\x4B\x36", 32);
    EXPECT_EQ(LogHash(header), 0xD71FF4150787EF0C);
}

TEST_F(HiveLogTest, States_HaveMoreAndMoreLetters) {
    EXPECT_LT(Hive().size(), State(2).size());
    EXPECT_THAT(Change(1).pages, testing::Not(IsEmpty()));
    EXPECT_THAT(Change(2).pages, testing::Not(IsEmpty()));
}

TEST_F(HiveLogTest, HiveClosed_Read_IgnoresItsLogs) {
    std::string hive = Hive();
    Number(hive, completed, completed);
    HivexReader reader;
    RegistryKeys keys;
    EXPECT_EQ(reader.Read({hive, "x",
                           [&](std::string_view) {
                               ADD_FAILURE() << "read";
                               return LogOf(Hive(), {Bytes(1)});
                           }},
                          keys),
              0u);
    EXPECT_THAT(keys["MountedDevices"], SizeIs(5));
    EXPECT_THAT(reader.Notes(), IsEmpty());
}

TEST_F(HiveLogTest, HiveOnAnImage_LoadedByReg_HasTheLettersOfTheLogBesideIt) {
    const std::string image = MadeImage("installed-windows.img");
    EmulatedPc pc(PcOfImages({image}, SystemKind::WindowsPe, ImageAccess::Overlay));
    VolumeFiles files(pc.facts);
    const std::string path = "D:\\Windows\\System32\\config\\SYSTEM";
    ASSERT_EQ(files.Write(path, Hive()), 0u);
    ASSERT_EQ(files.Write(path + ".LOG2", LogOf(Hive(), {Bytes(1)})), 0u);

    EXPECT_EQ(RunReg(pc, {"load", "HKLM\\TEMSYSTEM", path}), 0u);

    EXPECT_THAT(pc.facts.registry["HKLM\\TEMSYSTEM\\MountedDevices"], SizeIs(6));
    EXPECT_THAT(pc.facts.hiveReader->Notes(),
                ElementsAre(image + ": the registry of partition 2" + applied.substr(1)));
    EXPECT_EQ(RunReg(pc, {"unload", "HKLM\\TEMSYSTEM"}), 0u);
}

TEST_F(HiveLogTest, ReadTwice_NotesOnce) {
    HivexReader reader;
    RegistryKeys keys;
    EXPECT_EQ(reader.Read({Hive(), "x"}, keys), 0u);
    EXPECT_EQ(reader.Read({Hive(), "x"}, keys), 0u);
    EXPECT_THAT(reader.Notes(), ElementsAre(NotApplied("there are none")));
}

TEST_F(HiveLogTest, NoLogs_Read_ReturnsTheLettersOfTheHive) {
    ExpectState(0, NotApplied("there are none"), {});
}

TEST_F(HiveLogTest, OneLog_Read_ReturnsItsLetters) {
    ExpectState(1, applied, {{".LOG1", LogOf(Hive(), {Bytes(1)})}});
    ExpectState(1, applied, {{".LOG2", LogOf(Hive(), {Bytes(1)})}});
    ExpectState(1, applied, {{".LOG", LogOf(Hive(), {Bytes(1)})}});
    ExpectState(2, applied, {{".LOG1", LogOf(Hive(), {Bytes(1), Bytes(2)})}});
}

TEST_F(HiveLogTest, ChangesInBothLogs_Read_AppliesThemInTheirOrder) {
    const std::string first = LogOf(Hive(), {Bytes(1)});
    const std::string second = LogOf(Hive(), {Bytes(2)});
    ExpectState(2, applied, {{".LOG1", first}, {".LOG2", second}});
    ExpectState(2, applied, {{".LOG1", second}, {".LOG2", first}});
}

TEST_F(HiveLogTest, ChangesOfBefore_Read_AreSkipped) {
    const LogEntry old = {completed - 1, Le32(Hive(), 40), {{0, std::string(4096, 'X')}}};
    ExpectState(1, applied, {{".LOG1", LogOf(Hive(), {BytesOf(old), Bytes(1)})}});
}

// What an earlier use of the file has left behind the entries.
TEST_F(HiveLogTest, OtherChangesBehind_Read_AreSkipped) {
    const LogEntry old = {completed + 1, Le32(Hive(), 40), {{0, std::string(4096, 'X')}}};
    const LogEntry older = {completed - 3, Le32(Hive(), 40)};
    ExpectState(1, applied, {{".LOG1", LogOf(Hive(), {Bytes(1), BytesOf(older), BytesOf(old)})}});
}

TEST_F(HiveLogTest, ChangesOfAnotherState_Read_AreNotApplied) {
    for (const uint32_t number : {completed - 1, completed + 1, completed + 1000}) {
        LogEntry entry = Change(1);
        entry.number = number;
        ExpectState(0, NotApplied("they belong to another state of it"),
                    {{".LOG1", LogOf(Hive(), {BytesOf(entry)})}});
    }
}

TEST_F(HiveLogTest, LastEntryTorn_Read_AppliesThoseBefore) {
    const std::string log = LogOf(Hive(), {Bytes(1), Bytes(2)});
    const std::string note = PartlyApplied("entry 8 is damaged");
    ExpectState(1, note, {{".LOG1", log.substr(0, log.size() - 512)}});
    std::string unwritten = log;
    unwritten.replace(log.size() - 4096, 4096, 4096, '\0');
    ExpectState(1, note, {{".LOG1", unwritten}});
}

TEST_F(HiveLogTest, AnyHashDamaged_Read_DoesNotApplyTheEntry) {
    const std::string log = LogOf(Hive(), {Bytes(1)});
    for (const size_t at : {520u, 536u, 543u, 544u, 551u, 552u, 600u}) {
        std::string damaged = log;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        ExpectState(0, NotApplied("entry 7 is damaged"), {{".LOG1", damaged}});
    }
}

TEST_F(HiveLogTest, DamagedInOneLog_Read_AppliesTheOtherOnes) {
    std::string damaged = LogOf(Hive(), {Bytes(1)});
    damaged[600] = static_cast<char>(damaged[600] ^ 1);
    const std::string whole = LogOf(Hive(), {Bytes(1)});
    ExpectState(1, applied, {{".LOG1", damaged}, {".LOG2", whole}});
    ExpectState(1, applied, {{".LOG1", whole}, {".LOG2", damaged}});
}

TEST_F(HiveLogTest, EntryOutsideTheHive_Read_IsRefused) {
    const uint32_t size = Le32(Hive(), 40);
    const std::string page(4096, 'X');
    const auto expect = [&](const LogEntry& entry, const std::string& why) {
        ExpectState(0, NotApplied("entry 7 " + why), {{".LOG1", LogOf(Hive(), {BytesOf(entry)})}});
    };
    expect({completed, size, {{size, page}}}, "changes bytes behind its end");
    expect({completed, size, {{size - 4095, page}}}, "changes bytes behind its end");
    expect({completed, size, {{0xFFFFF000, page}}}, "changes bytes behind its end");
    expect({completed, 0xFFFFF000, {{0, page}}}, "enlarges it by more than the logs hold");
    expect({completed, size + 1, {{0, page}}}, "is damaged");
}

TEST_F(HiveLogTest, EntryClaimsMorePagesThanItHas_Read_IsRefused) {
    const uint32_t size = Le32(Hive(), 40);
    const auto expectDamaged = [&](std::string entry, size_t at, uint32_t number) {
        PutLe32(entry, at, number);
        PutLe64(entry, 24, LogHash(entry.substr(40)));
        PutLe64(entry, 32, LogHash(entry.substr(0, 32)));
        ExpectState(0, NotApplied("entry 7 is damaged"), {{".LOG1", LogOf(Hive(), {entry})}});
    };
    const std::string entry = BytesOf({completed, size, {{0, std::string(512, 'X')}}});
    expectDamaged(entry, 20, 10'000);
    expectDamaged(entry, 20, 0xFFFFFFFF);
    expectDamaged(entry, 44, 4096);
    expectDamaged(entry, 4, 0);
    expectDamaged(BytesOf({completed, size}).substr(0, 40), 4, 40);
    expectDamaged(entry, 4, 0xFFFFFE00);
}

TEST_F(HiveLogTest, LogWithoutSoundHeader_Read_IsNotApplied) {
    const std::string log = LogOf(Hive(), {Bytes(1)});
    std::string open = log;
    Number(open, completed + 1, completed);
    std::string sum = log;
    sum[508] = static_cast<char>(sum[508] ^ 1);
    std::string part = log.substr(0, 508);  // with the sum that the missing bytes are
    PutLe32(part, 500, Le32(part, 500) ^ Le32(log, 508));
    for (const std::string& damaged :
         {open, sum, part, 'x' + log.substr(1), log.substr(0, 511), std::string(4096, '\0')})
        ExpectState(0, NotApplied("they are damaged"), {{".LOG1", damaged}});
}

TEST_F(HiveLogTest, OldLog_Read_ReturnsItsLetters) {
    for (const char* const suffix : {".LOG", ".LOG1", ".LOG2"}) {
        ExpectState(1, applied, {{suffix, OldLogOf(Hive(), State(1))}});
        ExpectState(2, applied, {{suffix, OldLogOf(Hive(), State(2))}});
    }
}

TEST_F(HiveLogTest, OldLogOfAnotherTime_Read_IsNotApplied) {
    std::string state = State(1);
    state[12] = '\1';
    ExpectState(0, NotApplied("they belong to another state of it"), {{".LOG", OldLogOf(Hive(), state)}});
}

TEST_F(HiveLogTest, OldLogTruncated_Read_IsNotApplied) {
    const std::string log = OldLogOf(Hive(), State(1));
    ExpectState(0, NotApplied("they are damaged"), {{".LOG", log.substr(0, log.size() - 1)}});
    ExpectState(1, applied, {{".LOG1", log.substr(0, log.size() - 1)}, {".LOG2", log}});
}

TEST_F(HiveLogTest, OldLogOfAnySize_Read_IsNotApplied) {
    std::string state = State(1);
    PutLe32(state, 40, 0xFFFFF000);
    Number(state, completed, completed);
    ExpectState(0, NotApplied("they are damaged"), {{".LOG", OldLogOf(state, state)}});
}

}  // namespace
}  // namespace machine
