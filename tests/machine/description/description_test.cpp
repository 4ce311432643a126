// What a description means, and the errors of an invalid one.

#include "machine/description/description.h"

#include <gtest/gtest.h>

namespace {

using namespace machine;

Pc Read(const std::string& text) {
    return ReadDescription(text, "pc.json");
}

// The error of a description; empty for a valid one.
std::string ErrorOf(const std::string& text) {
    try {
        Read(text);
        return "";
    } catch (const DescriptionError& error) {
        return error.what();
    }
}

// A PC with one disk of 1 GiB that has these further keys, or these partitions.
std::string WithDisk(const std::string& keys) {
    return R"({"disks": [{"number": 0, "size": "1 GiB", )" + keys + "}]}";
}

std::string WithPartitions(const std::string& partitions) {
    return WithDisk("\"partitions\": [" + partitions + "]");
}

struct WrongText {
    std::string name;
    std::string text;
    std::string error;  // after "pc.json: "
};

void PrintTo(const WrongText& wrong, std::ostream* out) {
    *out << wrong.name;
}

class WrongDescription : public testing::TestWithParam<WrongText> {};

TEST_P(WrongDescription, Read_FailsWithFilePlaceAndReason) {
    EXPECT_EQ(ErrorOf(GetParam().text), "pc.json: " + GetParam().error);
}

const WrongText wrongKinds[] = {
    {"NoObject", "[]", "top level: must be an object, not a list"},
    {"UnknownKey", R"({"dsks": []})", R"(dsks: unknown key "dsks" (did you mean "disks"?))"},
    {"UnknownKeyNearNothing", R"({"colour": 1})", R"(colour: unknown key "colour")"},
    {"UnknownKeyInside", WithPartitions(R"({"number": 1, "ofset": 1, "size": 1})"),
     R"(disks[0].partitions[0].ofset: unknown key "ofset" (did you mean "offset"?))"},
    {"MissingKey", WithPartitions(R"({"number": 1, "size": 1})"),
     R"(disks[0].partitions[0]: the key "offset" is missing)"},
    {"TextExpected", R"({"name": 5})", "name: must be text, not a number"},
    {"ObjectExpected", R"({"firmware": "bios"})", "firmware: must be an object, not text"},
    {"ListExpected", R"({"disks": {}})", "disks: must be a list, not an object"},
    {"FlagExpected", R"({"switches": {"activeFlagIsExclusive": 1}})",
     "switches.activeFlagIsExclusive: must be true or false"},
    {"NullWhereNoneIsAllowed", R"({"name": null})", "name: must be text, not null"},
    {"NumberWithFraction", R"({"disks": [{"number": 1.5}]})",
     R"(disks[0].number: must be a whole number, like 39 or "0x27")"},
    {"NumberInWrongText", R"({"disks": [{"number": "0x"}]})",
     R"(disks[0].number: must be a whole number, like 39 or "0x27")"},
    {"NumberNegative", R"({"disks": [{"number": -1}]})",
     "disks[0].number: -1 is out of range: 0 to 4294967295"},
    {"NumberTooLarge", WithPartitions(R"({"number": 1, "offset": 0, "size": 1, "mbrType": "0x127"})"),
     R"(disks[0].partitions[0].mbrType: "0x127" is out of range: 0 to 255)"},
    {"NumberBeyondAll", "{\n \"disks\": [{\"number\": 1e999}]\n}", "line 2, column 23: 1e999 is too large"},
    {"SizeWithUnknownUnit", R"({"disks": [{"number": 0, "size": "15 GB"}]})",
     R"(disks[0].size: "15 GB" is no size: write 1048576, "0x100000" or "1 MiB" (KiB, MiB, GiB, TiB))"},
    {"SizeWithUnknownUnitAndNoBlank", R"({"disks": [{"number": 0, "size": "15GB"}]})",
     R"(disks[0].size: "15GB" is no size: write 1048576, "0x100000" or "1 MiB" (KiB, MiB, GiB, TiB))"},
    {"OffsetInTheMiddleOfASector", WithPartitions(R"({"number": 1, "offset": 1048577, "size": "1 MiB"})"),
     "disks[0].partitions[0].offset: must be a multiple of 512, the size of a sector"},
    {"SizeTooLarge", R"({"disks": [{"number": 0, "size": "99999999 TiB"}]})",
     R"(disks[0].size: "99999999 TiB" is too large)"},
    {"Word", R"({"firmware": {"kind": "uefy"}})",
     R"(firmware.kind: unknown word "uefy" (did you mean "uefi"?); it is one of: bios, uefi)"},
    {"Guid", WithDisk(R"("style": "gpt", "guid": "c12a7328")"),
     R"(disks[0].guid: "c12a7328" is no GUID like "c12a7328-f81f-11d2-ba4b-00a0c93ec93b")"},
    {"Letters", R"({"volumes": [{"letters": "c"}]})",
     R"(volumes[0].letters: "c" must be upper-case letters from A to Z)"},
    {"DriveName", R"({"encryptableVolumes": [{"driveLetter": "C"}]})",
     R"(encryptableVolumes[0].driveLetter: "C" must be a letter from A to Z and a colon, like "C:")"},
    {"StorageDescriptorSize", R"({"disks": [{"number": 0, "storageDescriptorSize": 7}]})",
     "disks[0].storageDescriptorSize: must be from 8 to 65536 bytes"},
    {"LargeStorageDescriptor", R"({"disks": [{"number": 0, "storageDescriptorSize": 65537}]})",
     "disks[0].storageDescriptorSize: must be from 8 to 65536 bytes"},
    {"ShortDescriptor", R"({"switches": {"shortDescriptor": "cut"}})",
     R"(switches.shortDescriptor: unknown word "cut"; it is one of: fills, more-data, fails)"},
    {"CountOfAnotherCall", R"({"faults": [{"call": "CreateFileW", "code": 0, "count": 1}]})",
     "faults[0].count: is for the Next of an enumerator"},
    {"EncryptionMethod", R"({"encryptableVolumes": [{"encryptionMethod": "aes-12"}]})",
     R"(encryptableVolumes[0].encryptionMethod: unknown word "aes-12" (did you mean "aes-128"?); it is one of: none, aes-128-diffuser, aes-256-diffuser, aes-128, aes-256, hardware, xts-aes-128, xts-aes-256, unknown)"},
    {"ListOfEncryptableVolumesExpected", R"({"encryptableVolumes": {}})",
     "encryptableVolumes: must be a list, not an object"},
    {"UnknownKeyOfTheShell", R"({"shell": {"millisecond": 1}})",
     R"(shell.millisecond: unknown key "millisecond" (did you mean "milliseconds"?))"},
    {"FlagOfTheSystem", R"({"system": {"emulates32Bit": 1}})", "system.emulates32Bit: must be true or false"},
    {"ErrorBesideMore", WithDisk(R"("location": {"error": 13, "text": "0"})"),
     R"(disks[0].location.text: unknown key "text")"},
};
INSTANTIATE_TEST_SUITE_P(Kinds, WrongDescription, testing::ValuesIn(wrongKinds),
                         [](const auto& row) { return row.param.name; });

const WrongText wrongFiles[] = {
    {"OddHex", R"({"host": {"files": {"IDE.INI": {"hex": "fff"}}}})",
     R"(host.files["IDE.INI"].hex: must be pairs of hexadecimal digits, like "ff fe 41 00")"},
    {"NoHex", R"({"host": {"files": {"a": {}}}})", R"(host.files.a: the key "hex" is missing)"},
    {"FolderWithContent", R"({"host": {"files": {"a/": "text"}}})",
     R"(host.files["a/"]: must be null, since the path is a folder's)"},
    {"FileWithoutContent", R"({"host": {"files": {"a": null}}})", "host.files.a: must be text, not null"},
    {"PathWithDrive", R"({"host": {"files": {"C:/a": ""}}})",
     R"(host.files["C:/a"]: must be a path without drive, like "sources/boot.wim", or "sources/data/" for a folder)"},
    {"SameFileInOtherCase", R"({"host": {"files": {"a": "", "A": ""}}})",
     R"(host.files.A: stands here already as "a")"},
    {"FolderThatIsAFile", R"({"host": {"files": {"a": "", "A/b": ""}}})",
     R"(host.files["A/b"]: lies below the file "a")"},
    {"FileThatIsAFolder", R"({"host": {"files": {"a/b": "", "A": ""}}})",
     R"(host.files.A: stands here already as "a")"},
    {"RegistryValueWithoutType", R"({"registry": {"HKLM": {"Value": {"hex": ""}}}})",
     R"(registry.HKLM.Value: the key "type" is missing)"},
    {"RegistryType", R"({"registry": {"HKLM": {"Value": {"type": "REG_BYNARY", "hex": ""}}}})",
     R"(registry.HKLM.Value.type: unknown word "REG_BYNARY" (did you mean "REG_BINARY"?); it is one of: REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD)"},
    {"RegistryKeyInOtherCase", R"({"registry": {"HKLM": {}, "hklm": {}}})",
     R"(registry.hklm: stands here already as "HKLM")"},
};
INSTANTIATE_TEST_SUITE_P(Files, WrongDescription, testing::ValuesIn(wrongFiles),
                         [](const auto& row) { return row.param.name; });

const WrongText contradictions[] = {
    {"KeyTwice", R"({"disks": [{"number": 0}, {"number": 1, "wmi": null, "number": 2}]})",
     "disks[1].number: the key stands twice"},
    {"LetterTwice", R"({"volumes": [{"letters": "XY"}, {"letters": "X"}]})",
     "volumes[1].letters: X is taken by volumes[0].letters"},
    {"LetterTwiceInOneVolume", R"({"volumes": [{"letters": "XX"}]})",
     "volumes[0].letters: X is taken by volumes[0].letters"},
    {"DiskNumberTwice", R"({"disks": [{"number": 0}, {"number": 0}]})",
     "disks[1].number: 0 is taken by disks[0].number"},
    {"PartitionNumberTwice",
     WithPartitions(R"({"number": 1, "offset": 0, "size": 1}, {"number": 1, "offset": 1, "size": 1})"),
     "disks[0].partitions[1].number: 1 is taken by disks[0].partitions[0].number"},
    {"PartitionsOverlap",
     WithPartitions(R"({"number": 1, "offset": 0, "size": 10}, {"number": 2, "offset": 9, "size": 1})"),
     "disks[0].partitions[1].offset: the partition overlaps disks[0].partitions[0]"},
    {"PartitionEmpty", WithPartitions(R"({"number": 1, "offset": 0, "size": 0})"),
     "disks[0].partitions[0].size: must not be 0"},
    {"PartitionBeyondTheEnd", WithPartitions(R"({"number": 1, "offset": "1 GiB", "size": 1})"),
     "disks[0].partitions[0].offset: lies beyond the end of the disk"},
    {"PartitionReachesBeyondTheEnd", WithPartitions(R"({"number": 1, "offset": 1, "size": "1 GiB"})"),
     "disks[0].partitions[0].size: reaches beyond the end of the disk"},
    {"PartitionSizeWrapsAround",
     WithPartitions(R"({"number": 1, "offset": 1, "size": "0xFFFFFFFFFFFFFFFF"})"),
     "disks[0].partitions[0].size: reaches beyond the end of the disk"},
    {"GptKeysOnMbrDisk",
     WithPartitions(
         R"({"number": 1, "offset": 0, "size": 1, "gptType": "c12a7328-f81f-11d2-ba4b-00a0c93ec93b"})"),
     "disks[0].partitions[0]: gptType and gptId are for disks of style \"gpt\""},
    {"GptNameOnMbrDisk", WithPartitions(R"({"number": 1, "offset": 0, "size": 1, "name": "a"})"),
     "disks[0].partitions[0]: attributes and name are for disks of style \"gpt\""},
    {"MbrKeysOnGptDisk",
     WithDisk(R"("style": "gpt", "partitions": [{"number": 1, "offset": 0, "size": 1, "mbrType": 7}])"),
     "disks[0].partitions[0]: mbrType and bootIndicator are for disks of style \"mbr\""},
    {"GuidOnMbrDisk", WithDisk(R"("guid": "c12a7328-f81f-11d2-ba4b-00a0c93ec93b")"),
     "disks[0].guid: is for disks of style \"gpt\""},
    {"SignatureOnGptDisk", WithDisk(R"("style": "gpt", "signature": 1)"),
     "disks[0].signature: is for disks of style \"mbr\""},
    {"PackNotListed", R"({"packs": [{"name": "spare"}], "disks": [{"number": 0, "pack": "sparr"}]})",
     R"(disks[0].pack: unknown pack "sparr" (did you mean "spare"?); list it under packs)"},
    {"PackTwice", R"({"packs": [{"name": "a"}, {"name": "a"}]})",
     R"(packs[1].name: "a" is taken by packs[0].name)"},
    {"PackWithoutName", R"({"packs": [{"name": ""}]})", "packs[0].name: must not be empty"},
    {"WmiOrderOfNoDisk", R"({"wmiOrder": [1]})", "wmiOrder[0]: there is no disk 1"},
    {"WmiOrderTwice", R"({"disks": [{"number": 1}], "wmiOrder": [1, 1]})",
     "wmiOrder[1]: 1 is taken by wmiOrder[0]"},
    {"EncryptableVolumeTwice", R"({"encryptableVolumes": [{"deviceId": "v"}, {}, {"deviceId": "v"}]})",
     "encryptableVolumes[2].deviceId: v is taken by encryptableVolumes[0].deviceId"},
    {"LetterOfTwoEncryptableVolumes",
     R"({"encryptableVolumes": [{"driveLetter": "C:"}, {"driveLetter": "C:"}]})",
     "encryptableVolumes[1].driveLetter: C: is taken by encryptableVolumes[0].driveLetter"},
    {"UnknownCode", R"({"faults": [{"call": "CreateFileW", "code": "E_FIAL"}]})",
     R"(faults[0].code: there is no code "E_FIAL"; did you mean "E_FAIL"?)"},
    {"CodeBelowAll", R"({"faults": [{"call": "CreateFileW", "code": -2147483649}]})",
     "faults[0].code: -2147483649 is out of range: -2147483648 to 4294967295"},
    {"UnknownCall", R"({"faults": [{"call": "CreateFile", "code": 5}]})",
     R"(faults[0].call: unknown call "CreateFile" (did you mean "CreateFileW"?))"},
    {"CallWithoutInterface", R"({"faults": [{"call": "ChangeAttributes", "code": 5}]})",
     R"(faults[0].call: unknown call "ChangeAttributes" (did you mean "IVdsAdvancedDisk::ChangeAttributes"?))"},
    {"SizeOfAnImage", R"({"disks": [{"number": 0, "image": "a.img", "size": 1}]})",
     "disks[0].size: not beside an image, which tells it"},
    {"OffsetOnAnImage",
     R"({"disks": [{"number": 0, "image": "a.img", "partitions": [{"number": 1, "offset": 1}]}]})",
     "disks[0].partitions[0].offset: not beside an image, which tells it"},
    {"LabelOnAnImage",
     R"({"disks": [{"number": 0, "image": "a.img", "partitions": [{"number": 1, "volume": {"label": ""}}]}]})",
     "disks[0].partitions[0].volume.label: not beside an image, which tells it"},
    {"ImageWithoutName", R"({"disks": [{"number": 0, "image": ""}]})", "disks[0].image: must name a file"},
};
INSTANTIATE_TEST_SUITE_P(Contradictions, WrongDescription, testing::ValuesIn(contradictions),
                         [](const auto& row) { return row.param.name; });

TEST(ReadDescription, SyntaxError_FailsWithLineAndColumn) {
    EXPECT_EQ(ErrorOf("{\n  // a comment\n  \"name\": oops\n}")
                  .rfind("pc.json: line 3, column 11: no JSON: syntax error", 0),
              0u)
        << ErrorOf("{\n  // a comment\n  \"name\": oops\n}");
    EXPECT_EQ(ErrorOf("").rfind("pc.json: line 1, column 1: no JSON: syntax error", 0), 0u) << ErrorOf("");
    EXPECT_EQ(ErrorOf("{\"name\": \"\xFF\"}").rfind("pc.json: line 1, column 11: no JSON", 0), 0u)
        << ErrorOf("{\"name\": \"\xFF\"}");
}

TEST(ReadDescription, EmptyObject_IsADefaultPc) {
    EXPECT_TRUE(Read("{}") == Pc());
}

TEST(ReadDescription, NumbersAndSizes_ReadInEveryNotation) {
    for (const char* const size :
         {"1048576", "\"1048576\"", "\"0x100000\"", "\"1024 KiB\"", "\"1 MiB\"", "\"1MiB\""}) {
        const Pc pc = Read(std::string(R"({"disks": [{"number": "0x0", "size": )") + size + "}]}");
        EXPECT_EQ(pc.disks.at(0).size, 1048576u) << size;
    }
}

TEST(ReadDescription, WordOrNumber_ReadsEither) {
    const Pc pc = Read(R"({"disks": [{"number": 0, "busType": 17}, {"number": 1, "busType": "nvme"},
                                      {"number": 2, "busType": "0x7F"}]})");
    EXPECT_EQ(pc.disks.at(0).busType, 17u);
    EXPECT_EQ(pc.disks.at(1).busType, 17u);
    EXPECT_EQ(pc.disks.at(2).busType, 127u);
}

