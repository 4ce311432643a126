// The Virtual Disk Service and WMI of the test's PC, registered in this process for CoCreateInstance.
// Everything else that the library asks is answered by Windows, or by what stands in for it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/com_apartment.h"
#include "platform/vds.h"

using Text = std::basic_string<WCHAR>;

struct TestPartition {
    ULONG number;
    ULONGLONG offset;
    ULONGLONG size;
    BYTE type;
    bool active = false;
    WCHAR letter = 0;
    Text label = {};
};

// An MBR disk.
struct TestDisk {
    int number;
    ULONGLONG size;
    VDS_STORAGE_BUS_TYPE bus;
    std::vector<TestPartition> partitions;
};

struct TestPc {
    std::vector<TestDisk> disks;
    // The instances of each class of WMI, by the names of their properties.
    std::map<Text, std::vector<std::map<Text, Text>>> instances;
};

// While it lives, both services answer from its facts.
class Services {
  public:
    explicit Services(TestPc pc);
    ~Services();
    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    TestPc pc;

  private:
    ComApartment com_;
    DWORD cookies_[2] = {};
};

// The living one's facts.
TestPc& Facts();

HRESULT MakeVdsLoader(IUnknown** out);
HRESULT MakeWmiLocator(IUnknown** out);
