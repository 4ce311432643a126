// The kinds of parameters that platform calls have. Each writes what the library passes (Ask) and what the
// call has left there (Tell), and puts that there again (Restore), as far as it has any of it.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "tools/kestova/recording/passed_interfaces.h"
#include "tools/kestova/recording/records.h"
#include "tools/kestova/recording/values.h"

namespace recording {

// --- what is passed ---

// A number, a flag, an enumeration, a GUID or a text.
template <typename Value>
struct In {
    const char* name;
    Value value;
    void Ask(Json& in, Tape&) const { in[name] = AsJson(value); }
};
template <typename Value>
In(const char*, Value) -> In<Value>;

struct InHandle {
    const char* name;
    const void* handle;
    void Ask(Json& in, Tape& tape) const { in[name] = tape.handles.NameOf(handle); }
};

struct InBytes {
    const char* name;
    const void* bytes;
    size_t size;
    void Ask(Json& in, Tape&) const { in[name] = bytes != nullptr ? BytesAsJson(bytes, size) : Json(); }
};

// An object that the library has.
struct InObject {
    const char* name;
    const IUnknown* object;
    void Ask(Json& in, Tape& tape) const { in[name] = NumberOf(object, tape); }
};

// --- what a call leaves ---

// A number that may be passed too. Null: the library does not ask for it.
template <NumberOrEnum Value>
struct Out {
    const char* name;
    Value* value;
    void Tell(Json& out, Tape&, bool) const {
        if (value != nullptr) out[name] = AsJson(*value);
    }
    void Restore(const Json& out, Tape&) const {
        if (value != nullptr) Read(At(out, name), *value);
    }
};
template <typename Value>
Out(const char*, Value*) -> Out<Value>;

// The same of one that says how much room there is.
struct InOutSize {
    const char* name;
    DWORD* size;
    void Ask(Json& in, Tape&) const { in[name] = size != nullptr ? AsJson(*size) : Json(); }
    void Tell(Json& out, Tape& tape, bool succeeded) const { Out{name, size}.Tell(out, tape, succeeded); }
    void Restore(const Json& out, Tape& tape) const { Out{name, size}.Restore(out, tape); }
};

struct OutHandle {
    const char* name;
    void** handle;
    void Tell(Json& out, Tape& tape, bool succeeded) const {
        if (succeeded) out[name] = tape.handles.Add(*handle);
    }
    void Restore(const Json& out, Tape& tape) const {
        if (out.contains(name)) *handle = tape.handles.Restore(At(out, name));
    }
};

// A buffer of the library for a text.
struct OutText {
    const char* name;
    WCHAR* buffer;
    size_t capacity;
    bool passed = false;  // the text that is there before counts too
    void Ask(Json& in, Tape&) const {
        if (passed) in[name] = AsJson(static_cast<LPCWSTR>(buffer));
    }
    void Tell(Json& out, Tape&, bool succeeded) const {
        if (!succeeded || buffer == nullptr || capacity == 0) return;
        const WCHAR* const end = std::find(buffer, buffer + capacity, WCHAR{0});
        out[name] = AsJson(WideString(static_cast<const WCHAR*>(buffer), end).c_str());
    }
    void Restore(const Json& out, Tape&) const {
        if (buffer == nullptr || capacity == 0 || !out.contains(name)) return;
        const WideString text = TextFrom(At(out, name));
        if (text.size() >= capacity) throw DamagedRecording("a text is longer than the room for it");
        std::copy_n(text.c_str(), text.size() + 1, buffer);
    }
};

// The same for texts that follow each other until an empty one.
struct OutTexts {
    const char* name;
    WCHAR* buffer;
    size_t capacity;
    void Tell(Json& out, Tape&, bool succeeded) const {
        if (!succeeded) return;
        Json texts = Json::array();
        const WCHAR* const end = buffer + capacity;
        for (const WCHAR* text = buffer; text != end && *text != 0;) {
            const WCHAR* const stop = std::find(text, end, WCHAR{0});
            texts.push_back(AsJson(WideString(text, stop).c_str()));
            text = stop == end ? end : stop + 1;
        }
        out[name] = texts;
    }
    void Restore(const Json& out, Tape&) const {
        if (!out.contains(name)) return;
        WideString all;
        for (const Json& text : At(out, name))
            all += TextFrom(text) + WCHAR{0};
        if (all.size() >= capacity) throw DamagedRecording("a text is longer than the room for it");
        std::copy_n(all.c_str(), all.size() + 1, buffer);
    }
};

// A buffer of the library for bytes, of which `*count` are there after the call; null: as many as there is
// room for.
struct OutBytes {
    const char* name;
    void* bytes;
    size_t capacity;
    const DWORD* count = nullptr;
    void Tell(Json& out, Tape&, bool succeeded) const {
        if (bytes == nullptr || (count == nullptr && !succeeded)) return;
        out[name] = BytesAsJson(bytes, count != nullptr ? std::min<size_t>(*count, capacity) : capacity);
    }
    void Restore(const Json& out, Tape&) const {
        if (bytes == nullptr || !out.contains(name)) return;
        const std::string read = BytesFrom(At(out, name));
        if (read.size() > capacity) throw DamagedRecording("more bytes than there is room for");
        std::memcpy(bytes, read.data(), read.size());
    }
};

// An interface, which is put between the library and the platform.
template <typename Interface>
struct OutObject {
    const char* name;
    const IID& iid;
    Interface** object;
    void Tell(Json& out, Tape& tape, bool) const {
        if (object == nullptr || *object == nullptr) return;
        out[name] = Pass(iid, reinterpret_cast<void**>(object), tape);
    }
    void Restore(const Json& out, Tape& tape) const {
        if (object == nullptr) return;
        *object = nullptr;
        if (out.contains(name))
            *object = static_cast<Interface*>(MakeUp(iid, NumberFrom<uint64_t>(At(out, name)), tape));
    }
};
template <typename Interface>
OutObject(const char*, const IID&, Interface**) -> OutObject<Interface>;

// The next objects of an enumeration; `*fetched` of them are there after the call.
template <typename Interface>
struct OutObjects {
    const char* name;
    const IID& iid;
    Interface** objects;
    ULONG room;
    const ULONG* fetched;
    void Tell(Json& out, Tape& tape, bool succeeded) const {
        const ULONG count = fetched != nullptr ? *fetched : ULONG{succeeded};
        Json numbers = Json::array();
        for (ULONG i = 0; i < std::min(count, room); ++i)
            numbers.push_back(objects[i] != nullptr
                                  ? Json(Pass(iid, reinterpret_cast<void**>(&objects[i]), tape))
                                  : Json());
        out[name] = numbers;
    }
    void Restore(const Json& out, Tape& tape) const {
        const Json& numbers = At(out, name);
        if (!numbers.is_array() || numbers.size() > room)
            throw DamagedRecording("more objects than asked for");
        for (size_t i = 0; i < numbers.size(); ++i)
            objects[i] = numbers[i].is_null()
                             ? nullptr
                             : static_cast<Interface*>(MakeUp(iid, NumberFrom<uint64_t>(numbers[i]), tape));
    }
};
template <typename Interface>
OutObjects(const char*, const IID&, Interface**, ULONG, const ULONG*) -> OutObjects<Interface>;

// --- records ---

// Writes the fields of a record.
struct FieldWriter {
    Json& json;
    template <NumberOrEnum Number>
    void operator()(const char* name, Number& number) const {
        json[name] = AsJson(number);
    }
    void operator()(const char* name, const GUID& guid) const { json[name] = AsJson(guid); }
    void operator()(const char* name, const LPWSTR& text) const {
        json[name] = AsJson(static_cast<LPCWSTR>(text));
    }
    template <size_t size>
    void operator()(const char* name, const WCHAR (&text)[size]) const {
        json[name] = AsJson(WideString(text, std::find(text, text + size, WCHAR{0})).c_str());
    }
};

// Reads them. A text is lent in memory that the library frees with CoTaskMemFree.
struct FieldReader {
    const Json& json;
    template <NumberOrEnum Number>
    void operator()(const char* name, Number& number) const {
        Read(At(json, name), number);
    }
    void operator()(const char* name, GUID& guid) const { guid = GuidFrom(At(json, name)); }
    void operator()(const char* name, LPWSTR& text) const { text = LendText(At(json, name)); }
    template <size_t size>
    void operator()(const char* name, WCHAR (&text)[size]) const {
        const WideString read = TextFrom(At(json, name));
        if (read.size() > size) throw DamagedRecording("a text is longer than the room for it");
        std::copy(read.begin(), read.end(), text);
    }
};

template <typename Record>
struct InRecord {
    const char* name;
    Record* record;
    void Ask(Json& in, Tape&) const {
        FieldWriter writer{in[name] = Json::object()};
        Visit(*record, writer);
    }
};
template <typename Record>
InRecord(const char*, Record*) -> InRecord<Record>;

template <typename Record>
void ReadRecord(const Json& json, Record& record) {
    FieldReader reader{json};
    Visit(record, reader);
}

template <typename Record>
struct OutRecord {
    const char* name;
    Record* record;
    void Tell(Json& out, Tape&, bool) const {
        FieldWriter writer{out[name] = Json::object()};
        Visit(*record, writer);
    }
    void Restore(const Json& out, Tape&) const { ReadRecord(At(out, name), *record); }
};
template <typename Record>
OutRecord(const char*, Record*) -> OutRecord<Record>;

// Records in one block of memory that the library frees with CoTaskMemFree.
template <typename Record>
struct OutRecords {
    const char* name;
    Record** records;
    LONG* count;
    void Tell(Json& out, Tape&, bool) const {
        Json list = *records != nullptr ? Json::array() : Json();
        for (LONG i = 0; *records != nullptr && i < *count; ++i) {
            FieldWriter writer{list.emplace_back(Json::object())};
            Visit((*records)[i], writer);
        }
        out["count"] = *count;
        out[name] = list;
    }
    void Restore(const Json& out, Tape&) const {
        const Json& list = At(out, name);
        const LONG recorded = NumberFrom<LONG>(At(out, "count"));
        if (list.is_array() && recorded > static_cast<LONG>(list.size()))
            throw DamagedRecording("fewer records than there should be");
        *records = list.is_array() ? static_cast<Record*>(LendMemory(list.size() * sizeof(Record))) : nullptr;
        *count = recorded;
        for (size_t i = 0; i < list.size() && *records != nullptr; ++i)
            ReadRecord(list[i], (*records)[i]);
    }
};
template <typename Record>
OutRecords(const char*, Record**, LONG*) -> OutRecords<Record>;

// --- values of WMI ---

Json AsJson(const VARIANT& value);
// Numbers, flags, texts and nothing; the library clears it.
VARIANT VariantFrom(const Json& value);

struct InVariant {
    const char* name;
    const VARIANT* value;
    void Ask(Json& in, Tape&) const { in[name] = AsJson(*value); }
};

struct OutVariant {
    const char* name;
    VARIANT* value;
    void Tell(Json& out, Tape&, bool succeeded) const {
        if (succeeded) out[name] = AsJson(*value);
    }
    void Restore(const Json& out, Tape&) const {
        if (out.contains(name)) *value = VariantFrom(At(out, name));
    }
};

}  // namespace recording
