#include "tools/kestova/passage/passed_objects.h"

#include <algorithm>
#include <atomic>
#include <new>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "platform/vds_uncalled.h"
#include "tools/kestova/common/text.h"

namespace {

// --- what every object has ---

template <typename Interface>
class Passed : public Uncalled<Interface> {
  public:
    Passed(Interface* object, ChangeStop& stop) : object_(object), stop_(stop) {}
    virtual ~Passed() { object_->Release(); }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        return Pass(object_->QueryInterface(id, out), id, out);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

  protected:
    Interface& Object() { return *object_; }
    // An answer with what it hands out.
    template <typename Out>
    HRESULT Pass(HRESULT answer, REFIID id, Out** out) {
        if (FAILED(answer) || out == nullptr || *out == nullptr) return answer;
        const HRESULT passed = PassThrough(id, reinterpret_cast<void**>(out), stop_);
        return FAILED(passed) ? passed : answer;
    }
    HRESULT Refuse(const std::string& change) {
        stop_.Refuse(change);
        return refusedChange;
    }

  private:
    Interface* object_;
    ChangeStop& stop_;
    std::atomic<ULONG> references_ = 1;
};

class PassedUnknown final : public Passed<IUnknown> {
  public:
    using Passed::Passed;
};

// --- the service and its lists ---

class PassedLoader final : public Passed<IVdsServiceLoader> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE LoadService(LPWSTR machine, IVdsService** service) override {
        return Pass(Object().LoadService(machine, service), IID_IVdsService, service);
    }
};

class PassedService final : public Passed<IVdsService> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE IsServiceReady() override { return Object().IsServiceReady(); }
    HRESULT STDMETHODCALLTYPE WaitForServiceReady() override { return Object().WaitForServiceReady(); }
    HRESULT STDMETHODCALLTYPE QueryProviders(DWORD masks, IEnumVdsObject** list) override {
        return Pass(Object().QueryProviders(masks, list), IID_IEnumVdsObject, list);
    }
    HRESULT STDMETHODCALLTYPE QueryUnallocatedDisks(IEnumVdsObject** list) override {
        return Pass(Object().QueryUnallocatedDisks(list), IID_IEnumVdsObject, list);
    }
    HRESULT STDMETHODCALLTYPE GetObject(VDS_OBJECT_ID id, VDS_OBJECT_TYPE type, IUnknown** object) override {
        return Pass(Object().GetObject(id, type, object), IID_IUnknown, object);
    }
};

class PassedList final : public Passed<IEnumVdsObject> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IUnknown** objects, ULONG* fetched) override {
        const HRESULT answer = Object().Next(count, objects, fetched);
        if (FAILED(answer) || objects == nullptr || fetched == nullptr) return answer;
        for (ULONG i = 0; i < std::min(count, *fetched); ++i) {
            const HRESULT passed = Pass(S_OK, IID_IUnknown, &objects[i]);
            if (FAILED(passed)) return passed;
        }
        return answer;
    }
};

class PassedProvider final : public Passed<IVdsSwProvider> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** list) override {
        return Pass(Object().QueryPacks(list), IID_IEnumVdsObject, list);
    }
};

class PassedPack final : public Passed<IVdsPack> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_PACK_PROP* properties) override {
        return Object().GetProperties(properties);
    }
    HRESULT STDMETHODCALLTYPE QueryDisks(IEnumVdsObject** list) override {
        return Pass(Object().QueryDisks(list), IID_IEnumVdsObject, list);
    }
};

// --- disks and volumes ---

class PassedDisk final : public Passed<IVdsDisk> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_DISK_PROP* properties) override {
        return Object().GetProperties(properties);
    }
    HRESULT STDMETHODCALLTYPE QueryExtents(VDS_DISK_EXTENT** extents, LONG* count) override {
        return Object().QueryExtents(extents, count);
    }
};

std::string PartitionAt(ULONGLONG offset) {
    return "the partition at offset " + std::to_string(offset);
}

