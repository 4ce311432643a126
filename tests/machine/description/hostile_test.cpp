// Texts that are made to take time or memory: each is refused with its place, long before it does.
#include <gtest/gtest.h>

#include "machine/description/description.h"

namespace {

using namespace machine;

// The error of a description; empty for a valid one.
std::string ErrorOf(const std::string& text) {
    try {
        ReadDescription(text, "pc.json");
        return "";
    } catch (const DescriptionError& error) {
        return error.what();
    }
}

std::string Repeated(size_t times, const std::function<std::string(size_t)>& make) {
    std::string text;
    for (size_t number = 0; number < times; ++number)
        text += (number > 0 ? "," : "") + make(number);
    return text;
}

std::string Times(size_t times, const std::string& part) {
    return Repeated(times, [&](size_t) { return part; });
}

constexpr const char* tooMany = "more than 10000 values, files and folders; no PC has so many";

TEST(HostileDescription, DeepLists_AreRefused) {
    std::string place;
    for (int level = 0; level < 32; ++level)
        place += "[0]";
    EXPECT_EQ(ErrorOf(std::string(1'000'000, '[')), "pc.json: " + place + ": nested deeper than 32 levels");
}

TEST(HostileDescription, DeepObjects_AreRefused) {
    std::string text;
    for (int i = 0; i < 100'000; ++i)
        text += "{\"a\":";
    const std::string error = ErrorOf(text);

    EXPECT_TRUE(error.starts_with("pc.json: a.a.a.a.")) << error.substr(0, 100);
    EXPECT_TRUE(error.ends_with(".a: nested deeper than 32 levels")) << error.substr(0, 200);
}

TEST(HostileDescription, ManyVolumes_AreRefused) {
    EXPECT_EQ(ErrorOf("{\"volumes\": [" + Times(10'000, "{}") + "]}"),
              std::string("pc.json: volumes[9998]: ") + tooMany);
}

TEST(HostileDescription, ManyRegistryValues_AreRefused) {
    const std::string values =
        Repeated(10'000, [](size_t number) { return "\"v" + std::to_string(number) + "\":\"\""; });

    EXPECT_EQ(ErrorOf("{\"registry\": {\"HKLM\": {" + values + "}}}"),
              std::string("pc.json: registry.HKLM.v9997: ") + tooMany);
}

TEST(HostileDescription, ManyFiles_AreRefused) {
    const std::string files =
        Repeated(5'000, [](size_t number) { return "\"f" + std::to_string(number) + "\":\"\""; });

    EXPECT_EQ(ErrorOf("{\"host\": {\"files\": {" + files + "}}}"),
              std::string("pc.json: host.files.f4997: ") + tooMany);
}

// A path of n bytes can imply n / 2 folders, whose paths together have n * n / 4.
TEST(HostileDescription, FilesInManyFolders_AreRefused) {
    std::string below;
    for (int i = 0; i < 100; ++i)
        below += "/b";
    const std::string files =
        Repeated(300, [&](size_t number) { return "\"" + std::to_string(number) + below + "\":\"\""; });

    const std::string error = ErrorOf("{\"host\": {\"files\": {" + files + "}}}");

    EXPECT_TRUE(error.starts_with("pc.json: host.files[\"96/b/b/b")) << error.substr(0, 100);
    EXPECT_TRUE(error.ends_with(tooMany)) << error.substr(0, 100);
}

TEST(HostileDescription, LongPath_IsRefused) {
    const std::string path(261, 'p');

    EXPECT_EQ(ErrorOf("{\"host\": {\"files\": {\"" + path + "\": \"\"}}}"),
              "pc.json: host.files." + path + ": is longer than 260 bytes");
    EXPECT_EQ(ErrorOf("{\"host\": {\"files\": {\"" + path.substr(1) + "\": \"\"}}}"), "");
}

TEST(HostileDescription, LongTextOrKey_IsRefused) {
    const std::string text(32768, 't');

    EXPECT_EQ(ErrorOf("{\"name\": \"" + text + "\"}"), "pc.json: name: is longer than 32767 bytes");
    EXPECT_EQ(ErrorOf("{\"name\": \"" + text.substr(1) + "\"}"), "");
    EXPECT_EQ(ErrorOf("{\"host\": {\"" + text + "\": 1}}"), "pc.json: host: a key longer than 32767 bytes");
}

TEST(HostileDescription, LongNumber_IsRefusedWithItsBeginning) {
    EXPECT_EQ(ErrorOf("{\"disks\": [{\"number\": " + std::string(100'000, '9') + "}]}"),
              "pc.json: line 1, column 23: " + std::string(200, '9') + "... is too large");
}

TEST(HostileDescription, LongTextThatIsNoJson_IsRefusedWithItsBeginning) {
    const std::string error = ErrorOf("{\"name\": \"" + std::string(100'000, 'n') + "\n");

    EXPECT_TRUE(error.starts_with("pc.json: line 1, column 100011: no JSON: syntax error"))
        << error.substr(0, 300);
    EXPECT_LT(error.size(), 300u);
}

TEST(HostileDescription, LongContentOfFileAndValue_IsRead) {
    const std::string text(100'000, 't');
    const Pc pc = ReadDescription("{\"host\": {\"files\": {\"f\": \"" + text +
                                      "\"}}, \"registry\": {\"HKLM\": {\"v\": \"" + text + "\"}}}",
                                  "pc.json");

    EXPECT_EQ(pc.host.files.Find("f")->content, text);
    EXPECT_EQ(pc.registry.at("HKLM").at("v").data, text);
}

}  // namespace
