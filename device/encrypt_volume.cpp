#include "device/encrypt_volume.h"

#include "device/wmi_ex.h"
#include "device/wmi_instances.h"
#include "diag/failure_record.h"

namespace {

constexpr const WCHAR* encryptionNamespace = TEXT("\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption");
constexpr const WCHAR* volumeClass = TEXT("Win32_EncryptableVolume");

WideString ObjectKey(const WideString& deviceId) {
    return TEXT("DeviceID='") + deviceId + TEXT("'");
}

void AddVolume(tagEncryptVolume_t& record, const WideString& deviceId, const WideString& driveLetter) {
    if (record.VolumeCount == encryptVolumeCapacity) return;
    record.strDeviceID[record.VolumeCount] = deviceId;
    record.strDriveLetter[record.VolumeCount] = driveLetter;
    ++record.VolumeCount;
}

void LogFound(const tagEncryptVolume_t& record, HRESULT result) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CEncryptVolume::GetEncryptVolume\tpEncryptVolume->strDeviceID = "))
        .Pointer(record.strDeviceID);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CEncryptVolume::GetEncryptVolume\tpEncryptVolume->strDriveLetter = "))
        .Pointer(record.strDriveLetter);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CEncryptVolume::GetEncryptVolume\tpEncryptVolume->VolumeCount = "))
        .Int(record.VolumeCount);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CEncryptVolume::GetEncryptVolume\tEnd. hResult = "))
        .Long(result);
}

}  // namespace

BOOL CEncryptVolume::GetEncryptVolume(tagEncryptVolume_t& record) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CEncryptVolume::GetEncryptVolume\tStart"));
    record.VolumeCount = 0;
    HRESULT result = CWMIEx::Initialize();
    if (FAILED(result)) {
        LogFailure(LOG_LEVEL_ERROR,
                   {TEXT("Kestova CEncryptVolume::GetEncryptVolume    CWMIEx::Initialize Failed. hResult = "),
                    LoggedCodes::Result},
                   result);
        return FALSE;
    }
    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    result = CWMIEx::ConnectServer(encryptionNamespace, locator.Put(), services.Put());
    if (FAILED(result)) {
        LogFailure(
            LOG_LEVEL_ERROR,
            {TEXT("Kestova CEncryptVolume::GetEncryptVolume    CWMIEx::ConnectServer Failed. hResult = "),
             LoggedCodes::Result},
            result);
        return FALSE;
    }
    result = EnumEncryptableVolume(services.Get(), encryptionNamespace, record);
    LogFound(record, result);
    return SUCCEEDED(result);
}

HRESULT CEncryptVolume::EnumEncryptableVolume(IWbemServices* services, const WideString& namespacePath,
                                              tagEncryptVolume_t& record) {
    const Bstr className(SysAllocString(volumeClass));
    ComPtr<IEnumWbemClassObject> instances;
    HRESULT result = OpenInstances(services, className, instances);
    if (FAILED(result)) return result;
    do {
        WideString deviceId;
        WideString persistentVolumeId;
        WideString driveLetter;
        bool complete = false;
        result = ReadNext(instances.Get(),
                          {{TEXT("DeviceID"), deviceId},
                           {TEXT("PersistentVolumeID"), persistentVolumeId},
                           {TEXT("DriveLetter"), driveLetter}},
                          complete);
        if (!complete) return result;

        int returnValue = 0;
        int encryptionMethod = 0;
        result = QueryEncryptionMethod(services, namespacePath, ObjectKey(deviceId), returnValue,
                                       encryptionMethod);
        // The volumes after one whose query failed are not queried.
        if (FAILED(result) || returnValue != 0) return result;
        if (encryptionMethod != 0) AddVolume(record, deviceId, driveLetter);
    } while (result == S_OK);
    return result;
}

HRESULT CEncryptVolume::QueryEncryptionMethod(IWbemServices* services, const WideString& namespacePath,
                                              const WideString& key, int& returnValue,
                                              int& encryptionMethod) {
    returnValue = 0;
    encryptionMethod = 0;
    const WideString path = namespacePath + TEXT(":") + volumeClass + TEXT(".") + key;
    ComPtr<IWbemClassObject> output;
    Variant returned;
    const HRESULT status = CWMIEx::ExecMethod(services, volumeClass, TEXT("GetEncryptionMethod"), path,
                                              nullptr, nullptr, output.Put(), returned.Put());
    if (FAILED(status)) return status;
    if (!output) return status == S_OK ? E_INVALIDARG : status;
    Variant method;
    const HRESULT result = output->Get(TEXT("EncryptionMethod"), 0, method.Put(), nullptr, nullptr);
    if (FAILED(result)) return result;
    returnValue = returned.Number();
    encryptionMethod = method.Number();
    return status;
}
