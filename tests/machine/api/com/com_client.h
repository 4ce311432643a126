// Fixtures of the tests of COM, the Virtual Disk Service and WMI.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/com_apartment.h"
#include "base/owners.h"
#include "base/utf.h"
#include "machine/journal/emulated_pc.h"
#include "platform/vds.h"

// A PC and a client of its COM runtime. `OnLoan` does not count the apartment.
class ComClient {
  public:
    explicit ComClient(machine::Pc facts) : pc(std::move(facts)) {}

    // What the platform has handed out, by kind, without the apartment.
    std::map<std::string, int> OnLoan() const {
        std::map<std::string, int> outstanding = pc.ledger.Outstanding();
        outstanding.erase("COM initialization");
        return outstanding;
    }

    machine::EmulatedPc pc;
    ComApartment apartment;
};

using Loans = std::map<std::string, int>;

// Another interface of the same object; fails the test if there is none.
template <typename Interface>
ComPtr<Interface> Ask(IUnknown* object, REFIID iid) {
    ComPtr<Interface> asked;
    EXPECT_EQ(object->QueryInterface(iid, reinterpret_cast<void**>(asked.Put())), S_OK);
    return asked;
}

// --- Virtual Disk Service ---

ComPtr<IVdsService> LoadVds();
// The remaining objects of the enumeration.
std::vector<ComPtr<IUnknown>> AllOf(IEnumVdsObject* list);
// The unallocated disks, by VDS name.
std::vector<std::string> UnallocatedDisks(IVdsService* service);
// The packs of the providers with the names of their disks: "basic: pack data (4): \\?\PhysicalDrive1".
std::vector<std::string> PackLines(IVdsService* service);
// The id of the disk with that VDS name; fails the test if no pack contains it.
VDS_OBJECT_ID DiskId(IVdsService* service, const std::string& name);
// An interface of the disk with that id.
template <typename Interface>
ComPtr<Interface> OpenDisk(IVdsService* service, VDS_OBJECT_ID id, REFIID iid) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(service->GetObject(id, VDS_OT_DISK, object.Put()), S_OK);
    return object.Get() != nullptr ? Ask<Interface>(object.Get(), iid) : ComPtr<Interface>();
}
// Frees the five strings of the record.
void FreeStrings(VDS_DISK_PROP& properties);
// The extents of a disk; frees their array.
std::vector<VDS_DISK_EXTENT> ExtentsOf(IVdsDisk* disk);
// The partitions of a disk; frees their array.
std::vector<VDS_PARTITION_PROP> PartitionsOf(IVdsAdvancedDisk* disk);

// A PC with its first disk opened, the starting point of most tests.
class DiskClient : public ComClient {
  public:
    explicit DiskClient(machine::Pc facts);

    machine::Partition& Partition(uint32_t number);
    // The volume id of the partition's extent; GUID_NULL if it has none.
    VDS_OBJECT_ID VolumeId(uint32_t number) const;

    ComPtr<IVdsService> service;
    ComPtr<IVdsDisk> disk;
    ComPtr<IVdsAdvancedDisk> advanced;
    ComPtr<IVdsAdvancedDisk2> advanced2;
};

// --- WMI ---

// A temporary system string.
class SystemString : public Bstr {
  public:
    explicit SystemString(const std::string& text) : Bstr(SysAllocString(ToWide(text).c_str())) {}
};

ComPtr<IWbemServices> ConnectWmi(const std::string& space = "\\\\.\\root\\CIMV2");
// The text of a property; "null" if absent, "?" for other types and on failure.
std::string TextOf(IWbemClassObject* object, const std::string& name);
// All instances of a class as texts of the named properties.
std::vector<std::vector<std::string>> InstancesOf(IWbemServices* services, const std::string& className,
                                                  const std::vector<std::string>& names);
