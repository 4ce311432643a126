// The letters of the running Windows PE and of the installed Windows, compared by the data of their volumes.
#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/emulated_host.h"
#include "machine/facts/machines.h"
#include "manager/kestova.h"

namespace {

using Values = std::map<std::string, machine::RegistryValue>;

Values Letters(FuzzedDataProvider& input) {
    Values values;
    for (auto count = input.ConsumeIntegralInRange<int>(0, 8); count > 0; --count) {
        const auto letter = input.ConsumeIntegralInRange<char>('A', 'Z');
        machine::RegistryValue& value = values[std::string("\\DosDevices\\") + letter + ':'];
        value.type = input.ConsumeIntegralInRange<uint32_t>(0, 11);
        value.data = input.ConsumeRandomLengthString(64);
    }
    return values;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    machine::Pc facts = machine::WinPeTwoDisks();
    // Beside the letters that fit each other, so that some do.
    for (Values* const values :
         {&facts.registry["HKLM\\SYSTEM\\MountedDevices"], &facts.offlineSystemHive["MountedDevices"]}) {
        for (auto& [name, value] : Letters(input))
            (*values)[name] = value;
    }
    const EmulatedHost host(std::move(facts));
    Kestova kestova;
    kestova.Initialize(false);
    tagDriveInfo_t records[26] = {};
    kestova.GetWinDriveLetters(records, input.ConsumeIntegralInRange<int>(0, 26));
    return 0;
}
