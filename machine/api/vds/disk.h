// A disk of the Virtual Disk Service: one object that answers for the disk and, as an advanced disk, for its
// partitions.
#pragma once

#include "machine/api/com/object.h"
#include "machine/api/vds/objects.h"
#include "platform/vds.h"

namespace machine {

// Every method answers VDS_E_OBJECT_DELETED when the PC no longer has the disk; those about one partition
// VDS_E_OBJECT_NOT_FOUND when none begins at the offset. What is not declared with a docstring answers
// VDS_E_NOT_SUPPORTED.
class VdsDisk final : public ComObject,
                      public ComInterface<IVdsDisk>,
                      public ComInterface<IVdsAdvancedDisk>,
                      public ComInterface<IVdsAdvancedDisk2> {
  public:
    VdsDisk(uint32_t number, const Guid& id);
    const Guid& Id() const { return id_; }

    // --- IVdsDisk ---

    // The caller frees five strings ("VDS_DISK_PROP string"); the name is null when the PC tells none.
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_DISK_PROP* properties) override;
    // Partitions and the free space around them by offset, in one array ("VDS_DISK_EXTENT array") that the
    // caller frees. A disk without a table is one unusable extent.
    HRESULT STDMETHODCALLTYPE QueryExtents(VDS_DISK_EXTENT** extents, LONG* count) override;

    // --- IVdsAdvancedDisk ---

    // In the order of the PC, in one array ("VDS_PARTITION_PROP array") that the caller frees. S_FALSE, and
    // no array: a table without partitions; VDS_E_DISK_NOT_INITIALIZED: no table.
    HRESULT STDMETHODCALLTYPE QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) override;
    // On MBR disks the boot indicator alone, on GPT disks the hidden, read-only and no-letter attributes
    // alone. VDS_E_PARTITION_STYLE_MISMATCH: parameters of the other style; VDS_E_NOT_SUPPORTED: a dynamic
    // disk, or a GPT disk whose table is an image; VDS_E_INVALID_OPERATION: an extended partition;
    // E_INVALIDARG: another GPT attribute; else what the table's medium says. Nothing is changed then.
    HRESULT STDMETHODCALLTYPE ChangeAttributes(ULONGLONG offset,
                                               CHANGE_ATTRIBUTES_PARAMETERS* parameters) override;
    // The three of them: VDS_E_INVALID_OPERATION for a partition that is a volume or belongs to the system,
    // unless the PC's switch says otherwise.
    //
    // VDS_E_INVALID_DRIVE_LETTER: not A to Z in either case; VDS_E_DRIVE_LETTER_NOT_FREE: something else has
    // it. A partition that nothing could open becomes a volume that cannot be read.
    HRESULT STDMETHODCALLTYPE AssignDriveLetter(ULONGLONG offset, WCHAR letter) override;
    // VDS_E_INVALID_DRIVE_LETTER: not a letter of the partition.
    HRESULT STDMETHODCALLTYPE DeleteDriveLetter(ULONGLONG offset, WCHAR letter) override;
    // The first one. Without a letter the PC's switch decides: VDS_E_OBJECT_NOT_FOUND and `letter` untouched,
    // as on any failure, or success with a NUL or a '0'.
    HRESULT STDMETHODCALLTYPE GetDriveLetter(ULONGLONG offset, WCHAR* letter) override;

    // --- IVdsAdvancedDisk2 ---

    // A type that is no volume's takes the volume away, unless the PC's switch says otherwise: its letters,
    // its object and with it its label; the files stay. A volume's type gives a new object.
    // VDS_E_PARTITION_STYLE_MISMATCH as above; VDS_E_PARTITION_MSR, VDS_E_PARTITION_LDM: partitions of the
    // system; VDS_E_INVALID_PARTITION_TYPE: an MBR type that is empty or extended, a GPT type other than
    // basic data; VDS_E_DEVICE_IN_USE: without force on the running Windows; VDS_E_NOT_SUPPORTED: a GPT disk
    // whose table is an image; else what the table's medium says. Nothing is changed then.
    HRESULT STDMETHODCALLTYPE ChangePartitionType(ULONGLONG offset, BOOL force,
                                                  CHANGE_PARTITION_TYPE_PARAMETERS* parameters) override;

    // --- not offered ---

    HRESULT STDMETHODCALLTYPE GetPack(IVdsPack**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE GetIdentificationData(VDS_LUN_INFORMATION*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE ConvertStyle(VDS_PARTITION_STYLE) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE SetFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE ClearFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE GetPartitionProperties(ULONGLONG, VDS_PARTITION_PROP*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE CreatePartition(ULONGLONG, ULONGLONG, CREATE_PARTITION_PARAMETERS*,
                                              IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE DeletePartition(ULONGLONG, BOOL, BOOL) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE FormatPartition(ULONGLONG, VDS_FILE_SYSTEM_TYPE, LPWSTR, DWORD, BOOL, BOOL,
                                              BOOL, IVdsAsync**) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE Clean(BOOL, BOOL, BOOL, IVdsAsync**) override { return VDS_E_NOT_SUPPORTED; }

  private:
    using AsDisk = ComInterface<IVdsDisk>;
    using AsAdvancedDisk = ComInterface<IVdsAdvancedDisk>;
    using AsAdvancedDisk2 = ComInterface<IVdsAdvancedDisk2>;

    const uint32_t number_;
    const Guid id_;
};

}  // namespace machine
