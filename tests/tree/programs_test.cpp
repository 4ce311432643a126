// Tests and scripts start programs of the table packages.txt alone, and find them by their names.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tests/tree/shell_commands.h"

namespace {

namespace fs = std::filesystem;

const fs::path sources = KESTOVA_SOURCE_FOLDER;

// Keywords and builtins of the shell.
const std::set<std::string> shellWords = {
    "case",     "cd",     "command", "compgen", "continue", "done",    "echo",   "esac",  "exit",
    "complete", "export", "fi",      "for",     "local",    "mapfile", "printf", "pwd",   "read",
    "return",   "set",    "shift",   "source",  "trap",     "true",    "umask",  "unset", "wait"};

std::string ContentOf(const fs::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

std::set<std::string> ListedPrograms() {
    std::set<std::string> programs;
    std::istringstream table(ContentOf(sources / "packages.txt"));
    for (std::string row; std::getline(table, row);) {
        std::istringstream words(row);
        std::string group;
        std::string package;
        words >> group >> package;
        if (group.starts_with("#")) continue;
        for (std::string program; words >> program;)
            programs.insert(program);
    }
    return programs;
}

// By path.
std::map<fs::path, std::string> ShellScripts() {
    std::map<fs::path, std::string> scripts = {{"dev", ContentOf(sources / "dev")}};
    for (const char* const top : {"scripts", "tests", "tools", "fuzz", "packaging"}) {
        for (const auto& entry : fs::recursive_directory_iterator(sources / top)) {
            if (!entry.is_regular_file()) continue;
            const std::string content = ContentOf(entry.path());
            const std::string interpreter = content.substr(0, content.find('\n'));
            const bool isScript = interpreter.starts_with("#!") && interpreter.ends_with("sh");
            if (isScript || entry.path().extension() == ".sh")
                scripts[fs::relative(entry.path(), sources)] = content;
        }
    }
    return scripts;
}

}  // namespace

TEST(ShellCommands, EachPlaceOfACommand_IsRead) {
    EXPECT_THAT(CommandsOf("one a | two b && A=1 three c || ! four; if five; then nice six & fi\n"),
                testing::UnorderedElementsAre("one", "two", "three", "four", "five", "six", "fi"));
    EXPECT_THAT(CommandsOf("a=$(one \"$(two \"x\")\" | three) \"$(four)\" \\\n  five < <(six) 2>&1"),
                testing::UnorderedElementsAre("one", "two", "three", "four", "six"));
    EXPECT_THAT(CommandsOf("case $x in\n  a | b)\n    one ;;\n  *) two;;\nesac\n"),
                testing::UnorderedElementsAre("case", "one", "two", "esac"));
    EXPECT_THAT(CommandsOf("one <<'TEXT'\nno; no\nTEXT\ntwo # no\nthree='no; no'\nbash -c 'four; five'"),
                testing::UnorderedElementsAre("one", "two", "bash", "four", "five"));
    EXPECT_THAT(CommandsOf("f() { [[ a && no ]] && one; }; x=(no\n no2); for ((; no; ++no)); do two; done"),
                testing::UnorderedElementsAre("one", "for", "two", "done"));
}

TEST(ShellCommands, FunctionsOfEitherBody_AreRead) {
    EXPECT_THAT(FunctionsOf("one() {\n  :\n}\n\ntwo_2() (\n)\nthree() { :; }\nno\n"),
                testing::UnorderedElementsAre("one", "two_2", "three"));
}

TEST(Programs, ShellScripts_StartListedProgramsAlone) {
    std::set<std::string> known = ListedPrograms();
    known.insert(shellWords.begin(), shellWords.end());
    const std::map<fs::path, std::string> scripts = ShellScripts();
    for (const auto& [path, content] : scripts)
        known.merge(FunctionsOf(content));
    for (const auto& [path, content] : scripts) {
        for (const std::string& command : CommandsOf(content))
            EXPECT_TRUE(known.contains(command))
                << path << " starts " << command << ", which packages.txt does not list";
    }
    EXPECT_GT(scripts.size(), 15u);
}

TEST(Programs, TestsAndScripts_NameNoProgramByAFixedPath) {
    for (const char* const top : {"tests", "tools"}) {
        for (const auto& entry : fs::recursive_directory_iterator(sources / top)) {
            if (!entry.is_regular_file() || entry.path().filename() == "programs_test.cpp") continue;
            std::ifstream lines(entry.path(), std::ios::binary);
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with("#!")) continue;
                for (const char* const fixed : {"/usr/bin/", "/usr/sbin", "/sbin/"})
                    EXPECT_EQ(line.find(fixed), std::string::npos) << entry.path() << ": " << line;
            }
        }
    }
}
