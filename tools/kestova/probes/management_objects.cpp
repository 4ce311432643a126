// WMI: the disks with their controllers, and the volumes that can be encrypted.

#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/management.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr LONG forwardOnly = WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY;

constexpr const WCHAR* unknownProperty = TEXT("NoSuchProperty");

WideString WithDoubledBackslashes(const WideString& text) {
    WideString doubled;
    for (const WCHAR unit : text)
        doubled.append(unit == TEXT('\\') ? 2 : 1, unit);
    return doubled;
}

// The PNP device id.
WideString ProbeDiskDrive(Probes& probes, IWbemServices& services, IWbemClassObject& drive, size_t number) {
    const std::string place = "Win32_DiskDrive " + std::to_string(number);
    const WideString id = ProbeProperty(probes, place, drive, TEXT("DeviceID"));
    const std::string name = id.empty() ? place : Quoted(id);
    WideString deviceId = ProbeProperty(probes, name, drive, TEXT("PNPDeviceID"));
    ProbeProperty(probes, name, drive, TEXT("InterfaceType"));
    ProbeProperty(probes, name, drive, TEXT("interfacetype"));
    ProbeProperty(probes, name, drive, unknownProperty);
    ProbeObject(probes, services,
                TEXT("Win32_DiskDrive.DeviceID=\"") + WithDoubledBackslashes(id) + TEXT("\""));
    ProbeObject(probes, services, TEXT("Win32_DiskDrive.DeviceID='") + id + TEXT("'"));
    return deviceId;
}

void ProbeLinks(Probes& probes, IWbemServices& services, const WCHAR* className) {
    for (const ComPtr<IWbemClassObject>& link : ProbeInstances(probes, services, className, forwardOnly)) {
        const WideString device = ProbeProperty(probes, Quoted(className), *link.Get(), TEXT("Dependent"));
        // As the journal of the path shows it, without the computer.
        const size_t key = device.find(TEXT('='));
        ProbeProperty(probes, "the link of " + Quoted(device.substr(key == WideString::npos ? 0 : key + 1)),
                      *link.Get(), TEXT("Antecedent"));
    }
}

void ProbeMethod(Probes& probes, IWbemClassObject& definition, const WCHAR* name) {
    ComPtr<IWbemClassObject> input;
    ComPtr<IWbemClassObject> output;
    const HRESULT result = definition.GetMethod(name, 0, input.Put(), output.Put());
    probes.Add(
        "IWbemClassObject::GetMethod", Quoted(name),
        HresultWords(result) + ", input " + Presence(input.Get()) + ", output " + Presence(output.Get()));
}

// An instance in memory, which no repository has.
void ProbeSpawning(Probes& probes, IWbemClassObject& definition) {
    ComPtr<IWbemClassObject> instance;
    const HRESULT result = definition.SpawnInstance(0, instance.Put());
    probes.Add("IWbemClassObject::SpawnInstance", "", HresultWords(result) + ", " + Presence(instance.Get()));
    if (!instance) return;
    Variant value;
    VARIANT* const null = value.Put();
    V_VT(null) = VT_NULL;
    for (const WCHAR* const name : {TEXT("DriveLetter"), unknownProperty}) {
        const HRESULT put = instance->Put(name, 0, null, 0);
        probes.Add("IWbemClassObject::Put", Quoted(name) + ", null", HresultWords(put));
    }
}

// Asks a volume by which method it is encrypted.
void ProbeMethodCall(Probes& probes, IWbemServices& services, const WideString& path, const WCHAR* method) {
    const Bstr object(SysAllocString(path.c_str()));
    const Bstr name(SysAllocString(method));
    ComPtr<IWbemClassObject> output;
    const HRESULT result =
        services.ExecMethod(object.Get(), name.Get(), 0, nullptr, nullptr, output.Put(), nullptr);
    probes.Add("IWbemServices::ExecMethod", Quoted(path) + ", " + Quoted(method),
               HresultWords(result) + ", output " + Presence(output.Get()));
    if (!output) return;
    ProbeProperty(probes, "the output of " + Quoted(path), *output.Get(), TEXT("ReturnValue"));
    ProbeProperty(probes, "the output of " + Quoted(path), *output.Get(), TEXT("EncryptionMethod"));
}

}  // namespace