TEST(ReadDescription, DiskWithNumberAndBus_GetsTheStandardNames) {
    const std::pair<const char*, const char*> interfaces[] = {
        {"sata", "IDE"},  {"ata", "IDE"},   {"atapi", "IDE"}, {"usb", "USB"},  {"firewire", "1394"},
        {"raid", "SCSI"}, {"nvme", "SCSI"}, {"sas", "SCSI"},  {"scsi", "SCSI"}};
    for (const auto& [bus, interfaceType] : interfaces) {
        const Pc pc = Read(std::string(R"({"disks": [{"number": 4, "busType": ")") + bus + "\"}]}");
        const Disk& disk = pc.disks.at(0);
        EXPECT_EQ(disk.vdsName, "\\\\?\\PhysicalDrive4");
        EXPECT_EQ(disk.storageBusType.value, disk.busType) << bus;
        ASSERT_TRUE(disk.wmi);
        EXPECT_EQ(disk.wmi->deviceId, "\\\\.\\PHYSICALDRIVE4");
        EXPECT_EQ(disk.wmi->interfaceType, interfaceType) << bus;
        EXPECT_NE(disk.wmi->pnpDeviceId.value().find("4"), std::string::npos) << bus;
    }
}

TEST(ReadDescription, NullForDiskFacts_RemovesTheDefault) {
    const Pc pc = Read(R"({"disks": [{"number": 0, "vdsName": null, "wmi": null},
                                      {"number": 1, "wmi": {"pnpDeviceId": null}}]})");
    EXPECT_FALSE(pc.disks.at(0).vdsName);
    EXPECT_FALSE(pc.disks.at(0).wmi);
    ASSERT_TRUE(pc.disks.at(1).wmi);
    EXPECT_FALSE(pc.disks.at(1).wmi->pnpDeviceId);
    EXPECT_EQ(pc.disks.at(1).wmi->deviceId, "\\\\.\\PHYSICALDRIVE1");
}

