#include "device/controller_path.h"

namespace {

// The first link whose dependent is the device, or -1.
int FindLink(const WideString& deviceId, const tagControllerLinkTable_t& links) {
    for (int link = 0; link < links.nCount; ++link) {
        if (EqualIgnoringCase(ExtractPathValue(links.Dependent[link]).c_str(), deviceId.c_str())) return link;
    }
    return -1;
}

}  // namespace

WideString ExtractPathValue(const WideString& objectPath) {
    WideString value;
    for (const WCHAR unit : objectPath) {
        if (unit != TEXT('"')) value += unit;
    }
    const WideString doubled = TEXT("\\\\");
    for (size_t at = value.find(doubled); at != WideString::npos; at = value.find(doubled, at + 1))
        value.erase(at, 1);
    const size_t equals = value.find(TEXT('='));
    return equals != WideString::npos ? value.substr(equals + 1) : value;
}

WideString FindTopController(const WideString& deviceId, const tagControllerLinkTable_t& links) {
    WideString topController;
    WideString current = deviceId;
    for (int step = 0; step < links.nCount; ++step) {
        const int link = FindLink(current, links);
        if (link < 0) break;
        current = ExtractPathValue(links.Antecedent[link]);
        if (!current.empty()) topController = current;
    }
    return topController;
}
