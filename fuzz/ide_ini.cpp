// IDE.INI, which lists controllers that come first or not at all.
#include <cstdint>

#include "device/ide_ini.h"
#include "fuzz/emulated_host.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    machine::Pc facts;
    facts.host.files.PutFile("IDE.INI", std::string(reinterpret_cast<const char*>(data), size));
    const EmulatedHost host(std::move(facts));
    for (const WCHAR* const section : {TEXT("Exclude"), TEXT("OrderIndex")})
        FindControllerKey(section, TEXT("PCI\\VEN_8086&DEV_2922\\3&11583659&0&FA"), IdeIniPath());
    return 0;
}
