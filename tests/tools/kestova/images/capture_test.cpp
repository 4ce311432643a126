// A disk image as a description that no longer needs the image.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class CaptureOfImage : public ProgramTest {
  protected:
    void Take(const std::string& image) {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/" + image + " .").status, 0);
    }
};

TEST_F(CaptureOfImage, FactoryDisk_AnswersAsTheImageAfterItIsGone) {
    Take("factory-mbr.img");
    ASSERT_EQ(Kestova("--image factory-mbr.img capture -o captured.json").status, 0);
    EXPECT_EQ(Shell("cmp factory-mbr.img " KESTOVA_TEST_IMAGES "/factory-mbr.img").status, 0);
    const char* const questions[] = {"call IsExistRcvprt", "call GetActivePartitionNumber",
                                     "call GetDriveLetter 0 2", "call GetDiskStyle", "letters"};
    std::vector<std::string> before;
    for (const std::string question : questions)
        before.push_back(Kestova("--image factory-mbr.img --json " + question).output);
    EXPECT_THAT(before, testing::Each(testing::Not(testing::IsEmpty())));
    Shell("rm factory-mbr.img");
    EXPECT_THAT(ReadFile("captured.json"), Not(HasSubstr("factory-mbr.img")));
    for (size_t at = 0; at < before.size(); ++at)
        EXPECT_EQ(Kestova(std::string("--pc captured.json --json ") + questions[at]).output, before[at]);
    EXPECT_EQ(Kestova("--pc captured.json boot recovery").status, 0);
}

TEST_F(CaptureOfImage, WithTheInstalledRegistry_KnowsItsLetters) {
    Take("installed-windows.img");
    ASSERT_EQ(
        Kestova("--image installed-windows.img --with-installed-registry capture -o captured.json").status,
        0);
    EXPECT_EQ(Kestova("--pc captured.json --json letters").output,
              Kestova("--image installed-windows.img --json letters").output);
    EXPECT_THAT(ReadFile("captured.json"), HasSubstr("offlineSystemHive"));
}

}  // namespace