std::vector<WideString> ProbeDiskDrives(Probes& probes) {
    for (const WCHAR* const space : {TEXT("root\\cimv2"), TEXT("root/cimv2"), TEXT("\\\\.\\ROOT\\cimv2"),
                                     TEXT("root\\no_such_namespace"), TEXT("no_such_root"), TEXT("")})
        ProbeConnection(probes, space);
    std::vector<WideString> deviceIds;
    const ComPtr<IWbemServices> services = ProbeConnection(probes, TEXT("\\\\.\\root\\CIMV2"));
    if (!services) return deviceIds;
    ProbeInstances(probes, *services.Get(), TEXT("NoSuchClass"), forwardOnly);
    ProbeInstances(probes, *services.Get(), TEXT("NoSuchClass"), 0);
    ProbeInstances(probes, *services.Get(), TEXT("win32_diskdrive"), 0);
    const WmiObjects drives = ProbeInstances(probes, *services.Get(), TEXT("Win32_DiskDrive"), forwardOnly);
    for (size_t at = 0; at < drives.size(); ++at)
        deviceIds.push_back(ProbeDiskDrive(probes, *services.Get(), *drives[at].Get(), at + 1));
    ProbeLinks(probes, *services.Get(), TEXT("Win32_IDEControllerDevice"));
    ProbeLinks(probes, *services.Get(), TEXT("Win32_SCSIControllerDevice"));
    for (const WCHAR* const path :
         {TEXT("NoSuchClass"), TEXT("Win32_DiskDrive.DeviceID=\"no such disk\""),
          TEXT("Win32_DiskDrive.NoSuchKey=\"x\""), TEXT("Win32_DiskDrive.DeviceID="), TEXT("=")})
        ProbeObject(probes, *services.Get(), path);
    const ComPtr<IWbemClassObject> definition = ProbeObject(probes, *services.Get(), TEXT("Win32_DiskDrive"));
    if (definition) ProbeMethod(probes, *definition.Get(), TEXT("NoSuchMethod"));
    return deviceIds;
}

void ProbeEncryption(Probes& probes) {
    const WideString space = TEXT("\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption");
    const ComPtr<IWbemServices> services = ProbeConnection(probes, space.c_str());
    if (!services) return;
    const WideString prefix = space + TEXT(":Win32_EncryptableVolume.DeviceID='");
    for (const ComPtr<IWbemClassObject>& volume :
         ProbeInstances(probes, *services.Get(), TEXT("Win32_EncryptableVolume"), forwardOnly)) {
        const WideString id =
            ProbeProperty(probes, "Win32_EncryptableVolume", *volume.Get(), TEXT("DeviceID"));
        ProbeProperty(probes, Quoted(id), *volume.Get(), TEXT("PersistentVolumeID"));
        ProbeProperty(probes, Quoted(id), *volume.Get(), TEXT("DriveLetter"));
        ProbeMethodCall(probes, *services.Get(), prefix + id + TEXT("'"), TEXT("GetEncryptionMethod"));
        ProbeMethodCall(probes, *services.Get(), prefix + id + TEXT("'"), TEXT("NoSuchMethod"));
    }
    ProbeMethodCall(probes, *services.Get(), prefix + TEXT("no such volume'"), TEXT("GetEncryptionMethod"));
    const ComPtr<IWbemClassObject> definition =
        ProbeObject(probes, *services.Get(), TEXT("Win32_EncryptableVolume"));
    if (!definition) return;
    ProbeSpawning(probes, *definition.Get());
    ProbeMethod(probes, *definition.Get(), TEXT("GetEncryptionMethod"));
    ProbeMethod(probes, *definition.Get(), TEXT("NoSuchMethod"));
}
