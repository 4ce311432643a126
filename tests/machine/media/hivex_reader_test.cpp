// The SYSTEM hive of the installed Windows, read from its image and compared with hivexregedit.
#include "machine/media/hive/hivex_reader.h"

#include <gmock/gmock.h>

#include <fstream>

#include "machine/facts/file_store.h"
#include "machine/media/device/little_endian.h"
#include "platform/windows_api.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Key;

constexpr const char* hivePath = "windows/system32/CONFIG/system";
constexpr uint64_t rootKey = 0x1020;  // where the script that makes the image puts it

class HivexReaderTest : public ImageTest {
  protected:
    std::string Hive() {
        Disk disk = Attach(MadeImage("installed-windows.img"));
        std::string content;
        EXPECT_EQ(disk.partitions[1].volume->store->Read(hivePath, content), 0u);
        return content;
    }
    // The hive with the keys of a .reg file merged into it.
    std::string With(const std::string& keys) {
        const std::string hive = (Folder() / "hive").string();
        std::ofstream(hive, std::ios::binary) << Hive();
        std::ofstream(hive + ".reg") << "Windows Registry Editor Version 5.00\n\n" << keys;
        OutputOf("hivexregedit --merge '" + hive + "' --prefix 'HKEY_LOCAL_MACHINE\\SYSTEM' '" + hive +
                 ".reg'");
        return ContentOf(hive);
    }
};

TEST_F(HivexReaderTest, InstalledWindows_Read_ReturnsItsLetters) {
    RegistryKeys keys;

    ASSERT_EQ(HivexReader().Read({Hive()}, keys), 0u);

    EXPECT_THAT(keys, ElementsAre(Key(""), Key("MountedDevices")));
    auto& devices = keys["MountedDevices"];
    EXPECT_THAT(devices,
                ElementsAre(Key("\\DosDevices\\C:"), Key("\\DosDevices\\D:"), Key("\\DosDevices\\E:"),
                            Key("\\DosDevices\\F:"), Key("\\DosDevices\\G:")));
    // Signature and offset of an MBR partition from the disk's table.
    EXPECT_EQ(devices["\\DosDevices\\C:"].type, REG_BINARY);
    EXPECT_EQ(devices["\\DosDevices\\C:"].data, std::string("\xD4\xC3\xB2\xA1\0\0\x90\x02\0\0\0\0", 12));
    EXPECT_EQ(devices["\\DosDevices\\D:"], devices["\\DosDevices\\G:"]);
    EXPECT_EQ(devices["\\DosDevices\\E:"].data,
              std::string("DMIO:ID:\x52\x3A\x1F\x6F\0\0\0\x40\x80\0\0\0\0\0\0\x05", 24));
}

TEST_F(HivexReaderTest, ValuesOfEachKind_Read_MatchesHivexregedit) {
    RegistryKeys keys;
    const std::string hive = With(
        "[HKEY_LOCAL_MACHINE\\SYSTEM\\MountedDevices]\n@=\"the default\"\n"
        "\"Text\"=hex(1):47,00,72,00,f6,00,df,00,65,00,00,00\n\"Number\"=dword:00000102\n\"None\"=hex(0):\n");

    ASSERT_EQ(HivexReader().Read({hive}, keys), 0u);

    auto& devices = keys["MountedDevices"];
    EXPECT_EQ(devices[""], (RegistryValue{REG_SZ, "the default"}));
    EXPECT_EQ(devices["Text"], (RegistryValue{REG_SZ, "Größe"}));
    EXPECT_EQ(devices["Number"], (RegistryValue{REG_DWORD, std::string("\x02\x01\0\0", 4)}));
    EXPECT_EQ(devices["None"], (RegistryValue{REG_NONE, ""}));
    EXPECT_THAT(OutputOf("hivexregedit --export '" + (Folder() / "hive").string() + "' '\\MountedDevices'"),
                HasSubstr("\"Number\"=dword:00000102"));
}

TEST_F(HivexReaderTest, ValueOfUnknownType_Read_ReturnsItsNumber) {
    RegistryKeys keys;
    std::string hive =
        With("[HKEY_LOCAL_MACHINE\\SYSTEM\\MountedDevices]\n\"odd\"=hex(3):00,01,02,03,04,05\n");
    hive.replace(hive.find("odd") - 8, 4, "ABCD");

    ASSERT_EQ(HivexReader().Read({hive}, keys), 0u);

    EXPECT_EQ(keys["MountedDevices"]["odd"], (RegistryValue{0x44434241, std::string("\0\1\2\3\4\5", 6)}));
}

TEST_F(HivexReaderTest, FileWithoutHive_Read_LeavesTheKeysUnchanged) {
    const std::string hive = Hive();
    const RegistryKeys before = {{"Key", {}}};
    for (const std::string& file : {std::string(), std::string("regf"), std::string(8192, '\0'),
                                    hive.substr(0, 4096), hive.substr(0, hive.size() - 1)}) {
        RegistryKeys keys = before;
        EXPECT_EQ(HivexReader().Read({file}, keys), 1009u) << file.size();
        EXPECT_EQ(keys, before);
    }
}

