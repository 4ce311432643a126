// Numbers that the library and the emulated PC share with the platform by name, against those that the
// platform publishes: a header that says otherwise would make them agree with each other and with nobody
// else. Numbers that only platform/vds.h declares are checked by platform/layout_checks.cpp.

#include "platform/vds.h"

namespace {

constexpr bool Is(HRESULT code, unsigned number) {
    return static_cast<unsigned>(code) == number;
}

// --- Virtual Disk Service ---

static_assert(VDS_OT_UNKNOWN == 0 && VDS_OT_PROVIDER == 1);
static_assert(FixedMedia == 12 && RemovableMedia == 11);
static_assert(FILE_DEVICE_CD_ROM == 2 && FILE_DEVICE_DISK == 7 && FILE_DEVICE_DVD == 0x33);
static_assert(Is(S_OK, 0) && Is(S_FALSE, 1));
static_assert(Is(E_INVALIDARG, 0x80070057) && Is(E_ACCESSDENIED, 0x80070005));
static_assert(Is(REGDB_E_CLASSNOTREG, 0x80040154) && Is(CO_E_SERVER_EXEC_FAILURE, 0x80080005));
static_assert(Is(RPC_E_TOO_LATE, 0x80010119) && Is(E_NOINTERFACE, 0x80004002));

// --- device controls ---

static_assert(BusTypeUnknown == 0 && BusTypeScsi == 1 && BusTypeAtapi == 2 && BusTypeAta == 3 &&
              BusType1394 == 4 && BusTypeUsb == 7 && BusTypeRAID == 8);
static_assert(StorageDeviceProperty == 0 && StorageAdapterProperty == 1);
static_assert(PropertyStandardQuery == 0 && PropertyExistsQuery == 1);

// --- WMI ---

static_assert(WBEM_FLAG_RETURN_IMMEDIATELY == 0x10 && WBEM_FLAG_FORWARD_ONLY == 0x20);
static_assert(static_cast<LONG>(WBEM_INFINITE) == -1);
static_assert(WBEM_S_NO_ERROR == 0 && WBEM_S_FALSE == 1 && WBEM_S_TIMEDOUT == 0x40004);
static_assert(Is(static_cast<HRESULT>(WBEM_E_FAILED), 0x80041001));
static_assert(Is(static_cast<HRESULT>(WBEM_E_NOT_FOUND), 0x80041002));
static_assert(Is(static_cast<HRESULT>(WBEM_E_ACCESS_DENIED), 0x80041003));
static_assert(Is(static_cast<HRESULT>(WBEM_E_OUT_OF_MEMORY), 0x80041006));
static_assert(Is(static_cast<HRESULT>(WBEM_E_INVALID_PARAMETER), 0x80041008));
static_assert(Is(static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE), 0x8004100E));
static_assert(Is(static_cast<HRESULT>(WBEM_E_INVALID_CLASS), 0x80041010));
static_assert(Is(static_cast<HRESULT>(WBEM_E_PROVIDER_LOAD_FAILURE), 0x80041013));
static_assert(Is(static_cast<HRESULT>(WBEM_E_INVALID_METHOD), 0x8004102E));
static_assert(Is(static_cast<HRESULT>(WBEM_E_INVALID_OBJECT_PATH), 0x8004103A));
static_assert(VT_NULL == 1 && VT_I4 == 3 && VT_BSTR == 8 && VT_BOOL == 11);

// --- volumes, files, programs, registry ---

static_assert(DRIVE_UNKNOWN == 0 && DRIVE_NO_ROOT_DIR == 1 && DRIVE_REMOVABLE == 2 && DRIVE_FIXED == 3 &&
              DRIVE_REMOTE == 4 && DRIVE_CDROM == 5 && DRIVE_RAMDISK == 6);
static_assert(ERROR_INVALID_FUNCTION == 1 && ERROR_FILE_NOT_FOUND == 2 && ERROR_PATH_NOT_FOUND == 3 &&
              ERROR_ACCESS_DENIED == 5 && ERROR_INVALID_DATA == 13 && ERROR_NOT_READY == 21 &&
              ERROR_NOT_SUPPORTED == 50 && ERROR_INVALID_PARAMETER == 87 &&
              ERROR_INSUFFICIENT_BUFFER == 122 && ERROR_INVALID_NAME == 123 && ERROR_MORE_DATA == 234 &&
              ERROR_NOACCESS == 998 && ERROR_UNRECOGNIZED_VOLUME == 1005 &&
              ERROR_PRIVILEGE_NOT_HELD == 1314 && ERROR_INVALID_USER_BUFFER == 1784);
static_assert(SEE_MASK_NOCLOSEPROCESS == 0x40);
static_assert(REG_SZ == 1 && REG_BINARY == 3);

}  // namespace
