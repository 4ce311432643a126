// All mistakes of a description in one reading.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/description/description.h"
#include "tests/machine/description/random_pc.h"

namespace {

using namespace machine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr size_t longestKey = 32767;

// "3:7 disks[0].offset: what is wrong".
std::vector<std::string> Found(const std::string& text) {
    std::vector<std::string> found;
    for (const Mistake& mistake : FindMistakes(text))
        found.push_back(std::to_string(mistake.line) + ":" + std::to_string(mistake.column) + " " +
                        mistake.place + ": " + mistake.what);
    return found;
}

TEST(FindMistakes, DescriptionsOfRandomPcs_FindsNone) {
    for (uint32_t seed = 0; seed < 100; ++seed)
        EXPECT_THAT(Found(WriteDescription(RandomPc(seed))), IsEmpty()) << seed;
}

TEST(FindMistakes, SeveralMistakes_NamesEachWithItsPlaceInTheOrderOfTheText) {
    EXPECT_THAT(
        Found(R"({
    // A comment, "with": {quotes
    "os": "windows",
    "disks": [{"number": 0, "style": "mbr", "size": "1 GiB", "partitions": [
        {"number": 1, "ofset": 512, "size": "1 MiB", "active": true}, /* [ */
        {"number": "x", "offset": "2 MiB", "size": "1 MiB"}]}],
    "faults": [{"code": 5}]
})"),
        ElementsAre("3:5 os: unknown key \"os\" (did you mean \"system\": {\"kind\": \"windows\"}?)",
                    "5:9 disks[0].partitions[0]: the key \"offset\" is missing",
                    "5:23 disks[0].partitions[0].ofset: unknown key \"ofset\" (did you mean \"offset\"?)",
                    "5:54 disks[0].partitions[0].active: unknown key \"active\" (did you mean "
                    "\"bootIndicator\": 1?)",
                    "6:10 disks[0].partitions[1].number: must be a whole number, like 39 or \"0x27\"",
                    "7:16 faults[0]: the key \"call\" is missing"));
}

TEST(FindMistakes, FilesAndRegistry_GoOnBehindEachMistake) {
    EXPECT_THAT(Found(R"({"host": {"files": {"a": 5, "b:c": "", "d": ""}},
"registry": {"k": {"v": 5, "w": 6}}})"),
                ElementsAre("1:21 host.files.a: must be text, not a number",
                            StartsWith("1:29 host.files[\"b:c\"]: must be a path without drive"),
                            "2:20 registry.k.v: must be text, not a number",
                            "2:28 registry.k.w: must be text, not a number"));
}

TEST(FindMistakes, KeysThatStandTwice_AreNamedWhereTheyStandLast) {
    EXPECT_THAT(Found("{\"name\": \"one\",\n \"name\": \"two\"}"),
                ElementsAre("2:2 name: the key stands twice"));
}

TEST(FindMistakes, ContradictionsOfRightValues_AreNamedToo) {
    EXPECT_THAT(
        Found(R"({"disks": [
{"number": 0, "pack": "none", "style": "mbr", "size": "1 GiB", "partitions": [
    {"number": 1, "offset": "1 MiB", "size": "2 MiB"},
    {"number": 1, "offset": "2 MiB", "size": "2 MiB"}]},
{"number": "x"}],
"wmiOrder": [0, 0, 3]})"),
        ElementsAre("2:15 disks[0].pack: unknown pack \"none\"; list it under packs",
                    "4:6 disks[0].partitions[1].number: 1 is taken by disks[0].partitions[0].number",
                    "4:19 disks[0].partitions[1].offset: the partition overlaps disks[0].partitions[0]",
                    StartsWith("5:2 disks[1].number: must be a whole number"),
                    "6:17 wmiOrder[1]: 0 is taken by wmiOrder[0]"));
}

TEST(FindMistakes, ContradictionsOfSeveralThings_DoNotHideEachOther) {
    EXPECT_THAT(
        Found(R"({"packs": [{"name": "a"}, {"name": "a"}],
"disks": [{"number": 0, "pack": "b", "style": "unknown"}],
"wmiOrder": [7, 7]})"),
        ElementsAre("1:28 packs[1].name: \"a\" is taken by packs[0].name",
                    StartsWith("2:25 disks[0].pack: unknown pack \"b\""),
                    "3:14 wmiOrder[0]: there is no disk 7", "3:17 wmiOrder[1]: 7 is taken by wmiOrder[0]",
                    "3:17 wmiOrder[1]: there is no disk 7"));
}

