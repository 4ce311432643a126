// The volumes that BitLocker has encrypted.
#pragma once

#include "base/wide_string.h"
#include "platform/windows_api.h"

inline constexpr int encryptVolumeCapacity = 32;

// What CEncryptVolume found; entry i of both arrays describes the same volume.
struct tagEncryptVolume_t {
    WideString strDeviceID[encryptVolumeCapacity];     // volume device paths
    WideString strDriveLetter[encryptVolumeCapacity];  // "C:"; empty for a volume without a letter
    int VolumeCount = 0;                               // entries in use
};

// Holds nothing; every call asks BitLocker's WMI provider afresh. COM must be initialised on the calling
// thread.
class CEncryptVolume {
  public:
    // Lists the volumes whose encryption method is not "none", at most 32. 1, or 0 when BitLocker could not
    // be asked or a volume could not tell; the record holds what was gathered before. A volume whose method
    // returns a code of its own ends the list without a failure. Rests on Win32_EncryptableVolume.
    BOOL GetEncryptVolume(tagEncryptVolume_t& record);

  private:
    // The status of the last step; at the end of the volumes that is the positive WBEM_S_FALSE.
    static HRESULT EnumEncryptableVolume(IWbemServices* services, const WideString& namespacePath,
                                         tagEncryptVolume_t& record);
    // Asks the volume of that key ("DeviceID='...'"). S_OK, a positive status of the method, or the code of
    // the first step that failed, which is E_INVALIDARG for a method that ran and gave nothing. Both outputs
    // are 0 where they were not reached.
    static HRESULT QueryEncryptionMethod(IWbemServices* services, const WideString& namespacePath,
                                         const WideString& key, int& returnValue, int& encryptionMethod);
};
