#include "tools/kestova/capture/management_facts.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "base/scan.h"
#include "base/text_case.h"
#include "base/utf.h"
#include "base/wide_string.h"
#include "machine/facts/wmi_disks.h"
#include "tools/kestova/probes/management.h"

namespace {

using Property = std::optional<std::string>;

constexpr const WCHAR* disksNamespace = TEXT("\\\\.\\root\\CIMV2");
constexpr const WCHAR* encryptionNamespace = TEXT("\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption");

class Namespace {
  public:
    Namespace(Findings& findings, const WCHAR* path) : findings_(findings), path_(path) { Connect(); }

    explicit operator bool() const { return static_cast<bool>(services_); }
    // The failure of connecting, or S_OK.
    HRESULT Result() const { return result_; }
    IWbemServices& Services() { return *services_.Get(); }
    const WCHAR* Path() const { return path_; }
    // Every instance of the class. A class that is not there is noted in the PC.
    void ForEach(const char* className, const std::function<void(IWbemClassObject& instance)>& action);

  private:
    void Connect();
    void Absent(const char* className, bool late);

    Findings& findings_;
    const WCHAR* path_;
    HRESULT result_ = S_OK;
    ComPtr<IWbemLocator> locator_;
    ComPtr<IWbemServices> services_;
};

void Namespace::Connect() {
    result_ = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator_.Put()));
    if (FAILED(result_) || !locator_) return;
    const Bstr path(SysAllocString(path_));
    result_ =
        locator_->ConnectServer(path.Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, services_.Put());
    if (FAILED(result_) || !services_) return;
    const HRESULT blanket =
        CoSetProxyBlanket(services_.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                          RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    if (FAILED(blanket)) findings_.Note("CoSetProxyBlanket: " + Hex(static_cast<uint32_t>(blanket), 8));
}

void Namespace::Absent(const char* className, bool late) {
    if (std::ranges::count(findings_.pc.absentWmiClasses, className) == 0)
        findings_.pc.absentWmiClasses.emplace_back(className);
    findings_.pc.switches.absentClassFailsLate = findings_.pc.switches.absentClassFailsLate || late;
}

void Namespace::ForEach(const char* className,
                        const std::function<void(IWbemClassObject& instance)>& action) {
    const Bstr name(SysAllocString(ToWide(className).c_str()));
    ComPtr<IEnumWbemClassObject> instances;
    const HRESULT listed = services_->CreateInstanceEnum(
        name.Get(), WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY, nullptr, instances.Put());
    if (listed == static_cast<HRESULT>(WBEM_E_INVALID_CLASS)) return Absent(className, false);
    if (FAILED(listed))
        findings_.Fails("IWbemServices::CreateInstanceEnum", className, static_cast<uint32_t>(listed));
    if (FAILED(listed) || !instances) return;
    const HRESULT end = ForEachInstance(*instances.Get(), action);
    const std::string list = std::string("the list of ") + className;
    if (end == static_cast<HRESULT>(WBEM_E_INVALID_CLASS)) return Absent(className, true);
    if (FAILED(end)) findings_.Note(list + " ends with " + Hex(static_cast<uint32_t>(end), 8));
    if (end == static_cast<HRESULT>(WBEM_S_TIMEDOUT)) findings_.Note(list + ": " + noAnswer);
    if (end == S_OK) findings_.Note(list + goesOn);
}

Property TextOf(IWbemClassObject& instance, const WCHAR* name) {
    Variant value;
    if (FAILED(instance.Get(name, 0, value.Put(), nullptr, nullptr)) || V_VT(&value.Get()) != VT_BSTR)
        return std::nullopt;
    return ToUtf8(value.Text());
}

std::optional<uint32_t> NumberOf(IWbemClassObject& instance, const WCHAR* name) {
    Variant value;
    if (FAILED(instance.Get(name, 0, value.Put(), nullptr, nullptr)) || V_VT(&value.Get()) != VT_I4)
        return std::nullopt;
    return static_cast<uint32_t>(value.Number());
}

// --- disks ---

// The index, which the device id repeats.
std::optional<uint32_t> NumberOfDisk(IWbemClassObject& instance) {
    if (const auto index = NumberOf(instance, TEXT("Index"))) return index;
    const WideString id = ToWide(UpperCase(TextOf(instance, TEXT("DeviceID")).value_or("")));
    int number = -1;
    const bool isNumbered =
        ScanNumbers(id.c_str(), TEXT("\\\\.\\PHYSICALDRIVE%d"), {&number}) == 1 && number >= 0;
    return isNumbered ? std::optional(static_cast<uint32_t>(number)) : std::nullopt;
}

void CaptureDisk(Findings& findings, IWbemClassObject& instance, std::vector<uint32_t>& order) {
    const machine::WmiDisk row = {TextOf(instance, TEXT("DeviceID")), TextOf(instance, TEXT("PNPDeviceID")),
                                  TextOf(instance, TEXT("InterfaceType"))};
    const auto number = NumberOfDisk(instance);
    const auto disk =
        std::ranges::find(findings.pc.disks, number.value_or(UINT32_MAX), &machine::Disk::number);
    if (disk == findings.pc.disks.end())
        return findings.Note("WMI lists " + row.deviceId.value_or("a disk without an id") +
                             ", which the Virtual Disk Service does not: it is left out");
    if (disk->wmi)
        return findings.Note("WMI lists disk " + std::to_string(disk->number) +
                             " twice: one of them is left out");
    disk->wmi = row;
    order.push_back(disk->number);
}

