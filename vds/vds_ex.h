// The connection to the Virtual Disk Service, and disks and volumes by id.
#pragma once

#include "platform/vds.h"

// Stateless: every operation takes the service. COM must be initialised on the calling thread. E_INVALIDARG
// for a null service or a success without an interface. Success is exactly S_OK; S_FALSE (the service is
// still starting) is a failure. The caller releases the interfaces it receives.
class CVDSEx {
  public:
    // Sets the process's COM security. The code of CoInitializeSecurity, but S_OK if security is set already
    // (RPC_E_TOO_LATE). Writes no record.
    static HRESULT InitializeSecurity();
    // Loads the local service and waits until it is ready. The code of the first step that failed; `service`
    // is null if loading failed, and the loaded service if only waiting failed. Writes no record.
    static HRESULT GetVdsService(IVdsService** service);

    // Lists every disk: the unallocated ones, then those in the online packs of the software providers; a
    // disk in both is listed twice. The caller releases the array with free(); nobody releases the strings
    // that its records point to. An enumeration that fails half-way truncates the list and still returns
    // S_OK. If QueryProviders fails, its code is returned, and the array is freed already and must not be
    // used. On earlier failures `disks` and `count` are unchanged.
    static HRESULT QueryDisks(IVdsService* service, VDS_DISK_PROP** disks, LONG* count);

    // Looks up a disk or a volume by its id in the service (IVdsService::GetObject). The code of the first
    // step that failed; only the last step writes the output. GetVdsDisk records its failures at the trace
    // level, GetVdsAdvancedDisk at the error level; the other two write no record.
    static HRESULT GetVdsDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsDisk** disk);
    static HRESULT GetVdsAdvancedDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk** disk);
    static HRESULT GetVdsAdvancedDisk2(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk2** disk);
    static HRESULT GetVdsVolumeMF(IVdsService* service, VDS_OBJECT_ID id, IVdsVolumeMF** volume);
};
