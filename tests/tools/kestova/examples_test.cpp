// The examples of the documentation write what their pages show; docs/operations.md has one of every
// operation.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;

using Examples = ProgramTest;

struct Example {
    std::string command;  // as typed
    std::string output;
};

std::string Text(const char* name) {
    std::ifstream file(std::string(KESTOVA_SOURCE_FOLDER "/") + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// Of the indented lines of the page: a command after "$ ", and below it its output, up to a line that is not
// indented.
std::vector<Example> ExamplesOf(const std::string& page) {
    const std::string indent = "    ";
    const std::string prompt = "    $ ";
    std::vector<Example> examples;
    std::istringstream lines(page);
    bool isExample = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(prompt)) {
            examples.push_back({line.substr(prompt.size()), ""});
            isExample = true;
        } else if (!line.empty() && !line.starts_with(indent)) {
            isExample = false;
        } else if (!line.empty() && isExample) {
            examples.back().output += line.substr(indent.size()) + "\n";
        }
    }
    return examples;
}

class ExamplesOfAPage : public ProgramTest, public testing::WithParamInterface<const char*> {};

TEST_P(ExamplesOfAPage, InTheirOrder_Run_WriteWhatThePageShows) {
    const std::vector<Example> examples = ExamplesOf(Text(GetParam()));
    EXPECT_FALSE(examples.empty());
    // Programs that an example starts find it, too.
    ASSERT_EQ(Shell("mkdir .programs && ln -s '" KESTOVA_PROGRAM "' .programs/kestova").status, 0);
    for (const Example& example : examples) {
        const Outcome outcome = Shell("PATH=\"$PWD/.programs:$PATH\"; " + example.command);
        EXPECT_EQ(outcome.status, 0) << example.command;
        EXPECT_EQ(outcome.output + outcome.errors, example.output) << example.command;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, ExamplesOfAPage,
                         testing::Values("docs/operations.md", "docs/hazards.md", "docs/command-line.md",
                                         "docs/recovery-partitions.md", "docs/survey.md", "docs/real-pc.md"));

// There is no Slurm here to run it.
TEST_F(Examples, ScriptOfThePageOnSurveys_HasTheSyntaxOfBash) {
    const std::string page = Text("docs/survey.md");
    const std::string begin = "```bash\n";
    const size_t at = page.find(begin);
    ASSERT_NE(at, std::string::npos);
    const size_t from = at + begin.size();
    WriteFile("job.sh", page.substr(from, page.find("```", from) - from));
    EXPECT_EQ(Shell("bash -n job.sh").status, 0);
    EXPECT_THAT(ReadFile("job.sh"), HasSubstr("#SBATCH --array="));
}

TEST_F(Examples, EachOperation_OnThePage_HasAnExample) {
    const std::string page = Text("docs/operations.md");
    std::istringstream names(
        Shell("'" KESTOVA_PROGRAM "' operations --json | sed -E 's/.*\"operation\":\"([^\"]*)\".*/\\1/'")
            .output);
    int operations = 0;
    for (std::string name; std::getline(names, name); ++operations) {
        const size_t section = page.find("\n## " + name + "\n");
        ASSERT_NE(section, std::string::npos) << name;
        const std::string example = page.substr(section, page.find("\n## ", section + 1) - section);
        EXPECT_THAT(example, HasSubstr("\n    $ ")) << name;
        EXPECT_THAT(example, HasSubstr("\n    " + name + "(")) << name;
    }
    EXPECT_GT(operations, 30);
}

}  // namespace
