// WMI: connecting, the classes about disks, objects and methods.
#include "machine/api/wmi/class.h"
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

using machine::WmiProperties;

namespace {

constexpr HRESULT Code(WBEMSTATUS status) {
    return static_cast<HRESULT>(status);
}

// A class "Lamp" with two instances and the method "Switch", which returns whether the lamp was off before.
machine::WmiClass LampClass(std::string space) {
    machine::WmiClass lamp;
    lamp.space = std::move(space);
    lamp.name = "Lamp";
    lamp.properties = {"DeviceID", "Watts", "Lit"};
    lamp.rows = [](const machine::Pc&) {
        return std::vector<std::vector<machine::WmiValue>>{{"\\\\?\\hall\\", 40, true},
                                                           {"\\\\?\\cellar\\", {}, false}};
    };
    lamp.methods = {{"Switch",
                     {"Lit"},
                     {"ReturnValue", "WasOff"},
                     [](machine::EmulatedPc&, const WmiProperties& instance, const WmiProperties& inputs,
                        WmiProperties& outputs) {
                         if (*machine::FindProperty(inputs, "Lit") == machine::WmiValue())
                             return Code(WBEM_E_INVALID_METHOD_PARAMETERS);
                         outputs[0].second = 0;
                         outputs[1].second =
                             *machine::FindProperty(instance, "lit") == machine::WmiValue(false);
                         return S_OK;
                     }},
                    {"Break", {}, {}, [](auto&&...) { return S_OK; }}};
    return lamp;
}

class LampClient : public ComClient {
  public:
    LampClient() : ComClient(machine::FactoryMbr()) {
        machine::WmiRepository::Of(pc).Add(LampClass("root\\House"));
        services = ConnectWmi("\\\\.\\root\\house");
    }

    HRESULT Exec(const std::string& path, const std::string& method, IWbemClassObject* inputs,
                 IWbemClassObject** outputs) {
        return services->ExecMethod(SystemString(path).Get(), SystemString(method).Get(), 0, nullptr, inputs,
                                    outputs, nullptr);
    }

    ComPtr<IWbemClassObject> Object(const std::string& path) {
        ComPtr<IWbemClassObject> object;
        EXPECT_EQ(services->GetObject(SystemString(path).Get(), 0, nullptr, object.Put(), nullptr), S_OK);
        return object;
    }

    // The inputs of "Switch" with that value.
    ComPtr<IWbemClassObject> Inputs(bool lit) {
        ComPtr<IWbemClassObject> signature;
        EXPECT_EQ(Object("Lamp")->GetMethod(TEXT("Switch"), 0, signature.Put(), nullptr), S_OK);
        ComPtr<IWbemClassObject> inputs;
        EXPECT_EQ(signature->SpawnInstance(0, inputs.Put()), S_OK);
        VARIANT value;
        V_VT(&value) = VT_BOOL;
        V_BOOL(&value) = lit ? VARIANT_TRUE : VARIANT_FALSE;
        EXPECT_EQ(inputs->Put(TEXT("lit"), 0, &value, 0), S_OK);
        return inputs;
    }

    ComPtr<IWbemServices> services;
};

HRESULT Connect(const std::string& space, const BSTR user = nullptr, const BSTR password = nullptr,
                LONG flags = 0) {
    ComPtr<IWbemLocator> locator;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Put())),
              S_OK);
    IWbemServices* services = reinterpret_cast<IWbemServices*>(1);
    const HRESULT result = locator->ConnectServer(SystemString(space).Get(), user, password, nullptr, flags,
                                                  nullptr, nullptr, &services);
    EXPECT_EQ(services != nullptr, result == S_OK);
    if (services != nullptr) services->Release();
    return result;
}

machine::Disk WmiDisk(uint32_t number, const char* interfaceType, std::vector<std::string> controllers) {
    machine::Disk disk;
    disk.number = number;
    disk.wmi =
        machine::WmiDisk{"DRIVE" + std::to_string(number), "DISK\\" + std::to_string(number), interfaceType};
    disk.controllers = std::move(controllers);
    return disk;
}

}  // namespace

