// `kestova files`: what is at a path of a volume, on described PCs and on those that come with the tool.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Files : public ProgramTest {
  protected:
    void ExpectMessage(const std::string& place, const std::string& message) {
        const Outcome outcome = Kestova("--pc factory-mbr files '" + place + "'");
        EXPECT_EQ(outcome.status, 1) << place;
        EXPECT_EQ(outcome.output, "") << place;
        EXPECT_EQ(outcome.errors, "kestova: " + message + "\n");
    }
    // A PC whose data partition, D:, has one file.
    void WritePc(const std::string& name, const std::string& content) {
        WriteFile("pc.json", R"({"disks": [{"number": 0, "size": "100 GiB", "partitions": [
            {"number": 1, "offset": "1 MiB", "size": "50 GiB", "mbrType": 7,
             "volume": {"letters": "D", "files": {")" +
                                 name + R"(": ")" + content + R"("}}}]}]})");
    }
};

TEST_F(Files, FactoryMbr_FilesOfAFolder_AreListedByNameWithTheirSizes) {
    const Outcome outcome = Kestova("--pc factory-mbr files '1:\\sources'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output,
              "Name          Size\n"
              "boot.wim      3 B\n"
              "data          folder\n"
              "idf           folder\n"
              "Orvo          folder\n"
              "Qelhdrcv.ini  23 B\n");
}

TEST_F(Files, EverySpellingOfAPlace_Files_AreTheSame) {
    const std::string sources = Kestova("--pc winpe-two-disks files 1:/sources").output;
    EXPECT_THAT(sources, HasSubstr("Qelhdrcv.ini"));
    for (const char* const place :
         {"'1:\\SOURCES\\'", "'C:\\sources'", "c:sources", "c:/sources//", "0.1:/sources"})
        EXPECT_EQ(Kestova("--pc winpe-two-disks files " + std::string(place)).output, sources) << place;
    const std::string root = Kestova("--pc winpe-two-disks files 1").output;
    EXPECT_EQ(Kestova("--pc winpe-two-disks files C:").output, root);
    EXPECT_EQ(Kestova("--pc winpe-two-disks files 1:").output, root);
}

TEST_F(Files, FileTypedInOtherCase_Files_HasTheNameThatIsStored) {
    EXPECT_THAT(Kestova("--pc factory-mbr --hash files 1:/SOURCES/qelhdrcv.INI").output,
                HasSubstr("\nQelhdrcv.ini  23 B  "));
    EXPECT_THAT(Kestova("--pc factory-mbr --json files 1:/sources/BOOT.WIM").output,
                HasSubstr(R"("entries":[{"name":"boot.wim",)"));
}

TEST_F(Files, PartOfThePathMissing_Files_NameTheFirst) {
    ExpectMessage("1:\\sources\\nix\\x", "there is no \"nix\" in 1:\\sources");
    ExpectMessage("C:\\nix", "there is no \"nix\" in C:\\");
    ExpectMessage("1:\\sources\\boot.wim\\x", "1:\\sources\\boot.wim is a file, not a folder");
}

TEST_F(Files, NoVolumeThere_Files_SayWhatThereIs) {
    ExpectMessage("Q:\\", "no volume has the letter Q; there are C, D");
    ExpectMessage("9", "there is no partition 9 on disk 0, which has 1, 2, 3, 4");
    ExpectMessage("7.1", "there is no disk 7");
    ExpectMessage("4", "partition 4 of disk 0 holds no volume");
}

TEST_F(Files, NoPlace_Files_IsWrongUse) {
    for (const char* const place : {"sources", "C", ":", "1.", ".1", "-1", "1.2.3", "1x:", "'+1:'", "''"}) {
        const Outcome outcome = Kestova("--pc factory-mbr files " + std::string(place));
        EXPECT_EQ(outcome.status, 2) << place;
        EXPECT_EQ(outcome.output, "") << place;
    }
    EXPECT_THAT(
        Kestova("--pc factory-mbr files sources").errors,
        StartsWith("kestova: files: 'sources' is neither a letter, as C:\\sources, nor a partition, "));
    EXPECT_THAT(Kestova("--pc factory-mbr --hash status").errors,
                StartsWith("kestova: status does not use --hash"));
}