// Only one key is read: what the others hold costs nothing, even if they form a cycle.
TEST_F(HivexReaderTest, OtherKeyIsTheRoot_Read_ReturnsTheLetters) {
    std::string hive = Hive();
    const size_t list = 0x1000 + Le32(hive, rootKey + 4 + 0x1C) + 4;
    ASSERT_EQ(hive.substr(list, 2), "lh");
    hive.replace(list + 12, 4, std::string("\x20\0\0\0", 4));  // the root as its own second subkey
    RegistryKeys keys;

    EXPECT_EQ(HivexReader().Read({hive}, keys), 0u);

    EXPECT_EQ(keys["MountedDevices"].size(), 5u);
}

// The key "Select" is a neighbour of "MountedDevices", in the same list and the same bin.
TEST_F(HivexReaderTest, LengthOfAnotherKeyDamaged_Read_ReturnsTheLetters) {
    const std::string hive = Hive();
    const size_t select = hive.find("Select") - 80;
    ASSERT_EQ(hive.substr(select + 4, 2), "nk");
    RegistryKeys whole;
    ASSERT_EQ(HivexReader().Read({hive}, whole), 0u);
    for (const uint32_t length : {0u, 3u, 0xFFFFFFFDu, 0x10u, 0xFFFFFF00u, 0x7FFFFFF8u, 0x80000000u}) {
        std::string damaged = hive;
        PutLe32(damaged, select, length);
        RegistryKeys keys;

        EXPECT_EQ(HivexReader().Read({damaged}, keys), 0u) << length;

        EXPECT_EQ(keys, whole) << length;
    }
}

TEST_F(HivexReaderTest, AnotherKeyIsNone_Read_ReturnsTheLetters) {
    std::string hive = Hive();
    hive.replace(hive.find("Select") - 76, 76, 76, 'X');
    RegistryKeys keys;

    EXPECT_EQ(HivexReader().Read({hive}, keys), 0u);

    EXPECT_EQ(keys["MountedDevices"].size(), 5u);
}

// Of the bin of the root, of the letters, of several pages, and one that follows it.
TEST_F(HivexReaderTest, HeaderOfABinDamaged_Read_ReturnsTheLetters) {
    std::string text = "[HKEY_LOCAL_MACHINE\\SYSTEM\\Setup]\n\"long\"=hex(3):00";
    for (int i = 1; i < 9'000; ++i)
        text += ",00";
    const std::string hive =
        With(text + "\n\n[HKEY_LOCAL_MACHINE\\SYSTEM\\Select]\n\"Last\"=dword:00000001\n");
    const size_t last = 0x1000 + Le32(hive, 40);
    size_t bins = 0;
    for (size_t bin = hive.find("hbin", 0x1000); bin < last; bin = hive.find("hbin", bin + 4), ++bins) {
        for (const size_t field : {0u, 4u, 8u}) {
            std::string damaged = hive;
            damaged.replace(bin + field, 4, "XXXX");
            RegistryKeys keys;

            EXPECT_EQ(HivexReader().Read({damaged}, keys), 0u) << bin << " " << field;

            EXPECT_EQ(keys["MountedDevices"].size(), 5u) << bin << " " << field;
        }
    }
    EXPECT_GE(bins, 4u);
}

TEST_F(HivexReaderTest, NoMountedDevices_Read_ReturnsTheRootAlone) {
    std::string hive = Hive();
    const size_t name = hive.find("MountedDevices");
    hive[name] = 'X';
    RegistryKeys keys;

    EXPECT_EQ(HivexReader().Read({hive}, keys), 0u);

    EXPECT_THAT(keys, ElementsAre(Key("")));
}

// Each of the values claims the bytes of the long one.
TEST_F(HivexReaderTest, ValuesThatShareBytes_Read_IsRefused) {
    std::string text = "[HKEY_LOCAL_MACHINE\\SYSTEM\\MountedDevices]\n\"long\"=hex(3):00";
    for (int i = 1; i < 12'000; ++i)
        text += ",00";
    for (int i = 10; i < 60; ++i)
        text += "\n\"share" + std::to_string(i) + "\"=hex(3):00,01,02,03,04,05,06,07";
    std::string hive = With(text + "\n");
    RegistryKeys keys;
    ASSERT_EQ(HivexReader().Read({hive}, keys), 0u);
    // Before the name of a value are: its name's length, the length and place of its data, and eight bytes.
    const auto dataOf = [&](const std::string& name) { return hive.find(name) - 16; };
    for (int i = 10; i < 60; ++i)
        hive.replace(dataOf("share" + std::to_string(i)), 8, hive, dataOf("long"), 8);

    EXPECT_EQ(HivexReader().Read({hive}, keys), 1009u);
}

}  // namespace
}  // namespace machine