TEST(ConnectServer, AnySpelling_OpensTheNamespacesOfThePc) {
    ComClient client(machine::FactoryMbr());
    EXPECT_EQ(Connect("\\\\.\\root\\CIMV2"), S_OK);
    EXPECT_EQ(Connect("ROOT\\cimv2"), S_OK);
    EXPECT_EQ(Connect("\\root"), Code(WBEM_E_INVALID_NAMESPACE));
    EXPECT_EQ(Connect("\\\\.\\root\\House"), Code(WBEM_E_INVALID_NAMESPACE));
    machine::WmiRepository::Of(client.pc).Add(LampClass("root\\House"));
    EXPECT_EQ(Connect("\\\\.\\root\\House"), S_OK);
    EXPECT_EQ(client.OnLoan(), Loans());
}

TEST(ConnectServer, EncryptionNamespace_OpensOnlyIfThePcHasIt) {
    ComClient client(machine::FactoryMbr());
    const char* const space = "\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption";
    client.pc.facts.encryptableVolumes.reset();
    EXPECT_EQ(Connect(space), Code(WBEM_E_INVALID_NAMESPACE));
    client.pc.facts.encryptableVolumes.emplace();
    EXPECT_EQ(Connect(space), S_OK) << "even without a volume";
    EXPECT_EQ(client.OnLoan(), Loans());
}

TEST(ConnectServer, CredentialsOrUnknownFlagsForThisPc_Fail) {
    ComClient client(machine::FactoryMbr());
    const SystemString name("");
    EXPECT_EQ(Connect("root\\cimv2", name.Get()), Code(WBEM_E_LOCAL_CREDENTIALS));
    EXPECT_EQ(Connect("root\\cimv2", nullptr, name.Get()), Code(WBEM_E_LOCAL_CREDENTIALS));
    EXPECT_EQ(Connect("root\\cimv2", nullptr, nullptr, 1), Code(WBEM_E_INVALID_PARAMETER));
    constexpr LONG maximumWait = 0x80;
    EXPECT_EQ(Connect("root\\cimv2", nullptr, nullptr, maximumWait), S_OK);
}

TEST(DiskDrives, SeveralDisks_AreListedInWmiOrder) {
    machine::Pc facts;
    facts.disks = {WmiDisk(0, "IDE", {}), WmiDisk(1, "SCSI", {}), WmiDisk(2, "USB", {}),
                   WmiDisk(3, "IDE", {})};
    facts.disks[2].wmi->pnpDeviceId.reset();
    facts.disks[3].wmi.reset();
    facts.wmiOrder = {2, 7, 2, 1};
    ComClient client(facts);
    const ComPtr<IWbemServices> services = ConnectWmi();
    EXPECT_EQ(InstancesOf(services.Get(), "Win32_DiskDrive", {"DeviceID", "PNPDeviceID", "InterfaceType"}),
              (std::vector<std::vector<std::string>>{
                  {"DRIVE2", "null", "USB"}, {"DRIVE1", "DISK\\1", "SCSI"}, {"DRIVE0", "DISK\\0", "IDE"}}));
    EXPECT_EQ(client.OnLoan(), (Loans{{"IWbemServices", 1}}));
}

