// The volumes that BitLocker encrypts.
#pragma once

#include "base/wide_string.h"
#include "platform/windows_api.h"

inline constexpr int encryptVolumeCapacity = 32;

// The volumes found; entry i of both arrays describes the same volume.
struct tagEncryptVolume_t {
    WideString strDeviceID[encryptVolumeCapacity];     // volume device paths
    WideString strDriveLetter[encryptVolumeCapacity];  // "C:"; empty for a volume without a letter
    int VolumeCount = 0;                               // entries in use
};

// Stateless: every call queries BitLocker's WMI provider again. COM must be initialised on the calling
// thread.
class CEncryptVolume {
  public:
    // Lists the volumes whose encryption method is not "none", at most 32. FALSE if BitLocker cannot be
    // queried or a volume's query fails, with the volumes found before in the record; else TRUE. A volume
    // whose method returns a code other than 0 ends the list without a failure. Queries
    // Win32_EncryptableVolume.
    BOOL GetEncryptVolume(tagEncryptVolume_t& record);

  private:
    // The status of the last step; after the last volume that is the positive WBEM_S_FALSE.
    static HRESULT EnumEncryptableVolume(IWbemServices* services, const WideString& namespacePath,
                                         tagEncryptVolume_t& record);
    // Queries the volume of that key ("DeviceID='...'"). The code of the first step that failed, E_INVALIDARG
    // if the method ran without an output; else S_OK or a positive status of the method. An output that was
    // not read is 0.
    static HRESULT QueryEncryptionMethod(IWbemServices* services, const WideString& namespacePath,
                                         const WideString& key, int& returnValue, int& encryptionMethod);
};