// --- controllers ---

struct Link {
    std::string controller;
    std::string device;
};

// The PNP device id in an object path: its key, whose backslashes are doubled.
std::string KeyOf(const std::string& path) {
    const size_t begin = path.find('"');
    const size_t end = path.rfind('"');
    if (begin == std::string::npos || end <= begin) return "";
    std::string key;
    for (size_t at = begin + 1; at < end; ++at) {
        key += path[at];
        if (path[at] == '\\' && path[at + 1] == '\\') ++at;
    }
    return key;
}

std::vector<Link> LinksOf(Namespace& disks, const char* className) {
    std::vector<Link> links;
    disks.ForEach(className, [&](IWbemClassObject& instance) {
        links.push_back({KeyOf(TextOf(instance, TEXT("Antecedent")).value_or("")),
                         KeyOf(TextOf(instance, TEXT("Dependent")).value_or(""))});
    });
    return links;
}

// From the disk upwards; a ring ends where it closes.
std::vector<std::string> ControllersOf(const std::string& device, const std::vector<Link>& links) {
    std::vector<std::string> controllers;
    std::string current = device;
    while (controllers.size() < links.size()) {
        const auto link =
            std::ranges::find_if(links, [&](const Link& one) { return SameName(one.device, current); });
        if (link == links.end()) break;
        controllers.push_back(link->controller);
        current = link->controller;
    }
    return controllers;
}

void CaptureControllers(Findings& findings, machine::ControllerKind kind, const std::vector<Link>& links) {
    for (machine::Disk& disk : findings.pc.disks) {
        if (!disk.wmi || !disk.wmi->pnpDeviceId) continue;
        std::vector<std::string> controllers = ControllersOf(*disk.wmi->pnpDeviceId, links);
        if (controllers.empty()) continue;
        if (!disk.controllers.empty()) {
            findings.Note("disk " + std::to_string(disk.number) +
                          " has controllers of both classes: those of SCSI are left out");
            continue;
        }
        disk.controllers = std::move(controllers);
        if (machine::KindOfControllers(disk) != kind) disk.controllerKind = kind;
    }
}

// --- encryptable volumes ---

// Null without memory or without an answer.
ComPtr<IWbemClassObject> EncryptionMethod(Findings& findings, Namespace& space, const std::string& deviceId) {
    const std::string path = ToUtf8(space.Path()) + ":Win32_EncryptableVolume.DeviceID='" + deviceId + "'";
    const Bstr object(SysAllocString(ToWide(path).c_str()));
    const Bstr method(SysAllocString(TEXT("GetEncryptionMethod")));
    ComPtr<IWbemClassObject> outputs;
    const HRESULT result =
        space.Services().ExecMethod(object.Get(), method.Get(), 0, nullptr, nullptr, outputs.Put(), nullptr);
    if (FAILED(result)) findings.Fails("IWbemServices::ExecMethod", path, static_cast<uint32_t>(result));
    return outputs;
}

machine::EncryptableVolume CapturedEncryptable(Findings& findings, Namespace& space,
                                               IWbemClassObject& instance) {
    machine::EncryptableVolume volume;
    volume.deviceId = TextOf(instance, TEXT("DeviceID"));
    volume.persistentVolumeId = TextOf(instance, TEXT("PersistentVolumeID"));
    volume.driveLetter = TextOf(instance, TEXT("DriveLetter"));
    if (!volume.deviceId) return volume;
    const ComPtr<IWbemClassObject> outputs = EncryptionMethod(findings, space, *volume.deviceId);
    if (!outputs) return volume;
    volume.returnValue = NumberOf(*outputs.Get(), TEXT("ReturnValue")).value_or(0);
    volume.encryptionMethod = NumberOf(*outputs.Get(), TEXT("EncryptionMethod")).value_or(0);
    return volume;
}

}  // namespace

void CaptureDisksOfWmi(Findings& findings) {
    for (machine::Disk& disk : findings.pc.disks)
        disk.wmi.reset();
    Namespace disks(findings, disksNamespace);
    if (!disks) return findings.Note("WMI is not there: " + Hex(static_cast<uint32_t>(disks.Result()), 8));
    std::vector<uint32_t> order;
    disks.ForEach("Win32_DiskDrive", [&](IWbemClassObject& row) { CaptureDisk(findings, row, order); });
    std::vector<uint32_t> usual;
    for (const machine::Disk* const disk : machine::DisksOfWmi(findings.pc))
        usual.push_back(disk->number);
    if (order != usual) findings.pc.wmiOrder = order;
    CaptureControllers(findings, machine::ControllerKind::Ide, LinksOf(disks, "Win32_IDEControllerDevice"));
    CaptureControllers(findings, machine::ControllerKind::Scsi, LinksOf(disks, "Win32_SCSIControllerDevice"));
}

void CaptureEncryptableVolumes(Findings& findings) {
    Namespace space(findings, encryptionNamespace);
    if (space.Result() == static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE)) return;
    if (!space)
        return findings.Fails("IWbemLocator::ConnectServer", ToUtf8(space.Path()),
                              static_cast<uint32_t>(space.Result()));
    auto& volumes = findings.pc.encryptableVolumes.emplace();
    space.ForEach("Win32_EncryptableVolume", [&](IWbemClassObject& instance) {
        volumes.push_back(CapturedEncryptable(findings, space, instance));
    });
}