TEST(ReadDescription, ErrorObject_ReadsAsAFailingFact) {
    const Pc pc = Read(WithDisk(R"("location": {"error": 13}, "scsiAddress": {"error": 50})"));
    EXPECT_TRUE(pc.disks.at(0).location == Fact<std::string>::Fails(13));
    EXPECT_TRUE(pc.disks.at(0).scsiAddress == Fact<ScsiAddress>::Fails(50));
    EXPECT_TRUE(pc.disks.at(0).storageBusType == Fact<uint32_t>(11));
}

TEST(ReadDescription, WindowsPe_DefaultsToItsRamDrive) {
    const Pc pc = Read(R"({"system": {"kind": "windows-pe"}})");
    EXPECT_EQ(pc.system.windowsDirectory, "X:\\Windows");
    EXPECT_EQ(pc.system.startOptions, " FASTDETECT MININT");
    EXPECT_EQ(Read(R"({"system": {"kind": "windows-pe", "startOptions": null}})").system.startOptions,
              std::nullopt);
}

TEST(ReadDescription, EncryptableVolumes_CanBeAbsentEmptyOrListed) {
    EXPECT_FALSE(Read("{}").encryptableVolumes);
    EXPECT_FALSE(Read(R"({"encryptableVolumes": null})").encryptableVolumes);
    EXPECT_TRUE(Read(R"({"encryptableVolumes": []})").encryptableVolumes.value().empty());
    const Pc pc = Read(R"({"encryptableVolumes": [{"driveLetter": "C:", "encryptionMethod": "xts-aes-256"},
                                                  {"returnValue": "0x80310000", "encryptionMethod": 99}]})");
    EncryptableVolume encrypted;
    encrypted.driveLetter = "C:";
    encrypted.encryptionMethod = 7;
    EncryptableVolume locked;
    locked.returnValue = 0x80310000;
    locked.encryptionMethod = 99;
    EXPECT_TRUE(pc.encryptableVolumes.value() == (std::vector{encrypted, locked}));
}

