// A disk of the Virtual Disk Service: one object that implements both the disk and, as an advanced disk,
// operations on its partitions.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds_uncalled.h"

namespace machine {

// Every method returns VDS_E_OBJECT_DELETED after the PC has lost the disk; methods on one partition return
// VDS_E_OBJECT_NOT_FOUND if none begins at the offset.
class VdsDisk final : public ComObject,
                      public ComInterface<Uncalled<IVdsDisk>>,
                      public ComInterface<Uncalled<IVdsAdvancedDisk>>,
                      public ComInterface<IVdsAdvancedDisk2> {
  public:
    VdsDisk(uint32_t number, const Guid& id);
    const Guid& Id() const { return id_; }

    // --- IVdsDisk ---

    // The caller frees five strings ("VDS_DISK_PROP string"); the name is null if the PC has none.
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_DISK_PROP* properties) override;
    // Partitions and free space, ordered by offset, in one array ("VDS_DISK_EXTENT array") that the caller
    // frees. A disk without a table is one unusable extent.
    HRESULT STDMETHODCALLTYPE QueryExtents(VDS_DISK_EXTENT** extents, LONG* count) override;

    // --- IVdsAdvancedDisk ---

    // In the PC's order, in one array ("VDS_PARTITION_PROP array") that the caller frees. S_FALSE: a table
    // without partitions, for which the PC's switch decides whether there is an array;
    // VDS_E_DISK_NOT_INITIALIZED: no table.
    HRESULT STDMETHODCALLTYPE QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) override;
    // Changes only the boot indicator on MBR disks; only the hidden, read-only and no-letter attributes on
    // GPT disks. VDS_E_PARTITION_STYLE_MISMATCH: parameters of the other style; VDS_E_NOT_SUPPORTED: a
    // dynamic disk, or a GPT disk on an image; VDS_E_INVALID_OPERATION: an extended partition;
    // E_INVALIDARG: another GPT attribute; otherwise the error from writing the table. A failure changes
    // nothing.
    HRESULT STDMETHODCALLTYPE ChangeAttributes(ULONGLONG offset,
                                               CHANGE_ATTRIBUTES_PARAMETERS* parameters) override;
    // The letter methods return VDS_E_INVALID_OPERATION for a partition that is a volume or belongs to the
    // system, unless the PC's switch allows them.
    //
    // VDS_E_INVALID_DRIVE_LETTER: not A to Z in either case; VDS_E_DRIVE_LETTER_NOT_FREE: the letter is in
    // use. A partition without a volume becomes a volume that cannot be read.
    HRESULT STDMETHODCALLTYPE AssignDriveLetter(ULONGLONG offset, WCHAR letter) override;
    // VDS_E_INVALID_DRIVE_LETTER: the partition does not have that letter.
    HRESULT STDMETHODCALLTYPE DeleteDriveLetter(ULONGLONG offset, WCHAR letter) override;
    // The first letter. For a partition without one the PC's switch decides: VDS_E_OBJECT_NOT_FOUND, with
    // `letter` unchanged as on any failure, or success with NUL or '0'.
    HRESULT STDMETHODCALLTYPE GetDriveLetter(ULONGLONG offset, WCHAR* letter) override;

    // --- IVdsAdvancedDisk2 ---

    // Changing to a type that cannot hold a volume removes the volume, unless the PC's switch keeps it: its
    // letters, its object and with it its label; the files stay. Changing to a type that can hold one
    // creates a new object. VDS_E_PARTITION_STYLE_MISMATCH as above; VDS_E_PARTITION_MSR,
    // VDS_E_PARTITION_LDM: partitions of the system; VDS_E_INVALID_PARTITION_TYPE: an empty or extended MBR
    // type, a GPT type other than basic data; VDS_E_DEVICE_IN_USE: the running Windows, without force;
    // VDS_E_NOT_SUPPORTED: a GPT disk on an image; otherwise the error from writing the table. A failure
    // changes nothing.
    HRESULT STDMETHODCALLTYPE ChangePartitionType(ULONGLONG offset, BOOL force,
                                                  CHANGE_PARTITION_TYPE_PARAMETERS* parameters) override;

  private:
    using AsDisk = ComInterface<Uncalled<IVdsDisk>>;
    using AsAdvancedDisk = ComInterface<Uncalled<IVdsAdvancedDisk>>;
    using AsAdvancedDisk2 = ComInterface<IVdsAdvancedDisk2>;

    const uint32_t number_;
    const Guid id_;
};

}  // namespace machine