TEST(ControllerLinks, SeveralControllers_AreOneRowPerHopInTheClassOfTheInterface) {
    machine::Pc facts;
    facts.disks = {WmiDisk(0, "ide", {"PCIIDE\\CHANNEL", "PCI\\VEN_8086&DEV_7111"}),
                   WmiDisk(1, "SCSI", {"PCI\\RAID"}), WmiDisk(2, "USB", {"USB\\ROOT"}),
                   WmiDisk(3, "IDE", {"PCIIDE\\CHANNEL", "PCI\\VEN_8086&DEV_7111"}),
                   WmiDisk(4, "IDE", {"PCI\\X"})};
    facts.disks[4].wmi->pnpDeviceId.reset();
    ComClient client(facts);
    const ComPtr<IWbemServices> services = ConnectWmi();
    const std::string channel = "DeviceID=\"PCIIDE\\\\CHANNEL\"";
    EXPECT_EQ(InstancesOf(services.Get(), "Win32_IDEControllerDevice", {"Antecedent", "Dependent"}),
              (std::vector<std::vector<std::string>>{
                  {"\\\\PC\\root\\cimv2:Win32_IDEController." + channel,
                   "\\\\PC\\root\\cimv2:Win32_PnPEntity.DeviceID=\"DISK\\\\0\""},
                  {"\\\\PC\\root\\cimv2:Win32_IDEController.DeviceID=\"PCI\\\\VEN_8086&DEV_7111\"",
                   "\\\\PC\\root\\cimv2:Win32_PnPEntity." + channel},
                  {"\\\\PC\\root\\cimv2:Win32_IDEController." + channel,
                   "\\\\PC\\root\\cimv2:Win32_PnPEntity.DeviceID=\"DISK\\\\3\""}}))
        << "the upper hop, which both disks share, once";
    EXPECT_EQ(InstancesOf(services.Get(), "Win32_SCSIControllerDevice", {"Antecedent", "Dependent"}),
              (std::vector<std::vector<std::string>>{
                  {"\\\\PC\\root\\cimv2:Win32_SCSIController.DeviceID=\"PCI\\\\RAID\"",
                   "\\\\PC\\root\\cimv2:Win32_PnPEntity.DeviceID=\"DISK\\\\1\""}}));
}

TEST(CreateInstanceEnum, UnknownClass_Fails) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IWbemServices> services = ConnectWmi();
    IEnumWbemClassObject* list = reinterpret_cast<IEnumWbemClassObject*>(1);
    EXPECT_EQ(services->CreateInstanceEnum(SystemString("Win32_Lamp").Get(), 48, nullptr, &list),
              Code(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(services->CreateInstanceEnum(SystemString("Win32_DiskDrive").Get(), 48, nullptr, nullptr),
              Code(WBEM_E_INVALID_PARAMETER));
}

TEST(CreateInstanceEnum, ClassThatThePcLacks_FailsAtOnceOrAtTheFirstObject) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IWbemServices> services = ConnectWmi();
    client.pc.facts.absentWmiClasses = {"WIN32_DiskDrive"};
    const SystemString name("Win32_DiskDrive");
    constexpr LONG immediately = WBEM_FLAG_RETURN_IMMEDIATELY;
    ComPtr<IEnumWbemClassObject> list;
    EXPECT_EQ(services->CreateInstanceEnum(name.Get(), immediately, nullptr, list.Put()),
              Code(WBEM_E_INVALID_CLASS));
    client.pc.facts.switches.absentClassFailsLate = true;
    EXPECT_EQ(services->CreateInstanceEnum(name.Get(), 0, nullptr, list.Put()), Code(WBEM_E_INVALID_CLASS));
    EXPECT_FALSE(list);
    EXPECT_EQ(services->CreateInstanceEnum(name.Get(), immediately, nullptr, list.Put()), S_OK);
    for (int time = 0; time < 2; ++time) {
        ComPtr<IWbemClassObject> object;
        ULONG returned = 9;
        EXPECT_EQ(list->Next(0, 1, object.Put(), &returned), Code(WBEM_E_INVALID_CLASS));
        EXPECT_FALSE(object);
        EXPECT_EQ(returned, 0u);
    }
    ComPtr<IWbemClassObject> object;
    EXPECT_EQ(services->GetObject(name.Get(), 0, nullptr, object.Put(), nullptr), Code(WBEM_E_NOT_FOUND));
}

