// The volumes of BitLocker, as WMI lists them.
#include "machine/facts/machines.h"
#include "tests/machine/api/com/com_client.h"

namespace {

const char* const systemVolume = "\\\\?\\Volume{90dc9ab6-791d-46f6-ade8-e6d3201baf52}\\";
const char* const lockedVolume = "\\\\?\\Volume{5b1d0d27-0000-4000-8000-000000000001}\\";

machine::Pc EncryptedPc() {
    machine::EncryptableVolume encrypted;
    encrypted.deviceId = systemVolume;
    encrypted.persistentVolumeId = "{11111111-2222-3333-4444-555555555555}";
    encrypted.driveLetter = "C:";
    encrypted.encryptionMethod = 7;
    machine::EncryptableVolume locked;
    locked.deviceId = lockedVolume;
    locked.returnValue = 0x80310000;
    locked.encryptionMethod = 0xFFFFFFFF;
    machine::Pc pc = machine::FactoryMbr();
    pc.encryptableVolumes = {encrypted, locked};
    return pc;
}

class EncryptionClient : public ComClient {
  public:
    EncryptionClient()
        : ComClient(EncryptedPc()),
          services(ConnectWmi("\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption")) {}

    HRESULT AskMethod(const std::string& object, IWbemClassObject** outputs) {
        return services->ExecMethod(SystemString(object).Get(), SystemString("GetEncryptionMethod").Get(), 0,
                                    nullptr, nullptr, outputs, nullptr);
    }

    ComPtr<IWbemServices> services;
};

std::string ObjectPath(const std::string& deviceId) {
    return "\\\\.\\root\\CIMV2\\Security\\MicrosoftVolumeEncryption:Win32_EncryptableVolume.DeviceID='" +
           deviceId + "'";
}

// The value of a numeric output; fails the test for any other type.
LONG NumberOf(IWbemClassObject* object, const WCHAR* name) {
    VARIANT value;
    EXPECT_EQ(object->Get(name, 0, &value, nullptr, nullptr), S_OK);
    EXPECT_EQ(V_VT(&value), VT_I4);
    return V_I4(&value);
}

}  // namespace

TEST(EncryptableVolumes, SeveralVolumes_AreListedWithTheirProperties) {
    EncryptionClient client;
    EXPECT_EQ(
        InstancesOf(client.services.Get(), "Win32_EncryptableVolume",
                    {"DeviceID", "PersistentVolumeID", "DriveLetter"}),
        (std::vector<std::vector<std::string>>{{systemVolume, "{11111111-2222-3333-4444-555555555555}", "C:"},
                                               {lockedVolume, "null", "null"}}));
    EXPECT_EQ(client.OnLoan(), (Loans{{"IWbemServices", 1}}));
}

TEST(GetEncryptionMethod, SeveralVolumes_ReturnsTheMethodOfThePathsVolume) {
    EncryptionClient client;
    ComPtr<IWbemClassObject> outputs;
    ASSERT_EQ(client.AskMethod(ObjectPath(systemVolume), outputs.Put()), S_OK);
    EXPECT_EQ(NumberOf(outputs.Get(), TEXT("ReturnValue")), 0);
    EXPECT_EQ(NumberOf(outputs.Get(), TEXT("EncryptionMethod")), 7);
    ComPtr<IWbemClassObject> locked;
    ASSERT_EQ(client.AskMethod(ObjectPath(lockedVolume), locked.Put()), S_OK);
    EXPECT_EQ(NumberOf(locked.Get(), TEXT("ReturnValue")), static_cast<LONG>(0x80310000));
    EXPECT_EQ(NumberOf(locked.Get(), TEXT("EncryptionMethod")), -1);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IWbemClassObject", 2}, {"IWbemServices", 1}}));
}

TEST(GetEncryptionMethod, ClassOrUnknownVolume_Fails) {
    EncryptionClient client;
    IWbemClassObject* none = nullptr;
    EXPECT_EQ(client.AskMethod("Win32_EncryptableVolume", &none),
              static_cast<HRESULT>(WBEM_E_INVALID_METHOD_PARAMETERS));
    EXPECT_EQ(client.AskMethod(ObjectPath("C:"), &none), static_cast<HRESULT>(WBEM_E_NOT_FOUND));
    EXPECT_EQ(none, nullptr);
}

TEST(GetEncryptionMethod, AnyVolume_HasNoInputs) {
    EncryptionClient client;
    ComPtr<IWbemClassObject> definition;
    ASSERT_EQ(client.services->GetObject(SystemString("Win32_EncryptableVolume").Get(), 0, nullptr,
                                         definition.Put(), nullptr),
              S_OK);
    ComPtr<IWbemClassObject> inputs;
    ComPtr<IWbemClassObject> outputs;
    EXPECT_EQ(definition->GetMethod(TEXT("GetEncryptionMethod"), 0, inputs.Put(), outputs.Put()), S_OK);
    EXPECT_EQ(inputs.Get(), nullptr);
    EXPECT_EQ(TextOf(outputs.Get(), "EncryptionMethod"), "null");
}
