#include "tests/support/leftovers.h"

#include <gtest/gtest.h>

#include <set>

void ExpectOnlyKeptLeftovers(const machine::Ledger& ledger, const std::string& failingCall) {
    std::set<std::string> kept = {"COM initialization", "IVdsService",  "IVdsAdvancedDisk",
                                  "IVdsDisk",           "IVdsVolumeMF", "VDS_DISK_PROP string"};
    if (failingCall == "CloseHandle") kept.insert("file handle");
    if (failingCall == "RegCloseKey") kept.insert("registry key");
    if (failingCall == "SetupDiDestroyDeviceInfoList") kept.insert("device info set");
    if (failingCall.starts_with("Wow64")) kept.insert("file-system redirection");
    for (const auto& [kind, count] : ledger.Outstanding())
        EXPECT_TRUE(kept.contains(kind)) << count << " " << kind;
    EXPECT_TRUE(ledger.Violations().empty()) << ledger.Violations().front();
}
