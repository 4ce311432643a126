// docs/pc-description.md documents everything that the reader accepts, and its example is valid.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "machine/calls/call_table.h"
#include "machine/description/description.h"
#include "machine/description/types.h"

namespace {

using namespace machine;

std::string Page() {
    std::ifstream file(KESTOVA_SOURCE_FOLDER "/docs/pc-description.md", std::ios::binary);
    std::ostringstream page;
    page << file.rdbuf();
    return page.str();
}

// From a heading to the next one.
std::string Section(const std::string& heading) {
    const std::string page = Page();
    const size_t start = page.find("# " + heading + "\n");
    if (start == std::string::npos) return "";
    return page.substr(start, page.find("\n#", start) - start);
}

std::string Example() {
    const std::string page = Page();
    const std::string fence = "```json\n";
    const size_t start = page.find(fence) + fence.size();
    return page.substr(start, page.find("```", start) - start);
}

TEST(DescriptionPage, EveryKey_HasARowUnderItsObject) {
    const std::map<std::string, std::string> headings = {{"PC", "PC"},
                                                         {"firmware", "Firmware"},
                                                         {"system", "System"},
                                                         {"host", "Host"},
                                                         {"pack", "Pack"},
                                                         {"disk", "Disk"},
                                                         {"wmi", "WMI"},
                                                         {"scsiAddress", "SCSI address"},
                                                         {"partition", "Partition"},
                                                         {"volume", "Volume"},
                                                         {"extent", "Extent"},
                                                         {"shell", "Shell"},
                                                         {"encryptableVolume", "Encryptable volume"},
                                                         {"switches", "Switches"},
                                                         {"fault", "Faults"}};
    for (const auto& [object, keys] : description::AllKeys()) {
        std::string section = Section(headings.at(object));
        std::erase(section, '`');
        for (const auto& [key, words] : keys) {
            const std::string row = "\n| " + key + " | ";
            const size_t at = section.find(row);
            ASSERT_NE(at, std::string::npos) << object << "." << key;
            // The schema has the same words, as far as they go.
            EXPECT_FALSE(words.empty()) << object << "." << key;
            EXPECT_TRUE(section.substr(at + row.size()).starts_with(words)) << object << "." << key << words;
        }
    }
}

TEST(DescriptionPage, EveryCall_IsInTheRowOfItsKind) {
    const std::map<FailsWith, std::string> kinds = {{FailsWith::Hresult, "HRESULT"},
                                                    {FailsWith::Status, "status"},
                                                    {FailsWith::FalseAndLastError, "FALSE"},
                                                    {FailsWith::ZeroAndLastError, "zero"},
                                                    {FailsWith::NullAndLastError, "null"},
                                                    {FailsWith::InvalidHandle, "invalid handle"},
                                                    {FailsWith::Value, "value"}};
    const std::string section = Section("Faults");
    for (const CallInfo& call : AllCalls()) {
        const size_t start = section.find("\n| " + kinds.at(call.failsWith) + " | ");
        ASSERT_NE(start, std::string::npos) << call.name;
        const std::string row = section.substr(start, section.find('\n', start + 1) - start);
        const std::string name = "`" + std::string(call.name) + "`";
        EXPECT_NE(row.find(name), std::string::npos) << call.name;
        EXPECT_EQ(row.find(name + "*") != std::string::npos, call.changesPc) << call.name;
    }
}

TEST(DescriptionPage, Example_ReadsAndReadsBackTheSame) {
    const Pc pc = ReadDescription(Example(), "example.json");
    EXPECT_EQ(pc.name, "workshop");
    EXPECT_EQ(pc.disks.size(), 4u);
    EXPECT_EQ(pc.volumes.size(), 2u);
    EXPECT_EQ(pc.faults.size(), 4u);
    EXPECT_TRUE(ReadDescription(WriteDescription(pc), "example.json") == pc);
}

TEST(DescriptionPage, Example_ContainsEveryKey) {
    const std::string example = Example();
    for (const auto& [object, keys] : description::AllKeys()) {
        for (const auto& [key, words] : keys)
            EXPECT_NE(example.find("\"" + key + "\": "), std::string::npos) << object << "." << key;
    }
}

TEST(ReadDescription, TruncatedText_IsRefused) {
    const std::string example = Example();
    const size_t whole = example.rfind('}') + 1;
    for (size_t length = 0; length < whole; ++length)
        EXPECT_THROW(ReadDescription(example.substr(0, length), "example.json"), DescriptionError) << length;
    EXPECT_EQ(FindMistakes(example.substr(0, whole / 2)).size(), 1u);
}

// Changes one byte at a time: the text is either refused or read.
TEST(ReadDescription, DamagedText_IsReadOrRefused) {
    const std::string example = Example();
    const std::string damage("\"{9\0\xFF", 5);
    size_t refused = 0;
    for (size_t at = 0; at < example.size(); ++at) {
        std::string damaged = example;
        damaged[at] = damage[at % damage.size()];
        const bool isRight = FindMistakes(damaged).empty();
        try {
            ReadDescription(damaged, "example.json");
            EXPECT_TRUE(isRight) << at;
        } catch (const DescriptionError&) {
            EXPECT_FALSE(isRight) << at;
            ++refused;
        }
    }
    EXPECT_GT(refused, example.size() / 2);
}

}  // namespace
