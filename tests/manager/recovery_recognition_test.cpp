// Whether one partition is the recovery partition, or the Windows RE partition.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

// One of the two kinds, as FactoryGpt has it.
struct Kind {
    const char* name;
    internals::Recognition recognise;
    uint32_t number;
    uint32_t numberOfOther;  // of the same type, with other contents
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

const Kind kinds[] = {
    {"is_recovery", Open(internals::IsRecoveryPartitionTag()), 6, 2},
    {"is_winre", Open(internals::IsWinREPartitionTag()), 2, 6},
};

struct Answer {
    int result;
    int is;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << "result " << answer.result << " is " << answer.is;
}

class RecoveryRecognition : public testing::TestWithParam<Kind> {
  protected:
    static machine::Pc WithLetters(uint32_t number, const std::string& letters) {
        machine::Pc facts = FactoryGpt();
        PartitionOf(facts, number).volume->letters = letters;
        return facts;
    }

    // Has the partition selected, as IsNeedHidePartition does, and looks at it; the journal begins with the
    // look.
    static Answer Look(Application& application, uint32_t number) {
        application.kestova.IsNeedHidePartition(0, static_cast<int>(number));
        application.pc.journal.Clear();
        Answer answer = {77, 77};
        answer.result = (application.kestova.*GetParam().recognise)(0, static_cast<int>(number), answer.is);
        ExpectOnlyKeptLeftovers(application.pc.ledger);
        return answer;
    }
    static std::string Letters(Application& application, uint32_t number) {
        return PartitionOf(application.pc.facts, number).volume->letters;
    }
};

INSTANTIATE_TEST_SUITE_P(Both, RecoveryRecognition, testing::ValuesIn(kinds),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RecoveryRecognition, LetteredPartition_IsRecognised) {
    Application application(WithLetters(GetParam().number, "R"));
    EXPECT_EQ(Look(application, GetParam().number), (Answer{1, 1}));
    EXPECT_EQ(Letters(application, GetParam().number), "R");
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryRecognition, LetterlessPartition_IsRecognisedByATemporaryLetter) {
    Application application(FactoryGpt());
    EXPECT_EQ(Look(application, GetParam().number), (Answer{1, 1}));
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryRecognition, LetteredOtherContents_Fails) {
    Application application(WithLetters(GetParam().numberOfOther, "R"));
    EXPECT_EQ(Look(application, GetParam().numberOfOther), (Answer{0, 0}));
    EXPECT_EQ(Letters(application, GetParam().numberOfOther), "R");
    ExpectTranscript(application.pc.journal);
}

// With a temporary letter the result says that the partition could be inspected.
TEST_P(RecoveryRecognition, LetterlessOtherContents_SucceedsWithNo) {
    Application application(FactoryGpt());
    EXPECT_EQ(Look(application, GetParam().numberOfOther), (Answer{1, 0}));
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryRecognition, OtherType_Fails) {
    Application application(FactoryGpt());
    EXPECT_EQ(Look(application, 5), (Answer{0, 0}));
    ExpectTranscript(application.pc.journal);
}

// The whole type is compared.
TEST_P(RecoveryRecognition, TypeThatDiffersInItsLastByte_Fails) {
    machine::Pc facts = WithLetters(GetParam().number, "R");
    PartitionOf(facts, GetParam().number).gptType.Data4[7] ^= 1;
    Application application(facts);
    EXPECT_EQ(Look(application, GetParam().number), (Answer{0, 0}));
}

TEST_P(RecoveryRecognition, FactoryMbr_Fails) {
    Application application(FactoryMbr());
    EXPECT_EQ(Look(application, 1), (Answer{0, 0}));
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryRecognition, MissingPartition_Fails) {
    Application application(FactoryGpt());
    EXPECT_EQ(Look(application, 9), (Answer{0, 0}));
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryRecognition, NoVolumeLayer_Fails) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    int is = 77;
    EXPECT_EQ((application.kestova.*GetParam().recognise)(0, 6, is), 0);
    EXPECT_EQ(is, 0);
    EXPECT_EQ(application.pc.journal.Records().size(), 3U);
}

// The letter is tried to be taken all the same, and a refusal that came after its effect leaves none.
TEST_P(RecoveryRecognition, RefusedLetter_Fails) {
    for (const bool afterEffect : {false, true}) {
        Application application(FactoryGpt());
        application.pc.faults.Arm(
            {.call = "IVdsAdvancedDisk::AssignDriveLetter", .afterEffect = afterEffect, .code = 0x80004005});
        EXPECT_EQ(Look(application, GetParam().number), (Answer{0, 0}));
        EXPECT_EQ(application.pc.facts, FactoryGpt());
        ExpectTranscript(application.pc.journal, afterEffect ? "letter given" : "");
    }
}

TEST_P(RecoveryRecognition, RefusedDeletion_IsRecognisedAndKeepsTheLetter) {
    Application application(FactoryGpt());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::DeleteDriveLetter", .code = 0x80004005});
    EXPECT_EQ(Look(application, GetParam().number), (Answer{1, 1}));
    EXPECT_EQ(Letters(application, GetParam().number), "D");
    ExpectTranscript(application.pc.journal);
}

// The volume layer knows the letter, a volume call cannot open it: the contents are there all the same, and
// the letter goes as if it were a temporary one.
TEST_P(RecoveryRecognition, LetterThatDoesNotOpen_IsRecognisedAndLosesTheLetter) {
    machine::Pc facts = WithLetters(GetParam().number, "R");
    PartitionOf(facts, GetParam().number).volume->openError = ERROR_ACCESS_DENIED;
    Application application(facts);
    EXPECT_EQ(Look(application, GetParam().number), (Answer{1, 1}));
    EXPECT_EQ(Letters(application, GetParam().number), "");
    ExpectTranscript(application.pc.journal);
}

}  // namespace
