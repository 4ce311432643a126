// `kestova conform` on a system that differs from the emulated PC in ways that are known: Wine, with class
// objects of the test for the Virtual Disk Service and WMI.

#include <gtest/gtest.h>

#include "tests/windows/real/landscape.h"
#include "tools/kestova/capture/captured_pc.h"
#include "tools/kestova/conformance/conformance_text.h"
#include "tools/kestova/descriptions/description_text.h"
// Last: it declares a name that the others have enumerators of.
#include "tests/windows/real/services.h"

namespace {

constexpr ULONGLONG MiB = 1024ULL * 1024;

// One SATA disk: 1 the hidden recovery partition E:, 2 Windows, active, which is C:.
TestPc OneDisk() {
    TestPc pc;
    pc.disks = {{0,
                 500'000 * MiB,
                 VDS_BUS_TYPE_SATA,
                 {{1, MiB, 20'000 * MiB, 0x27, false, TEXT('E'), TEXT("Recovery")},
                  {2, 20'001 * MiB, 400'000 * MiB, 0x07, true, TEXT('C'), TEXT("Windows")}}}};
    return pc;
}

ConformanceReport Compare() {
    std::string description;
    PcAnswers here;
    {
        const auto pc = OpenRealPc(false);
        Session session(*pc, nullptr, false);
        here = AskPc(session);
        description = DescriptionText(CapturePc().pc);
    }
    PcChoice choice;
    choice.captured = description;
    choice.trace = true;
    const auto emulated = OpenEmulatedPc(choice, Access::Ask);
    Session session(*emulated, nullptr, false);
    ConformanceReport report = CompareAnswers(here, AskPc(session));
    report.here = "Wine";
    report.emulated = "its capture";
    return report;
}

// Each row of the table has a reason, which README.md explains by subject.
TEST(ConformOnWine, ItsCapture_DiffersAsIsKnown) {
    EmptyDrives();
    MakeRecoveryFiles("E:");
    const Services services(OneDisk());
    ConformanceReport report = Compare();
    NoteExpected(ReadExpectedDifferences(KESTOVA_KNOWN_DIFFERENCES), report);
    EXPECT_EQ(report.Unexpected(), 0u) << ConformanceText(report, {});
    for (const std::string& unmet : report.unmet)
        ADD_FAILURE() << unmet;
    EmptyDrives();
}

}  // namespace
