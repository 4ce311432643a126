// What the tests of COM, the Virtual Disk Service and WMI hold while they look at an emulated PC.
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

template <typename Interface>
using Held = ComPtr<Interface>;

// A PC and a client of its COM runtime. What `OnLoan` tells comes on top of the apartment.
class ComClient {
  public:
    explicit ComClient(machine::Pc facts) : pc(std::move(facts)) {}

    // Kinds and counts of what the platform lent, without the apartment itself.
    std::map<std::string, int> OnLoan() const {
        std::map<std::string, int> outstanding = pc.ledger.Outstanding();
        outstanding.erase("COM initialization");
        return outstanding;
    }

    machine::EmulatedPc pc;
    ComApartment apartment;
};

using Loans = std::map<std::string, int>;

// The same object through another interface; fails the test when it has none.
template <typename Interface>
Held<Interface> Ask(IUnknown* object, REFIID iid) {
    Held<Interface> asked;
    EXPECT_EQ(object->QueryInterface(iid, reinterpret_cast<void**>(asked.Put())), S_OK);
    return asked;
}

// --- Virtual Disk Service ---

Held<IVdsService> LoadVds();
// All objects that are left in the list.
std::vector<Held<IUnknown>> AllOf(IEnumVdsObject* list);
// Disks that no pack has, by VDS name.
std::vector<std::string> UnallocatedDisks(IVdsService* service);
// The packs of the providers with the names of their disks: "basic: pack data (4): \\?\PhysicalDrive1".
std::vector<std::string> PackLines(IVdsService* service);
// Id of the disk of that VDS name; fails the test when no pack has it.
VDS_OBJECT_ID DiskId(IVdsService* service, const std::string& name);
// The disk by id through one of its interfaces.
template <typename Interface>
Held<Interface> OpenDisk(IVdsService* service, VDS_OBJECT_ID id, REFIID iid) {
    Held<IUnknown> object;
    EXPECT_EQ(service->GetObject(id, VDS_OT_DISK, object.Put()), S_OK);
    return object.Get() != nullptr ? Ask<Interface>(object.Get(), iid) : Held<Interface>();
}
// Frees the five strings of the record.
void FreeStrings(VDS_DISK_PROP& properties);
// The extents of a disk; their array is freed already.
std::vector<VDS_DISK_EXTENT> ExtentsOf(IVdsDisk* disk);
// The partitions of a disk; their array is freed already.
std::vector<VDS_PARTITION_PROP> PartitionsOf(IVdsAdvancedDisk* disk);

// A PC whose first disk is open: what most tests of the service begin with.
class DiskClient : public ComClient {
  public:
    explicit DiskClient(machine::Pc facts);

    machine::Partition& Partition(uint32_t number);
    // Takes the volume id of the partition's extent; GUID_NULL when it has none.
    VDS_OBJECT_ID VolumeId(uint32_t number) const;

    Held<IVdsService> service;
    Held<IVdsDisk> disk;
    Held<IVdsAdvancedDisk> advanced;
    Held<IVdsAdvancedDisk2> advanced2;
};

// --- WMI ---

// A system string for one call.
class SystemString : public Bstr {
  public:
    explicit SystemString(const std::string& text) : Bstr(SysAllocString(ToWide(text).c_str())) {}
};

Held<IWbemServices> ConnectWmi(const std::string& space = "\\\\.\\root\\CIMV2");
// The text of a property; "null" when it is absent, "?" when it is another kind of value or cannot be read.
std::string TextOf(IWbemClassObject* object, const std::string& name);
// All instances of a class, each as the texts of the named properties.
std::vector<std::vector<std::string>> InstancesOf(IWbemServices* services, const std::string& className,
                                                  const std::vector<std::string>& names);
