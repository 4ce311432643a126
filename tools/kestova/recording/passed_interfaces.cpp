#include "tools/kestova/recording/passed_interfaces.h"

#include <algorithm>
#include <atomic>

#include "platform/vds_uncalled.h"
#include "platform/wmi_uncalled.h"
#include "tools/kestova/recording/exchange.h"

namespace recording {

namespace {

// --- what every object has ---

bool IsKnown(REFIID iid);

template <typename Interface, typename Base = Uncalled<Interface>>
class Passed : public Base, public PassedObject {
  public:
    Passed(Interface* object, Tape& tape) : object_(object), tape_(tape) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        if (!IsKnown(id)) return E_NOINTERFACE;
        return Call(
            "IUnknown::QueryInterface", [&] { return object_->QueryInterface(id, out); },
            In{"interface", GUID(id)}, OutObject{"answer", id, reinterpret_cast<IUnknown**>(out)});
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left != 0) return left;
        if (object_ != nullptr) object_->Release();
        tape_.objects.erase(this);  // which destroys this
        return 0;
    }

  protected:
    Interface& Object() { return *object_; }
    Tape& OnTape() { return tape_; }
    template <typename Perform, typename... Parameters>
    HRESULT Call(const char* method, const Perform& perform, const Parameters&... parameters) {
        return Exchange<Hresult>(tape_, method, this, perform, parameters...);
    }

  private:
    Interface* object_;
    Tape& tape_;
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
        return Call(
            "IVdsServiceLoader::LoadService", [&] { return Object().LoadService(machine, service); },
            In<LPCWSTR>{"machine", machine}, OutObject{"service", IID_IVdsService, service});
    }
};

class PassedService final : public Passed<IVdsService> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE IsServiceReady() override {
        return Call("IVdsService::IsServiceReady", [&] { return Object().IsServiceReady(); });
    }
    HRESULT STDMETHODCALLTYPE WaitForServiceReady() override {
        return Call("IVdsService::WaitForServiceReady", [&] { return Object().WaitForServiceReady(); });
    }
    HRESULT STDMETHODCALLTYPE QueryProviders(DWORD masks, IEnumVdsObject** list) override {
        return Call(
            "IVdsService::QueryProviders", [&] { return Object().QueryProviders(masks, list); },
            In{"masks", masks}, OutObject{"list", IID_IEnumVdsObject, list});
    }
    HRESULT STDMETHODCALLTYPE QueryUnallocatedDisks(IEnumVdsObject** list) override {
        return Call(
            "IVdsService::QueryUnallocatedDisks", [&] { return Object().QueryUnallocatedDisks(list); },
            OutObject{"list", IID_IEnumVdsObject, list});
    }
    HRESULT STDMETHODCALLTYPE GetObject(VDS_OBJECT_ID id, VDS_OBJECT_TYPE type, IUnknown** object) override {
        return Call(
            "IVdsService::GetObject", [&] { return Object().GetObject(id, type, object); },
            In{"id", GUID(id)}, In{"type", type}, OutObject{"answer", IID_IUnknown, object});
    }
};

class PassedList final : public Passed<IEnumVdsObject> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE Next(ULONG count, IUnknown** objects, ULONG* fetched) override {
        return Call(
            "IEnumVdsObject::Next", [&] { return Object().Next(count, objects, fetched); },
            In{"count", count}, Out{"fetched", fetched},
            OutObjects{"objects", IID_IUnknown, objects, count, fetched});
    }
};

class PassedProvider final : public Passed<IVdsSwProvider> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE QueryPacks(IEnumVdsObject** list) override {
        return Call(
            "IVdsSwProvider::QueryPacks", [&] { return Object().QueryPacks(list); },
            OutObject{"list", IID_IEnumVdsObject, list});
    }
};

class PassedPack final : public Passed<IVdsPack> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_PACK_PROP* properties) override {
        return Call(
            "IVdsPack::GetProperties", [&] { return Object().GetProperties(properties); },
            OutRecord{"properties", properties});
    }
    HRESULT STDMETHODCALLTYPE QueryDisks(IEnumVdsObject** list) override {
        return Call(
            "IVdsPack::QueryDisks", [&] { return Object().QueryDisks(list); },
            OutObject{"list", IID_IEnumVdsObject, list});
    }
};

// --- disks and volumes ---