std::string AttributesChange(ULONGLONG offset, const CHANGE_ATTRIBUTES_PARAMETERS& to) {
    if (to.style == VDS_PST_GPT)
        return "set the attributes of " + PartitionAt(offset) + " to " + Hex(to.GptPartInfo.attributes, 16);
    return (to.MbrPartInfo.bootIndicator != FALSE ? "make " : "no longer keep ") + PartitionAt(offset) +
           " active";
}

std::string TypeChange(ULONGLONG offset, const CHANGE_PARTITION_TYPE_PARAMETERS& to) {
    const bool isGpt = to.style == VDS_PST_GPT;
    return "change the type of " + PartitionAt(offset) + " to " +
           (isGpt ? GuidText(to.GptPartInfo.partitionType) : Hex(to.MbrPartInfo.partitionType, 2));
}

class PassedAdvancedDisk final : public Passed<IVdsAdvancedDisk> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) override {
        return Object().QueryPartitions(partitions, count);
    }
    HRESULT STDMETHODCALLTYPE GetDriveLetter(ULONGLONG offset, WCHAR* letter) override {
        return Object().GetDriveLetter(offset, letter);
    }
    HRESULT STDMETHODCALLTYPE ChangeAttributes(ULONGLONG offset, CHANGE_ATTRIBUTES_PARAMETERS* to) override {
        return Refuse(AttributesChange(offset, *to));
    }
    HRESULT STDMETHODCALLTYPE AssignDriveLetter(ULONGLONG offset, WCHAR letter) override {
        return Refuse("give the letter " + LetterText(letter) + " to " + PartitionAt(offset));
    }
    HRESULT STDMETHODCALLTYPE DeleteDriveLetter(ULONGLONG offset, WCHAR letter) override {
        return Refuse("take the letter " + LetterText(letter) + " from " + PartitionAt(offset));
    }
};

class PassedAdvancedDisk2 final : public Passed<IVdsAdvancedDisk2> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE ChangePartitionType(ULONGLONG offset, BOOL,
                                                  CHANGE_PARTITION_TYPE_PARAMETERS* to) override {
        return Refuse(TypeChange(offset, *to));
    }
};

class PassedVolume final : public Passed<IVdsVolumeMF> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* properties) override {
        return Object().GetFileSystemProperties(properties);
    }
};

// --- which object for which interface ---

// Null without memory. An object's pointer to one interface is that interface's, so the cast goes through it.
template <typename Interface, typename Object>
void* Make(void* object, ChangeStop& stop) {
    Interface* const made = new (std::nothrow) Object(static_cast<Interface*>(object), stop);
    return made;
}

struct KnownInterface {
    const GUID& id;
    void* (*make)(void* object, ChangeStop& stop);
};

constexpr KnownInterface known[] = {
    {IID_IUnknown, Make<IUnknown, PassedUnknown>},
    {IID_IVdsServiceLoader, Make<IVdsServiceLoader, PassedLoader>},
    {IID_IVdsService, Make<IVdsService, PassedService>},
    {IID_IEnumVdsObject, Make<IEnumVdsObject, PassedList>},
    {IID_IVdsSwProvider, Make<IVdsSwProvider, PassedProvider>},
    {IID_IVdsPack, Make<IVdsPack, PassedPack>},
    {IID_IVdsDisk, Make<IVdsDisk, PassedDisk>},
    {IID_IVdsAdvancedDisk, Make<IVdsAdvancedDisk, PassedAdvancedDisk>},
    {IID_IVdsAdvancedDisk2, Make<IVdsAdvancedDisk2, PassedAdvancedDisk2>},
    {IID_IVdsVolumeMF, Make<IVdsVolumeMF, PassedVolume>},
};

}  // namespace

HRESULT PassThrough(REFIID interfaceId, void** object, ChangeStop& stop) {
    const auto row = std::ranges::find_if(
        known, [&](const KnownInterface& one) { return IsEqualGUID(one.id, interfaceId) != 0; });
    const bool isKnown = row != std::end(known);
    void* const passed = isKnown ? row->make(*object, stop) : nullptr;
    // Every interface begins with the methods of IUnknown.
    if (passed == nullptr) static_cast<IUnknown*>(*object)->Release();
    *object = passed;
    if (passed != nullptr) return S_OK;
    return isKnown ? E_OUTOFMEMORY : E_NOINTERFACE;
}