// The library returns the letter in the case of the description.
TEST(ReadDescription, EncryptableVolume_KeepsTheCaseOfItsLetter) {
    const Pc pc = Read(R"({"encryptableVolumes": [{"driveLetter": "d:"}]})");
    EXPECT_EQ(pc.encryptableVolumes.value().at(0).driveLetter, "d:");
}

TEST(ReadDescription, CodesOfFaults_AreNumbersOrNames) {
    const machine::Pc pc = Read(R"({"faults": [{"call": "CreateFileW", "code": "ERROR_ACCESS_DENIED"},
      {"call": "CoInitializeEx", "code": "E_FAIL"}, {"call": "CoInitializeEx", "code": -2147467259},
      {"call": "CoInitializeEx", "code": "0x80004005"}]})");
    std::vector<uint32_t> codes;
    for (const machine::FaultRule& rule : pc.faults)
        codes.push_back(rule.code);
    EXPECT_EQ(codes, (std::vector<uint32_t>{5, 0x80004005, 0x80004005, 0x80004005}));
}

TEST(ReadDescription, Shell_DefaultsAreQuickAndWorking) {
    EXPECT_TRUE(Read("{}").shell == Shell());
    EXPECT_TRUE(
        Read(R"({"shell": {"milliseconds": 60000, "regFails": true, "tellsProcess": false}})").shell ==
        (Shell{.milliseconds = 60000, .regFails = true, .returnsProcess = false}));
}

TEST(ReadDescription, LogicalPartitionInsideExtendedOne_IsAccepted) {
    const Pc pc = Read(WithPartitions(R"({"number": 0, "offset": 51200, "size": 102400, "mbrType": "0x0F"},
                                         {"number": 1, "offset": 56320, "size": 512, "mbrType": 7})"));
    EXPECT_EQ(pc.disks.at(0).partitions.size(), 2u);
}

TEST(ReadDescription, RegistryValues_ReadAsTextOrBytes) {
    const Pc pc =
        Read(R"({"registry": {"HKLM\\A": {"Text": "a", "Bytes": {"type": "REG_BINARY", "hex": "00 Ff"}}}})");
    EXPECT_TRUE(pc.registry.at("HKLM\\A").at("Text") == (RegistryValue{1, "a"}));
    EXPECT_TRUE(pc.registry.at("HKLM\\A").at("Bytes") == (RegistryValue{3, std::string("\0\xFF", 2)}));
}

}  // namespace