class PassedDisk final : public Passed<IVdsDisk> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetProperties(VDS_DISK_PROP* properties) override {
        return Call(
            "IVdsDisk::GetProperties", [&] { return Object().GetProperties(properties); },
            OutRecord{"properties", properties});
    }
    HRESULT STDMETHODCALLTYPE QueryExtents(VDS_DISK_EXTENT** extents, LONG* count) override {
        return Call(
            "IVdsDisk::QueryExtents", [&] { return Object().QueryExtents(extents, count); },
            OutRecords{"extents", extents, count});
    }
};

class PassedAdvancedDisk final : public Passed<IVdsAdvancedDisk> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) override {
        return Call(
            "IVdsAdvancedDisk::QueryPartitions", [&] { return Object().QueryPartitions(partitions, count); },
            OutRecords{"partitions", partitions, count});
    }
    HRESULT STDMETHODCALLTYPE GetDriveLetter(ULONGLONG offset, WCHAR* letter) override {
        return Call(
            "IVdsAdvancedDisk::GetDriveLetter", [&] { return Object().GetDriveLetter(offset, letter); },
            In{"offset", offset}, Out{"letter", letter});
    }
    HRESULT STDMETHODCALLTYPE ChangeAttributes(ULONGLONG offset, CHANGE_ATTRIBUTES_PARAMETERS* to) override {
        return Call(
            "IVdsAdvancedDisk::ChangeAttributes", [&] { return Object().ChangeAttributes(offset, to); },
            In{"offset", offset}, InRecord{"to", to});
    }
    HRESULT STDMETHODCALLTYPE AssignDriveLetter(ULONGLONG offset, WCHAR letter) override {
        return Call(
            "IVdsAdvancedDisk::AssignDriveLetter", [&] { return Object().AssignDriveLetter(offset, letter); },
            In{"offset", offset}, In{"letter", letter});
    }
    HRESULT STDMETHODCALLTYPE DeleteDriveLetter(ULONGLONG offset, WCHAR letter) override {
        return Call(
            "IVdsAdvancedDisk::DeleteDriveLetter", [&] { return Object().DeleteDriveLetter(offset, letter); },
            In{"offset", offset}, In{"letter", letter});
    }
};

class PassedAdvancedDisk2 final : public Passed<IVdsAdvancedDisk2> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE ChangePartitionType(ULONGLONG offset, BOOL force,
                                                  CHANGE_PARTITION_TYPE_PARAMETERS* to) override {
        return Call(
            "IVdsAdvancedDisk2::ChangePartitionType",
            [&] { return Object().ChangePartitionType(offset, force, to); }, In{"offset", offset},
            In{"force", force}, InRecord{"to", to});
    }
};

class PassedVolume final : public Passed<IVdsVolumeMF> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* properties) override {
        return Call(
            "IVdsVolumeMF::GetFileSystemProperties",
            [&] { return Object().GetFileSystemProperties(properties); },
            OutRecord{"properties", properties});
    }
};

// --- WMI ---

class PassedLocator final : public Passed<IWbemLocator> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override {
        return Call(
            "IWbemLocator::ConnectServer",
            [&] {
                return Object().ConnectServer(resource, user, password, locale, flags, authority, context,
                                              services);
            },
            In<LPCWSTR>{"resource", resource}, In{"flags", flags},
            OutObject{"services", IID_IWbemServices, services});
    }
};

class PassedServices final : public Passed<IWbemServices, UncalledServices<IWbemServices>> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object, IWbemCallResult** result) override {
        return Call(
            "IWbemServices::GetObject",
            [&] { return Object().GetObject(path, flags, context, object, result); },
            In<LPCWSTR>{"path", path}, In{"flags", flags}, OutObject{"answer", IID_IWbemClassObject, object});
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR name, LONG flags, IWbemContext* context,
                                                 IEnumWbemClassObject** list) override {
        return Call(
            "IWbemServices::CreateInstanceEnum",
            [&] { return Object().CreateInstanceEnum(name, flags, context, list); },
            In<LPCWSTR>{"class", name}, In{"flags", flags},
            OutObject{"list", IID_IEnumWbemClassObject, list});
    }
    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* inputs,
                                         IWbemClassObject** outputs, IWbemCallResult** result) override {
        return Call(
            "IWbemServices::ExecMethod",
            [&] {
                return Object().ExecMethod(path, method, flags, context, OfPlatform(inputs, OnTape()),
                                           outputs, result);
            },
            In<LPCWSTR>{"path", path}, In<LPCWSTR>{"method", method}, In{"flags", flags},
            InObject{"inputs", inputs}, OutObject{"outputs", IID_IWbemClassObject, outputs});
    }
};

