#include "machine/calls/result_codes.h"

#include <algorithm>
#include <vector>

#include "base/hexadecimal.h"
#include "base/nearest.h"
#include "platform/vds.h"
#include "platform/windows_api.h"

namespace machine {

namespace {

#define NAMED(code) \
    { #code, static_cast < uint32_t>(code) }

constexpr NamedCode results[] = {
    NAMED(S_OK),
    NAMED(S_FALSE),
    NAMED(WBEM_S_TIMEDOUT),
    {"VDS_S_PROPERTIES_INCOMPLETE", 0x00042715},
    NAMED(E_NOTIMPL),
    NAMED(E_NOINTERFACE),
    NAMED(E_POINTER),
    NAMED(E_ABORT),
    NAMED(E_FAIL),
    NAMED(E_UNEXPECTED),
    NAMED(RPC_E_CHANGED_MODE),
    NAMED(RPC_E_TOO_LATE),
    NAMED(REGDB_E_CLASSNOTREG),
    NAMED(WBEM_E_FAILED),
    NAMED(WBEM_E_NOT_FOUND),
    NAMED(WBEM_E_ACCESS_DENIED),
    NAMED(WBEM_E_OUT_OF_MEMORY),
    NAMED(WBEM_E_INVALID_PARAMETER),
    NAMED(WBEM_E_INVALID_NAMESPACE),
    NAMED(WBEM_E_INVALID_CLASS),
    NAMED(WBEM_E_PROVIDER_LOAD_FAILURE),
    NAMED(WBEM_E_INVALID_METHOD),
    NAMED(WBEM_E_INVALID_OBJECT_PATH),
    NAMED(VDS_E_NOT_SUPPORTED),
    NAMED(VDS_E_INITIALIZED_FAILED),
    NAMED(VDS_E_OBJECT_NOT_FOUND),
    NAMED(VDS_E_OBJECT_DELETED),
    {"VDS_E_NO_MEDIA", 0x80042412},
    NAMED(VDS_E_DEVICE_IN_USE),
    NAMED(VDS_E_INVALID_OPERATION),
    NAMED(VDS_E_DISK_NOT_INITIALIZED),
    NAMED(VDS_E_ACCESS_DENIED),
    NAMED(VDS_E_IO_ERROR),
    {"VDS_E_VOLUME_NOT_ONLINE", 0x8004243D},
    {"VDS_E_PACK_OFFLINE", 0x80042444},
    NAMED(VDS_E_VOLUME_NOT_MOUNTED),
    NAMED(VDS_E_DRIVE_LETTER_NOT_FREE),
    NAMED(VDS_E_INVALID_DRIVE_LETTER),
    NAMED(VDS_E_INVALID_OBJECT_TYPE),
    NAMED(VDS_E_INVALID_PARTITION_TYPE),
    NAMED(VDS_E_INVALID_QUERY_PROVIDER_FLAG),
    NAMED(VDS_E_PARTITION_STYLE_MISMATCH),
    NAMED(VDS_E_PARTITION_MSR),
    NAMED(VDS_E_PARTITION_LDM),
    NAMED(E_ACCESSDENIED),
    NAMED(E_OUTOFMEMORY),
    NAMED(E_INVALIDARG),
    NAMED(CO_E_SERVER_EXEC_FAILURE),
};

constexpr NamedCode errors[] = {
    NAMED(ERROR_SUCCESS),
    NAMED(ERROR_INVALID_FUNCTION),
    NAMED(ERROR_FILE_NOT_FOUND),
    NAMED(ERROR_PATH_NOT_FOUND),
    NAMED(ERROR_ACCESS_DENIED),
    NAMED(ERROR_INVALID_HANDLE),
    NAMED(ERROR_NOT_ENOUGH_MEMORY),
    NAMED(ERROR_INVALID_DATA),
    NAMED(ERROR_NO_MORE_FILES),
    NAMED(ERROR_WRITE_PROTECT),
    NAMED(ERROR_NOT_READY),
    NAMED(ERROR_CRC),
    NAMED(ERROR_SHARING_VIOLATION),
    NAMED(ERROR_NOT_SUPPORTED),
    NAMED(ERROR_INVALID_PARAMETER),
    NAMED(ERROR_BUFFER_OVERFLOW),
    NAMED(ERROR_DISK_FULL),
    NAMED(ERROR_INSUFFICIENT_BUFFER),
    NAMED(ERROR_MOD_NOT_FOUND),
    NAMED(ERROR_FILENAME_EXCED_RANGE),
    NAMED(ERROR_MORE_DATA),
    NAMED(ERROR_NOACCESS),
    NAMED(ERROR_UNRECOGNIZED_VOLUME),
    NAMED(ERROR_NO_UNICODE_TRANSLATION),
    NAMED(ERROR_IO_DEVICE),
    NAMED(ERROR_CANCELLED),
    NAMED(ERROR_PRIVILEGE_NOT_HELD),
    {"FVE_E_LOCKED_VOLUME", 0x80310000},
    {"ERROR_NO_SUCH_DEVINST", 0xE000020B},
};

#undef NAMED

}  // namespace

std::span<const NamedCode> NamedResults() {
    return results;
}

std::span<const NamedCode> NamedErrors() {
    return errors;
}

std::optional<uint32_t> CodeOfName(std::string_view name) {
    for (const std::span<const NamedCode> codes : {NamedResults(), NamedErrors()}) {
        const auto found = std::ranges::find(codes, name, &NamedCode::name);
        if (found != codes.end()) return found->code;
    }
    return std::nullopt;
}

std::string NearestCodeName(std::string_view name) {
    std::vector<std::string> names;
    for (const std::span<const NamedCode> codes : {NamedResults(), NamedErrors()}) {
        for (const NamedCode& named : codes)
            names.emplace_back(named.name);
    }
    return Nearest(name, names);
}

std::string CodeText(uint32_t code, FailsWith failsWith) {
    if (failsWith == FailsWith::Value) return std::to_string(code);
    const bool isResult = failsWith == FailsWith::Hresult;
    const std::span<const NamedCode> codes = isResult ? NamedResults() : NamedErrors();
    const auto found = std::ranges::find(codes, code, &NamedCode::code);
    if (found != codes.end()) return std::string(found->name);
    return isResult || code > 0xFFFF ? Hex(code, 8) : std::to_string(code);
}

}  // namespace machine
