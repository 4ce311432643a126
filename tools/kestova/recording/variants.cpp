// Values of WMI in a recording: {"type": 8, "text": "C:"}. Of a type that the library does not read only the
// number of the type is kept.

#include "tools/kestova/recording/parameters.h"

namespace recording {

Json AsJson(const VARIANT& value) {
    Json json = {{"type", V_VT(&value)}};
    switch (V_VT(&value)) {
        case VT_BSTR:
            json["text"] = AsJson(static_cast<LPCWSTR>(V_BSTR(&value)));
            break;
        case VT_BOOL:
            json["number"] = V_BOOL(&value);
            break;
        case VT_UI1:
            json["number"] = V_UI1(&value);
            break;
        case VT_I2:
            json["number"] = V_I2(&value);
            break;
        case VT_I4:
            json["number"] = V_I4(&value);
            break;
        default:
            break;
    }
    return json;
}

VARIANT VariantFrom(const Json& json) {
    VARIANT value;
    VariantInit(&value);
    const VARTYPE type = NumberFrom<VARTYPE>(At(json, "type"));
    switch (type) {
        case VT_BSTR:
            V_BSTR(&value) =
                At(json, "text").is_null() ? nullptr : SysAllocString(TextFrom(At(json, "text")).c_str());
            break;
        case VT_BOOL:
            V_BOOL(&value) = NumberFrom<VARIANT_BOOL>(At(json, "number"));
            break;
        case VT_UI1:
            V_UI1(&value) = NumberFrom<BYTE>(At(json, "number"));
            break;
        case VT_I2:
            V_I2(&value) = NumberFrom<SHORT>(At(json, "number"));
            break;
        case VT_I4:
            V_I4(&value) = NumberFrom<LONG>(At(json, "number"));
            break;
        case VT_EMPTY:
        case VT_NULL:
            break;
        default:
            throw DamagedRecording("a value of WMI has a type that the library does not read");
    }
    V_VT(&value) = type;
    return value;
}

}  // namespace recording