class PassedEnumeration final
    : public Passed<IEnumWbemClassObject, UncalledEnumeration<IEnumWbemClassObject>> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override {
        return Call(
            "IEnumWbemClassObject::Next", [&] { return Object().Next(timeout, count, objects, returned); },
            In{"timeout", timeout}, In{"count", count}, Out{"returned", returned},
            OutObjects{"objects", IID_IWbemClassObject, objects, count, returned});
    }
};

class PassedClassObject final : public Passed<IWbemClassObject, UncalledObject<IWbemClassObject>> {
  public:
    using Passed::Passed;
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override {
        return Call(
            "IWbemClassObject::Get", [&] { return Object().Get(name, flags, value, type, flavor); },
            In{"name", name}, In{"flags", flags}, OutVariant{"value", value});
    }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override {
        return Call(
            "IWbemClassObject::Put", [&] { return Object().Put(name, flags, value, type); }, In{"name", name},
            In{"flags", flags}, InVariant{"value", value});
    }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** instance) override {
        return Call(
            "IWbemClassObject::SpawnInstance", [&] { return Object().SpawnInstance(flags, instance); },
            In{"flags", flags}, OutObject{"instance", IID_IWbemClassObject, instance});
    }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inputs,
                                        IWbemClassObject** outputs) override {
        return Call(
            "IWbemClassObject::GetMethod", [&] { return Object().GetMethod(name, flags, inputs, outputs); },
            In{"name", name}, In{"flags", flags}, OutObject{"inputs", IID_IWbemClassObject, inputs},
            OutObject{"outputs", IID_IWbemClassObject, outputs});
    }
};

// --- which object for which interface ---

// An object's pointer to one interface is that interface's, so the cast goes through it.
template <typename Interface, typename Object>
IUnknown* Make(void* object, uint64_t number, Tape& tape) {
    auto* const platform = static_cast<Interface*>(object);
    auto passed = std::make_unique<Object>(platform, tape);
    Interface* const made = passed.get();
    tape.objects[made] = {number, platform, std::move(passed)};
    return made;
}

struct KnownInterface {
    const GUID& id;
    IUnknown* (*make)(void* object, uint64_t number, Tape& tape);
};

const KnownInterface known[] = {
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
    {IID_IWbemLocator, Make<IWbemLocator, PassedLocator>},
    {IID_IWbemServices, Make<IWbemServices, PassedServices>},
    {IID_IEnumWbemClassObject, Make<IEnumWbemClassObject, PassedEnumeration>},
    {IID_IWbemClassObject, Make<IWbemClassObject, PassedClassObject>},
};

const KnownInterface* Find(REFIID iid) {
    const auto row =
        std::ranges::find_if(known, [&](const KnownInterface& one) { return IsEqualGUID(one.id, iid) != 0; });
    return row != std::end(known) ? &*row : nullptr;
}

bool IsKnown(REFIID iid) {
    return Find(iid) != nullptr;
}

}  // namespace

Json Pass(REFIID iid, void** object, Tape& tape) {
    const KnownInterface* const row = Find(iid);
    if (row == nullptr) return nullptr;
    *object = row->make(*object, ++tape.lastObject, tape);
    return tape.lastObject;
}

void* MakeUp(REFIID iid, uint64_t number, Tape& tape) {
    const KnownInterface* const row = Find(iid);
    if (row == nullptr) throw DamagedRecording("an object of an interface that the library does not know");
    return row->make(nullptr, number, tape);
}

Json NumberOf(const IUnknown* object, const Tape& tape) {
    if (object == nullptr) return nullptr;
    const auto passed = tape.objects.find(object);
    return passed != tape.objects.end() ? Json(passed->second.number) : Json("unknown");
}

void* LendMemory(size_t size) {
    void* const memory = CoTaskMemAlloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    std::memset(memory, 0, size);
    return memory;
}

LPWSTR LendText(const Json& text) {
    if (text.is_null()) return nullptr;
    const WideString units = TextFrom(text);
    auto* const copy = static_cast<LPWSTR>(LendMemory((units.size() + 1) * sizeof(WCHAR)));
    std::copy(units.begin(), units.end(), copy);
    return copy;
}

}  // namespace recording
