// The connection to the Virtual Disk Service, and disks and volumes by id.
#pragma once

#include "platform/vds.h"

// Stateless: every operation takes the service. COM must be initialised on the calling thread. A service that
// is null is E_INVALIDARG; success is exactly S_OK. Interfaces handed out belong to the caller.
class CVDSEx {
  public:
    // Sets the process's COM security; S_OK also when it is set already (RPC_E_TOO_LATE).
    static HRESULT InitializeSecurity();
    // Loads the local service and waits until it is ready. The code of the first step that failed; a service
    // that was loaded but is not ready stays in `service`.
    static HRESULT GetVdsService(IVdsService** service);
    // Every disk: the unallocated ones, then those of the online packs of the software providers. The array
    // is released with free(); the strings that its records point to are not released by anyone here. A walk
    // that fails half-way shortens the list and is no failure, except QueryProviders: then the array is freed
    // already and must not be used.
    static HRESULT QueryDisks(IVdsService* service, VDS_DISK_PROP** disks, LONG* count);
    static HRESULT GetVdsDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsDisk** disk);
    static HRESULT GetVdsAdvancedDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk** disk);
    static HRESULT GetVdsAdvancedDisk2(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk2** disk);
    static HRESULT GetVdsVolumeMF(IVdsService* service, VDS_OBJECT_ID id, IVdsVolumeMF** volume);
};
