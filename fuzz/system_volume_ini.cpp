// SystemVolume.ini, whatever it holds, before and after a number is recorded in it.
#include <cstdint>

#include "fuzz/emulated_host.h"
#include "machine/facts/machines.h"
#include "manager/system_volume_ini.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    machine::Pc facts = machine::FactoryMbr();
    for (machine::Partition& partition : facts.disks[0].partitions) {
        if (partition.volume && partition.volume->letters == "C")
            partition.volume->files.PutFile("SystemVolume.ini",
                                            std::string(reinterpret_cast<const char*>(data), size));
    }
    const EmulatedHost host(std::move(facts));
    const WCHAR* const file = TEXT("C:\\SystemVolume.ini");
    int partition = 0;
    ReadRecordedPartition(file, partition);
    if (RecordActivePartition(file, 2)) ReadRecordedPartition(file, partition);
    return 0;
}
