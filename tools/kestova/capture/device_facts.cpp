#include "tools/kestova/capture/device_facts.h"

#include <cstring>

#include "base/owners.h"
#include "base/utf.h"
#include "tools/kestova/capture/open_device.h"

namespace {

// --- the location text of device set-up ---

machine::Fact<std::string> CapturedLocation(const std::string& pnpDeviceId) {
    using Location = machine::Fact<std::string>;
    const DeviceInfoSet devices(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    if (!devices) return Location::Fails(GetLastError());
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    if (!SetupDiOpenDeviceInfoW(devices.Get(), ToWide(pnpDeviceId).c_str(), nullptr, 0, &device))
        return Location::Fails(GetLastError());
    DWORD size = 0;
    const BOOL isEmpty = SetupDiGetDeviceRegistryPropertyW(devices.Get(), &device, SPDRP_LOCATION_INFORMATION,
                                                           nullptr, nullptr, 0, &size);
    if (isEmpty) return std::string();
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return Location::Fails(GetLastError());
    // One more unit: terminated even if the property is not.
    WideString text(size / sizeof(WCHAR) + 1, TEXT('\0'));
    if (!SetupDiGetDeviceRegistryPropertyW(devices.Get(), &device, SPDRP_LOCATION_INFORMATION, nullptr,
                                           reinterpret_cast<BYTE*>(text.data()), size, nullptr))
        return Location::Fails(GetLastError());
    return ToUtf8(text.c_str());
}

// --- the controls of the device ---

machine::Fact<machine::ScsiAddress> CapturedAddress(const FileHandle& device) {
    SCSI_ADDRESS address = {};
    DWORD returned = 0;
    if (!DeviceIoControl(device.Get(), IOCTL_SCSI_GET_ADDRESS, nullptr, 0, &address, sizeof address,
                         &returned, nullptr))
        return machine::Fact<machine::ScsiAddress>::Fails(GetLastError());
    return machine::ScsiAddress{address.PortNumber, address.PathId, address.TargetId, address.Lun};
}

// The last error, or 0.
DWORD QueryDescriptor(const FileHandle& device, void* room, DWORD size) {
    STORAGE_PROPERTY_QUERY query = {};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    DWORD returned = 0;
    return DeviceIoControl(device.Get(), IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, room, size,
                           &returned, nullptr)
               ? DWORD{ERROR_SUCCESS}
               : GetLastError();
}

void CaptureShortDescriptor(Findings& findings, const FileHandle& device) {
    using enum machine::Switches::ShortDescriptor;
    STORAGE_DESCRIPTOR_HEADER header = {};
    const DWORD error = QueryDescriptor(device, &header, sizeof header);
    if (error == ERROR_MORE_DATA) findings.pc.switches.shortDescriptor = MoreData;
    if (error == ERROR_INSUFFICIENT_BUFFER) findings.pc.switches.shortDescriptor = Fails;
}

void CaptureBusType(Findings& findings, const FileHandle& device, machine::Disk& disk) {
    std::vector<char> room(machine::mostDescriptorBytes);
    STORAGE_DEVICE_DESCRIPTOR descriptor = {};
    if (const DWORD error = QueryDescriptor(device, room.data(), machine::mostDescriptorBytes)) {
        disk.storageBusType = machine::Fact<uint32_t>::Fails(error);
        return;
    }
    std::memcpy(&descriptor, room.data(), sizeof descriptor);
    disk.storageBusType = static_cast<uint32_t>(descriptor.BusType);
    const bool isSize =
        descriptor.Size >= machine::fewestDescriptorBytes && descriptor.Size <= machine::mostDescriptorBytes;
    if (!isSize)
        findings.Note("disk " + std::to_string(disk.number) + ": its driver says that its descriptor has " +
                      std::to_string(descriptor.Size) + " bytes, which is not described");
    if (isSize && descriptor.Size != machine::usualDescriptorSize)
        disk.storageDescriptorSize = descriptor.Size;
    CaptureShortDescriptor(findings, device);
}

}  // namespace

void CaptureDevices(Findings& findings) {
    for (machine::Disk& disk : findings.pc.disks) {
        if (disk.wmi && disk.wmi->pnpDeviceId) disk.location = CapturedLocation(*disk.wmi->pnpDeviceId);
        const FileHandle device = OpenShared("\\\\.\\PhysicalDrive" + std::to_string(disk.number), 0);
        if (!device) {
            disk.scsiAddress = machine::Fact<machine::ScsiAddress>::Fails(GetLastError());
            disk.storageBusType = machine::Fact<uint32_t>::Fails(disk.scsiAddress.error);
            continue;
        }
        disk.scsiAddress = CapturedAddress(device);
        CaptureBusType(findings, device, disk);
    }
}