TEST(WmiEnumerator, ListChangedLater_KeepsItsListAndEndsEveryTime) {
    ComClient client(machine::WinPeTwoDisks());
    const ComPtr<IWbemServices> services = ConnectWmi();
    ComPtr<IEnumWbemClassObject> list;
    ASSERT_EQ(services->CreateInstanceEnum(SystemString("Win32_DiskDrive").Get(), 48, nullptr, list.Put()),
              S_OK);
    client.pc.facts.disks.clear();
    IWbemClassObject* objects[3] = {};
    ULONG returned = 0;
    EXPECT_EQ(list->Next(static_cast<LONG>(WBEM_INFINITE), 3, objects, &returned), Code(WBEM_S_FALSE));
    EXPECT_EQ(returned, 2u);
    EXPECT_EQ(objects[2], nullptr);
    EXPECT_EQ(client.OnLoan()["IWbemClassObject"], 2);
    objects[0]->Release();
    objects[1]->Release();
    EXPECT_EQ(list->Next(static_cast<LONG>(WBEM_INFINITE), 1, objects, &returned), Code(WBEM_S_FALSE));
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(objects[0], nullptr);
    EXPECT_EQ(list->Next(static_cast<LONG>(WBEM_INFINITE), 1, nullptr, &returned),
              Code(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(list->Next(static_cast<LONG>(WBEM_INFINITE), 1, objects, nullptr),
              Code(WBEM_E_INVALID_PARAMETER));
}

TEST(GetObject, PathOfClassOrInstance_ReturnsIt) {
    LampClient client;
    EXPECT_EQ(TextOf(client.Object("LAMP").Get(), "DeviceID"), "null") << "a class has no values";
    EXPECT_EQ(TextOf(client.Object("Lamp.DeviceID='\\\\?\\hall\\'").Get(), "DeviceID"), "\\\\?\\hall\\");
    EXPECT_EQ(TextOf(client.Object("\\\\.\\ROOT\\House:Lamp.DeviceID=\"\\\\\\\\?\\\\cellar\\\\\"").Get(),
                     "DeviceID"),
              "\\\\?\\cellar\\");
}

TEST(GetObject, OtherPaths_Fail) {
    LampClient client;
    const auto codeOf = [&](const std::string& path) {
        IWbemClassObject* object = reinterpret_cast<IWbemClassObject*>(1);
        const HRESULT result =
            client.services->GetObject(SystemString(path).Get(), 0, nullptr, &object, nullptr);
        EXPECT_EQ(object, nullptr);
        return result;
    };
    EXPECT_EQ(codeOf("Candle"), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(codeOf("Lamp.DeviceID='attic'"), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(codeOf("Lamp.Watts='40'"), Code(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(codeOf("root\\cimv2:Win32_DiskDrive"), Code(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(codeOf("Lamp.DeviceID=hall"), Code(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(codeOf(""), Code(WBEM_E_INVALID_OBJECT_PATH));
    EXPECT_EQ(client.services->GetObject(SystemString("Lamp").Get(), 0, nullptr, nullptr, nullptr),
              Code(WBEM_E_INVALID_PARAMETER));
}

TEST(ReservedFlags, AnyMethod_FailWithInvalidParameter) {
    LampClient client;
    const ComPtr<IWbemClassObject> lamp = client.Object("Lamp");
    ComPtr<IWbemClassObject> none;
    VARIANT value;
    V_VT(&value) = VT_I4;
    V_I4(&value) = 60;
    const HRESULT refused = Code(WBEM_E_INVALID_PARAMETER);
    EXPECT_EQ(client.services->GetObject(SystemString("Lamp").Get(), 1, nullptr, none.Put(), nullptr),
              refused);
    EXPECT_EQ(client.services->ExecMethod(SystemString("Lamp").Get(), SystemString("Switch").Get(), 1,
                                          nullptr, nullptr, none.Put(), nullptr),
              refused);
    EXPECT_EQ(lamp->Get(TEXT("Watts"), 1, &value, nullptr, nullptr), refused);
    EXPECT_EQ(lamp->Put(TEXT("Watts"), 1, &value, 0), refused);
    EXPECT_EQ(lamp->Put(TEXT("Watts"), 0, &value, CIM_SINT32), refused);
    EXPECT_EQ(lamp->SpawnInstance(1, none.Put()), refused);
    EXPECT_EQ(lamp->GetMethod(TEXT("Switch"), 1, none.Put(), nullptr), refused);
}

TEST(PropertyGet, EachKindOfValue_ReturnsItsVariantType) {
    LampClient client;
    const ComPtr<IWbemClassObject> hall = client.Object("Lamp.DeviceID='\\\\?\\hall\\'");
    VARIANT value;
    CIMTYPE type = 0;
    LONG flavor = 9;
    ASSERT_EQ(hall->Get(TEXT("watts"), 0, &value, &type, &flavor), S_OK) << "in any case";
    EXPECT_EQ(V_VT(&value), VT_I4);
    EXPECT_EQ(V_I4(&value), 40);
    EXPECT_EQ(type, CIM_SINT32);
    EXPECT_EQ(flavor, 0);
    ASSERT_EQ(hall->Get(TEXT("Lit"), 0, &value, &type, nullptr), S_OK);
    EXPECT_EQ(V_VT(&value), VT_BOOL);
    EXPECT_EQ(V_BOOL(&value), VARIANT_TRUE);
    EXPECT_EQ(type, CIM_BOOLEAN);
    ASSERT_EQ(hall->Get(TEXT("DeviceID"), 0, &value, &type, nullptr), S_OK);
    EXPECT_EQ(V_VT(&value), VT_BSTR);
    EXPECT_EQ(type, CIM_STRING);
    EXPECT_EQ(client.OnLoan()["BSTR"], 1);
    EXPECT_EQ(VariantClear(&value), S_OK);
    EXPECT_EQ(client.OnLoan().count("BSTR"), 0u);
    EXPECT_EQ(hall->Get(TEXT("Watts"), 0, nullptr, nullptr, nullptr), S_OK) << "there is one";
}

TEST(PropertyGet, UnknownProperty_LeavesTheVariantUnchanged) {
    LampClient client;
    VARIANT value;
    V_VT(&value) = VT_I4;
    V_I4(&value) = 7;
    EXPECT_EQ(client.Object("Lamp")->Get(TEXT("Colour"), 0, &value, nullptr, nullptr),
              Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(V_I4(&value), 7);
    EXPECT_EQ(client.Object("Lamp")->Get(nullptr, 0, &value, nullptr, nullptr),
              Code(WBEM_E_INVALID_PARAMETER));
}

TEST(PropertyPut, EachKindOfValue_IsStored) {
    LampClient client;
    const ComPtr<IWbemClassObject> lamp = client.Object("Lamp");
    VARIANT value;
    V_VT(&value) = VT_I4;
    V_I4(&value) = 60;
    EXPECT_EQ(lamp->Put(TEXT("Watts"), 0, &value, 0), S_OK);
    VARIANT read;
    ASSERT_EQ(lamp->Get(TEXT("Watts"), 0, &read, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_I4(&read), 60);
    const SystemString text("attic");
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.Get();
    EXPECT_EQ(lamp->Put(TEXT("DeviceID"), 0, &value, 0), S_OK);
    EXPECT_EQ(TextOf(lamp.Get(), "DeviceID"), "attic");
    V_VT(&value) = VT_NULL;
    EXPECT_EQ(lamp->Put(TEXT("DeviceID"), 0, &value, 0), S_OK);
    EXPECT_EQ(TextOf(lamp.Get(), "DeviceID"), "null");
}

TEST(PropertyPut, UnknownNameOrKind_Fails) {
    LampClient client;
    const ComPtr<IWbemClassObject> lamp = client.Object("Lamp");
    VARIANT value;
    V_VT(&value) = VT_I4;
    V_I4(&value) = 60;
    EXPECT_EQ(lamp->Put(TEXT("Colour"), 0, &value, 0), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(lamp->Put(TEXT("Watts"), 0, nullptr, 0), Code(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(lamp->Put(nullptr, 0, &value, 0), Code(WBEM_E_INVALID_PARAMETER));
    V_VT(&value) = VT_R8;
    EXPECT_EQ(lamp->Put(TEXT("Watts"), 0, &value, 0), Code(WBEM_E_TYPE_MISMATCH));
}

TEST(GetMethod, KnownMethod_ReturnsItsSignatures) {
    LampClient client;
    const ComPtr<IWbemClassObject> lamp = client.Object("Lamp");
    ComPtr<IWbemClassObject> inputs;
    ComPtr<IWbemClassObject> outputs;
    EXPECT_EQ(lamp->GetMethod(TEXT("SWITCH"), 0, inputs.Put(), outputs.Put()), S_OK);
    EXPECT_EQ(TextOf(inputs.Get(), "Lit"), "null");
    EXPECT_EQ(TextOf(outputs.Get(), "WasOff"), "null");
    IWbemClassObject* none = reinterpret_cast<IWbemClassObject*>(1);
    IWbemClassObject* neither = none;
    EXPECT_EQ(lamp->GetMethod(TEXT("Break"), 0, &none, &neither), S_OK);
    EXPECT_EQ(none, nullptr) << "no inputs";
    EXPECT_EQ(neither, nullptr);
}

TEST(GetMethod, InstanceOrUnknownMethod_Fails) {
    LampClient client;
    IWbemClassObject* none = nullptr;
    EXPECT_EQ(client.Object("Lamp")->GetMethod(TEXT("Sing"), 0, &none, nullptr), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(client.Object("Lamp.DeviceID='\\\\?\\hall\\'")->GetMethod(TEXT("Switch"), 0, &none, nullptr),
              Code(WBEM_E_ILLEGAL_OPERATION));
}

TEST(SpawnInstance, Instance_Fails) {
    LampClient client;
    ComPtr<IWbemClassObject> instance;
    EXPECT_EQ(client.Object("Lamp")->SpawnInstance(0, instance.Put()), S_OK);
    IWbemClassObject* none = nullptr;
    EXPECT_EQ(instance->SpawnInstance(0, &none), Code(WBEM_E_ILLEGAL_OPERATION));
    EXPECT_EQ(client.Object("Lamp")->SpawnInstance(0, nullptr), Code(WBEM_E_INVALID_PARAMETER));
}

TEST(ExecMethod, InstanceAndInputs_RunsTheMethod) {
    LampClient client;
    ComPtr<IWbemClassObject> outputs;
    EXPECT_EQ(
        client.Exec("Lamp.DeviceID='\\\\?\\cellar\\'", "Switch", client.Inputs(true).Get(), outputs.Put()),
        S_OK);
    VARIANT value;
    ASSERT_EQ(outputs->Get(TEXT("ReturnValue"), 0, &value, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_I4(&value), 0);
    ASSERT_EQ(outputs->Get(TEXT("WasOff"), 0, &value, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_BOOL(&value), VARIANT_TRUE);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IWbemClassObject", 1}, {"IWbemServices", 1}}));
}

TEST(ExecMethod, FailingMethod_ReturnsItsCode) {
    LampClient client;
    IWbemClassObject* outputs = reinterpret_cast<IWbemClassObject*>(1);
    EXPECT_EQ(client.Exec("Lamp.DeviceID='\\\\?\\hall\\'", "Switch", nullptr, &outputs),
              Code(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(outputs, nullptr);
    EXPECT_EQ(client.Exec("Lamp", "Break", nullptr, &outputs), S_OK);
    EXPECT_EQ(outputs, nullptr) << "a method without outputs";
    EXPECT_EQ(client.Exec("Lamp.DeviceID='\\\\?\\hall\\'", "Switch", client.Inputs(true).Get(), nullptr),
              S_OK)
        << "nobody asks for the outputs";
}

TEST(ExecMethod, UnknownMethodPathOrInputs_Fail) {
    LampClient client;
    IWbemClassObject* none = nullptr;
    EXPECT_EQ(client.Exec("Lamp.DeviceID='\\\\?\\hall\\'", "Sing", nullptr, &none),
              Code(WBEM_E_INVALID_METHOD));
    EXPECT_EQ(client.Exec("Lamp.DeviceID='attic'", "Switch", nullptr, &none), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(client.Exec("Candle", "Switch", nullptr, &none), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(client.Exec("Lamp.", "Switch", nullptr, &none), Code(WBEM_E_INVALID_OBJECT_PATH));
}
