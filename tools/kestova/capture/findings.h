// What a capture has found so far.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "machine/facts/pc.h"
#include "platform/windows_api.h"

// A partition by its disk's number and its offset.
using PartitionPlace = std::pair<uint32_t, uint64_t>;

// What IVdsAdvancedDisk::GetDriveLetter answered.
struct LetterAnswer {
    HRESULT result = 0;
    WCHAR letter = 0;
};

// Behind the name of a list.
inline constexpr const char* goesOn = " may go on: no more than 256 of it are read";

struct Findings {
    machine::Pc pc;
    std::vector<std::string> notes;                  // what a description cannot say
    std::map<PartitionPlace, int> extentTypes;       // as the service has them
    std::map<PartitionPlace, LetterAnswer> letters;  // as the service has them
    std::map<uint32_t, bool> lendsArray;             // of the disks whose table is empty

    // A call on that object does not succeed, or succeeds in another way than S_OK, then with its outputs. It
    // becomes a fault of the described PC.
    void Fails(const char* call, const std::string& argument, uint32_t code) {
        machine::FaultRule rule{.call = call, .code = code, .argument = argument};
        rule.withOutputs = SUCCEEDED(static_cast<HRESULT>(code));
        pc.faults.push_back(rule);
    }
    void Note(const std::string& text) { notes.push_back(text); }
};