// What stands in the place of a number that cannot be read is nobody's number.
TEST(FindMistakes, NumbersThatCannotBeRead_AreTakenByNone) {
    EXPECT_THAT(Found(R"({"disks": [{"number": "x"}, {"number": 0}, {}]})"),
                ElementsAre(StartsWith("1:13 disks[0].number: must be"),
                            "1:44 disks[2]: the key \"number\" is missing"));
    EXPECT_THAT(Found(R"({"disks": [{"number": 0}], "wmiOrder": ["x", 0]})"),
                ElementsAre(StartsWith("1:41 wmiOrder[0]: must be")));
}

// One for each partition, however many it overlaps.
TEST(FindMistakes, PartitionsThatAllOverlap_AreOneMistakeEach) {
    std::string partitions;
    for (int number = 1; number <= 50; ++number)
        partitions += (number > 1 ? "," : "") + ("{\"number\": " + std::to_string(number)) +
                      ", \"offset\": 512, \"size\": 512}";
    const std::string disk = "{\"number\": 0, \"size\": 4096, \"partitions\": [" + partitions + "]}";
    EXPECT_EQ(Found("{\"disks\": [" + disk + "]}").size(), 49u);
}

// The offset of the second partition is unknown, so nothing is said of where it lies.
TEST(FindMistakes, ContradictionWithAMistake_IsLeftOut) {
    EXPECT_THAT(Found(R"({"disks": [{"number": 0, "style": "mbr", "size": "1 GiB", "partitions": [
    {"number": 1, "offset": 0, "size": "2 MiB"},
    {"number": 2, "offset": [], "size": "2 MiB"}]}]})"),
                ElementsAre(StartsWith("3:19 disks[0].partitions[1].offset: must be a whole number")));
}

TEST(FindMistakes, TextThatIsNotJson_HasOneMistakeWhereTheParserStopped) {
    EXPECT_THAT(Found("{\n  \"name\": \"a\",\n  name: 5\n}"), ElementsAre(StartsWith("3:4 : no JSON: ")));
    EXPECT_THAT(Found(""), ElementsAre(StartsWith("1:1 : no JSON: ")));
    EXPECT_THAT(Found("{\"name\": 99999999999999999999999e999}"),
                ElementsAre(StartsWith("1:10 : 99999999999999999999999e999 is too large")));
}

// A byte order mark counts as the bytes that it is.
TEST(FindMistakes, TextBehindAUtf8Mark_IsFoundInItsLine) {
    EXPECT_THAT(Found("\xEF\xBB\xBF{\n \"nam\": \"a\"}"),
                ElementsAre("2:2 nam: unknown key \"nam\" (did you mean \"name\"?)"));
}

TEST(FindMistakes, MoreValuesThanAPcHas_AreOneMistake) {
    std::string list;
    for (int i = 0; i < 10001; ++i)
        list += i == 0 ? "0" : ",0";
    EXPECT_EQ(Found("{\"wmiOrder\": [" + list + "]}").size(), 1u);
    std::string files;
    for (int i = 0; i < 200; ++i) {
        files += (i == 0 ? "\"" : ",\"") + std::to_string(i);
        for (int depth = 0; depth < 100; ++depth)
            files += "/d";
        files += "\": \"\"";
    }
    const std::vector<std::string> found = Found("{\"host\": {\"files\": {" + files + "}}}");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_THAT(found.front(), testing::HasSubstr("more than 10000 values"));
}

// Behind the mistake at which the parser stopped, nothing of the text counts.
TEST(FindMistakes, HostileRest_TakesNeitherTimeNorMemory) {
    const std::string key(longestKey, 'k');
    std::string entries(2000000, '0');
    for (size_t at = 1; at < entries.size(); at += 2)
        entries[at] = ',';
    EXPECT_EQ(Found("[" + entries + "0]").size(), 1u);
    EXPECT_EQ(Found("{\"" + key + "\": [" + entries + "0]}").size(), 1u);
}

TEST(FindMistakes, NestedDeeperThanADescription_IsOneMistake) {
    EXPECT_EQ(Found(std::string(100000, '[')).size(), 1u);
    EXPECT_EQ(Found("{\"name\": " + std::string(100, '[') + std::string(100, ']') + "}").size(), 1u);
}

}  // namespace