TEST_F(Files, LockedVolume_Files_SaySo) {
    WriteFile("pc.json", R"({"volumes": [{"letters": "D", "fileSystem": "BitLocker"}]})");
    const Outcome outcome = Kestova("--pc pc.json files D:");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kestova: the volume D: is locked by BitLocker\n");
    EXPECT_EQ(Kestova("--pc winpe-media files D:").errors,
              "kestova: the volume D: holds no file system that can be recognised\n");
}

TEST_F(Files, FolderInJson_Files_IsOneObject) {
    EXPECT_EQ(Kestova("--pc winpe-two-disks --json files C:/sources").output,
              R"({"path":"\\sources","kind":"folder","disk":0,"partition":1,"letter":"C","entries":[)"
              R"({"name":"boot.wim","kind":"file","bytes":3},)"
              R"({"name":"data","kind":"folder","bytes":null},)"
              R"({"name":"idf","kind":"folder","bytes":null},)"
              R"({"name":"Orvo","kind":"folder","bytes":null},)"
              R"({"name":"Qelhdrcv.ini","kind":"file","bytes":23}]})"
              "\n");
    EXPECT_THAT(
        Kestova("--pc factory-mbr --json files 1:/sources/boot.wim").output,
        StartsWith(R"({"path":"\\sources\\boot.wim","kind":"file","disk":0,"partition":1,"letter":null,)"
                   R"("entries":[{"name":"boot.wim",)"));
}

TEST_F(Files, FileWithHash_Files_HashesAsSha256sum) {
    WritePc("letter.txt", "Dear");
    const Outcome outcome = Kestova("--pc pc.json --hash files D:/letter.txt");
    EXPECT_EQ(outcome.status, 0);
    const std::string hash = Shell("printf Dear | sha256sum | cut -d' ' -f1").output;
    EXPECT_EQ(outcome.output, "Name        Size  SHA-256\nletter.txt  4 B   " + hash);
    EXPECT_THAT(Kestova("--pc pc.json --hash --json files D:").output,
                HasSubstr(R"("bytes":4,"sha256":")" + hash.substr(0, 64) + R"("}])"));
}

// A name is text from a medium: a terminal must not obey it.
TEST_F(Files, NameThatATerminalObeys_Files_ShowItEscaped) {
    WritePc("a\\u001b[31mb\\u009b2J\\u202Ec\\u00FC.txt", "x");
    const Outcome text = Kestova("--pc pc.json files D:");
    EXPECT_EQ(text.status, 0) << text.errors;
    EXPECT_EQ(text.output,
              "Name                              Size\n"
              "a\\u001B[31mb\\u009B2J\\u202Ec\xC3\xBC.txt  1 B\n");
    EXPECT_THAT(Kestova("--pc pc.json --json files D:").output,
                HasSubstr(R"("name":"a\u001b[31mb\u009b2J\u202ec\u00fc.txt")"));
    const std::string missing = Kestova("--pc pc.json files \"$(printf 'D:\\\\a\\033[31m')\"").errors;
    EXPECT_EQ(missing, "kestova: there is no \"a\\u001B[31m\" in D:\\\n");
    EXPECT_THAT(Kestova("--pc pc.json files \"$(printf 'x\\033[31m')\"").errors,
                StartsWith("kestova: files: 'x\\u001B[31m' is neither"));
}

TEST_F(Files, DryRun_Files_ChangeNothing) {
    EXPECT_THAT(Kestova("--pc factory-mbr --dry-run files 1").output, EndsWith("Nothing would change.\n"));
}

}  // namespace
