#include "tools/kestova/capture/captured_pc.h"

#include <utility>

#include "tools/kestova/capture/device_facts.h"
#include "tools/kestova/capture/findings.h"
#include "tools/kestova/capture/management_facts.h"
#include "tools/kestova/capture/service_disks.h"
#include "tools/kestova/capture/system_facts.h"
#include "tools/kestova/capture/volume_facts.h"

CapturedPc CapturePc() {
    // As the library does it; whoever was first in the process decides.
    CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                         RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    Findings findings;
    CaptureSystem(findings);
    CaptureServiceDisks(findings);
    CaptureDisksOfWmi(findings);
    CaptureEncryptableVolumes(findings);
    CaptureDevices(findings);
    CaptureVolumes(findings);
    CaptureAnswersForPartitions(findings);
    return {std::move(findings.pc), std::move(findings.notes)};
}
