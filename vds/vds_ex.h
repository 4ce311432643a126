// The connection to the Virtual Disk Service, and disks and volumes by id.
#pragma once

#include "platform/vds.h"

// Stateless: every operation takes the service. COM must be initialised on the calling thread. A service that
// is null, or an interface that is missing behind a success, is E_INVALIDARG; success is exactly S_OK, and
// S_FALSE (a service that is still starting) is a failure. Interfaces handed out belong to the caller.
class CVDSEx {
  public:
    // Sets the process's COM security; S_OK also when it is set already (RPC_E_TOO_LATE). Rests on
    // CoInitializeSecurity; writes no record, as the next one.
    static HRESULT InitializeSecurity();
    // Loads the local service and waits until it is ready. The code of the first step that failed; a service
    // that was loaded but is not ready stays in `service`, which is null beforehand.
    static HRESULT GetVdsService(IVdsService** service);

    // Every disk: the unallocated ones, then those of the online packs of the software providers; a disk in
    // both is listed twice. The array is released with free(); the strings that its records point to are not
    // released by anyone here. A walk that fails half-way shortens the list and is no failure, except
    // QueryProviders: then the array is freed already and must not be used. On earlier failures `disks` and
    // `count` are untouched.
    static HRESULT QueryDisks(IVdsService* service, VDS_DISK_PROP** disks, LONG* count);

    // A disk or a volume by the id that the service gave it, by way of IVdsService::GetObject: the code of
    // the first step that failed. The output is written by the last step alone and untouched when an earlier
    // one fails. GetVdsDisk writes its failures at the trace level, GetVdsAdvancedDisk at the error level,
    // the other two write nothing.
    static HRESULT GetVdsDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsDisk** disk);
    static HRESULT GetVdsAdvancedDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk** disk);
    static HRESULT GetVdsAdvancedDisk2(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk2** disk);
    static HRESULT GetVdsVolumeMF(IVdsService* service, VDS_OBJECT_ID id, IVdsVolumeMF** volume);
};
