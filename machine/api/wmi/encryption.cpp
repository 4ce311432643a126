#include "machine/api/wmi/encryption.h"

#include <algorithm>

namespace machine {

namespace {

WmiValue ValueOf(uint32_t number) {
    return static_cast<int32_t>(number);
}

std::vector<EncryptableVolume> VolumesOf(const Pc& pc) {
    return pc.encryptableVolumes.value_or(std::vector<EncryptableVolume>());
}

std::vector<std::vector<WmiValue>> EncryptableVolumes(const Pc& pc) {
    std::vector<std::vector<WmiValue>> rows;
    for (const EncryptableVolume& volume : VolumesOf(pc))
        rows.push_back({TextOrAbsent(volume.deviceId), TextOrAbsent(volume.persistentVolumeId),
                        TextOrAbsent(volume.driveLetter)});
    return rows;
}

// WBEM_E_INVALID_METHOD_PARAMETERS: called on the class, not on a volume.
HRESULT GetEncryptionMethod(EmulatedPc& pc, const WmiProperties& instance, const WmiProperties&,
                            WmiProperties& outputs) {
    const WmiValue* const key = FindProperty(instance, "DeviceID");
    const std::vector<EncryptableVolume> volumes = VolumesOf(pc.facts);
    const auto volume = std::find_if(volumes.begin(), volumes.end(), [&](const EncryptableVolume& known) {
        return key != nullptr && TextOrAbsent(known.deviceId) == *key;
    });
    if (volume == volumes.end()) return static_cast<HRESULT>(WBEM_E_INVALID_METHOD_PARAMETERS);
    outputs = {{"ReturnValue", ValueOf(volume->returnValue)},
               {"EncryptionMethod", ValueOf(volume->encryptionMethod)}};
    return S_OK;
}

}  // namespace

WmiClass EncryptionClass() {
    return {"root\\CIMV2\\Security\\MicrosoftVolumeEncryption",
            "Win32_EncryptableVolume",
            {"DeviceID", "PersistentVolumeID", "DriveLetter"},
            EncryptableVolumes,
            {{"GetEncryptionMethod", {}, {"ReturnValue", "EncryptionMethod"}, GetEncryptionMethod}},
            [](const Pc& pc) { return pc.encryptableVolumes.has_value(); }};
}

}  // namespace machine
