// WMI access.
#include "device/wmi_ex.h"

#include <gtest/gtest.h>

#include "base/owners.h"
#include "base/utf.h"
#include "machine/api/wmi/class.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

constexpr auto failure = static_cast<HRESULT>(0x80041001);
constexpr auto notFound = static_cast<HRESULT>(0x80041002);

const std::string path = "\\\\.\\root\\cimv2:Test_Lamp.Name='desk'";

int32_t NumberIn(const machine::WmiProperties& inputs, const char* name) {
    const machine::WmiValue* const value = machine::FindProperty(inputs, name);
    const int32_t* const number = value != nullptr ? std::get_if<int32_t>(value) : nullptr;
    return number != nullptr ? *number : -1;
}

// A lamp with one method for each way in which methods differ.
machine::WmiClass Lamp() {
    using machine::EmulatedPc;
    using machine::WmiProperties;
    const auto sum = [](EmulatedPc&, const WmiProperties&, const WmiProperties& inputs,
                        WmiProperties& outputs) {
        outputs[0].second = NumberIn(inputs, "Red") * 100 + NumberIn(inputs, "Green");
        return S_OK;
    };
    const auto done = [](EmulatedPc&, const WmiProperties&, const WmiProperties&, WmiProperties& outputs) {
        if (!outputs.empty()) outputs[0].second = 7;
        return S_OK;
    };
    return {"root\\cimv2",
            "Test_Lamp",
            {"Name"},
            [](const machine::Pc&) { return std::vector<std::vector<machine::WmiValue>>{{"desk"}}; },
            {{"SetColor", {"Red", "Green"}, {"ReturnValue"}, sum},
             {"Blink", {}, {"ReturnValue"}, done},
             {"Measure", {}, {"Brightness"}, done},
             {"Silence", {}, {}, done}}};
}

struct LampPc : HostedPc {
    LampPc() : HostedPc(PcWithDisks({})) {
        machine::WmiRepository::Of(emulated).Add(Lamp());
        EXPECT_EQ(CWMIEx::ConnectServer(TEXT("\\\\.\\root\\CIMV2"), locator.Put(), services.Put()), S_OK);
        emulated.journal.Clear();
    }
    ~LampPc() {
        output.Reset();
        returnValue.Put();  // cleared while the PC is there
        services.Reset();
        locator.Reset();
    }

    HRESULT Exec(const WCHAR* method, const std::vector<WideString>* inputNames = nullptr,
                 VARIANT* inputs = nullptr) {
        return CWMIEx::ExecMethod(services.Get(), TEXT("Test_Lamp"), method, ToWide(path), inputNames, inputs,
                                  output.Put(), returnValue.Put());
    }
    HRESULT SetColor() { return Exec(TEXT("SetColor"), &names, colors); }
    size_t Count(const char* call) { return emulated.journal.Calls(call).size(); }

    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    ComPtr<IWbemClassObject> output;
    Variant returnValue;
    std::vector<WideString> names = {TEXT("Red"), TEXT("Green")};
    VARIANT colors[2] = {Number(3), Number(4)};

  private:
    static VARIANT Number(LONG value) {
        VARIANT variant = {};
        V_VT(&variant) = VT_I4;
        V_I4(&variant) = value;
        return variant;
    }
};

bool IsNumber(const Variant& value, LONG number) {
    return V_VT(&value.Get()) == VT_I4 && V_I4(&value.Get()) == number;
}

struct Connection {
    HRESULT result;
    bool locator;
    bool services;
    std::string transcript;
    bool operator==(const Connection&) const = default;
};

void PrintTo(const Connection& connection, std::ostream* out) {
    *out << connection.result << " locator " << connection.locator << " services " << connection.services
         << "\n"
         << connection.transcript;
}

Connection Connect(const HostedPc& pc, const WCHAR* space = TEXT("\\\\.\\root\\CIMV2")) {
    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    SetLastError(ERROR_NOT_READY);
    const HRESULT result = CWMIEx::ConnectServer(space, locator.Put(), services.Put());
    return {result, static_cast<bool>(locator), static_cast<bool>(services), Transcript(pc.emulated.journal)};
}

Connection ConnectWhenCallFails(const char* call, uint32_t code) {
    HostedPc pc(machine::FactoryMbr());
    pc.Fail(call, code);
    return Connect(pc);
}

}  // namespace

TEST(Initialize, TwiceInOneProcess_Succeeds) {
    const HostedPc pc(machine::FactoryMbr());
    EXPECT_EQ(CWMIEx::Initialize(), S_OK);
    EXPECT_EQ(CWMIEx::Initialize(), S_OK);
    const auto calls = pc.emulated.journal.Calls("CoInitializeSecurity");
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[1].result, "0x80010119");  // RPC_E_TOO_LATE
    EXPECT_THAT(calls[0].arguments, testing::ElementsAre("-1", "0", "3", "0x00000000"));
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(Initialize, FailingSecurity_IsRecordedAndReturned) {
    HostedPc pc(machine::FactoryMbr());
    pc.Fail("CoInitializeSecurity", 0x80070005);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(CWMIEx::Initialize(), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CWMIEx::Initialize hResult = {long -2147024891} GetLastError: %d{ulong 5}\n");
}

// Only S_OK and RPC_E_TOO_LATE are quiet.
TEST(Initialize, OtherSuccess_IsRecordedAndReturned) {
    HostedPc pc(machine::FactoryMbr());
    pc.Fail("CoInitializeSecurity", S_FALSE);
    EXPECT_EQ(CWMIEx::Initialize(), S_FALSE);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CWMIEx::Initialize hResult = {long 1} GetLastError: %d{ulong 0}\n");
}

TEST(ConnectServer, KnownNamespace_IsOpened) {
    const HostedPc pc(machine::FactoryMbr());
    EXPECT_EQ(Connect(pc), (Connection{S_OK, true, true, ""}));
    const auto calls = pc.emulated.journal.Calls("IWbemLocator::ConnectServer");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].arguments[0], "\\\\.\\root\\CIMV2");
    const auto blankets = pc.emulated.journal.Calls("CoSetProxyBlanket");
    ASSERT_EQ(blankets.size(), 1U);
    EXPECT_THAT(blankets[0].arguments, testing::ElementsAre("10", "0", "3", "3", "0x00000000"));
    EXPECT_EQ(pc.emulated.journal.Calls("CoCreateInstance").at(0).arguments[1], "0x00000001");
}

TEST(ConnectServer, UnknownNamespace_Fails) {
    const HostedPc pc(machine::FactoryMbr());
    EXPECT_EQ(
        Connect(pc, TEXT("\\\\.\\root\\NONE")),
        (Connection{
            static_cast<HRESULT>(0x8004100E), true, false,
            "1 Kestova CWMIEx::ConnectServer ConnectServer hResult = {long -2147217394} GetLastError: %d{ulong 21}\n"}));
}

TEST(ConnectServer, NoLocator_Fails) {
    EXPECT_EQ(
        ConnectWhenCallFails("CoCreateInstance", 0x80040154),
        (Connection{
            static_cast<HRESULT>(0x80040154), false, false,
            "1 Kestova CWMIEx::ConnectServer CoCreateInstance hResult = {long -2147221164} GetLastError: %d{ulong 21}\n"}));
}

TEST(ConnectServer, NoServices_Fails) {
    EXPECT_EQ(
        ConnectWhenCallFails("IWbemLocator::ConnectServer", 0x80041003),
        (Connection{
            static_cast<HRESULT>(0x80041003), true, false,
            "1 Kestova CWMIEx::ConnectServer ConnectServer hResult = {long -2147217405} GetLastError: %d{ulong 21}\n"}));
}

TEST(ConnectServer, ProxyThatCannotBeSecured_StaysWithTheCaller) {
    EXPECT_EQ(
        ConnectWhenCallFails("CoSetProxyBlanket", 0x80004002),
        (Connection{
            static_cast<HRESULT>(0x80004002), true, true,
            "1 Kestova CWMIEx::ConnectServer CoSetProxyBlanket S_OK != hResult. hResult = {long -2147467262} GetLastError: %d{ulong 21}\n"}));
}

TEST(ConnectServer, SuccessWithoutInterface_Fails) {
    EXPECT_EQ(
        ConnectWhenCallFails("CoCreateInstance", S_OK),
        (Connection{
            E_INVALIDARG, false, false,
            "1 Kestova CWMIEx::ConnectServer CoCreateInstance hResult = {long -2147024809} GetLastError: %d{ulong 21}\n"}));
    EXPECT_EQ(
        ConnectWhenCallFails("IWbemLocator::ConnectServer", S_OK),
        (Connection{
            E_INVALIDARG, true, false,
            "1 Kestova CWMIEx::ConnectServer ConnectServer hResult = {long -2147024809} GetLastError: %d{ulong 21}\n"}));
}

TEST(ConnectServer, NoMemoryForThePath_Fails) {
    EXPECT_EQ(
        ConnectWhenCallFails("SysAllocString", ERROR_NOT_ENOUGH_MEMORY),
        (Connection{
            static_cast<HRESULT>(0x80041008), true, false,
            "1 Kestova CWMIEx::ConnectServer ConnectServer hResult = {long -2147217400} GetLastError: %d{ulong 8}\n"}));
}

TEST(ConnectServer, PositiveStatus_IsSuccess) {
    EXPECT_EQ(ConnectWhenCallFails("CoSetProxyBlanket", S_FALSE), (Connection{S_OK, true, true, ""}));
}

TEST(ExecMethod, Arguments_ArePassed) {
    LampPc pc;
    EXPECT_EQ(pc.SetColor(), S_OK);
    EXPECT_TRUE(pc.output);
    EXPECT_TRUE(IsNumber(pc.returnValue, 304));
    const auto calls = pc.emulated.journal.Calls("IWbemServices::ExecMethod");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].arguments, testing::ElementsAre(path, "SetColor"));
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

// The class, both signatures of the method and the instance with the arguments.
TEST(ExecMethod, SignatureOfTheOutputs_IsAskedForAndReleased) {
    LampPc pc;
    EXPECT_EQ(pc.SetColor(), S_OK);
    const auto released = pc.emulated.journal.Unshown("IUnknown::Release");
    EXPECT_EQ(std::ranges::count(released, "IWbemClassObject",
                                 [](const auto& arguments) { return arguments.front(); }),
              4);
}

TEST(ExecMethod, NoArguments_Succeeds) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("Blink")), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, 7));
    EXPECT_EQ(pc.Count("IWbemClassObject::SpawnInstance"), 0U);
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
}

TEST(ExecMethod, ArgumentsTheMethodDoesNotTake_AreLeftOut) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("Blink"), &pc.names, pc.colors), S_OK);
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
}

TEST(ExecMethod, EmptyListOfArguments_Succeeds) {
    LampPc pc;
    const std::vector<WideString> none;
    EXPECT_EQ(pc.Exec(TEXT("SetColor"), &none, pc.colors), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, -101));
    EXPECT_EQ(pc.Count("IWbemClassObject::SpawnInstance"), 1U);
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
}

TEST(ExecMethod, InstanceWithoutListOfArguments_Succeeds) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("SetColor")), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, -101));
}

TEST(ExecMethod, NoServices_Fails) {
    LampPc pc;
    EXPECT_EQ(CWMIEx::ExecMethod(nullptr, TEXT("Test_Lamp"), TEXT("Blink"), TEXT(""), nullptr, nullptr,
                                 pc.output.Put(), pc.returnValue.Put()),
              E_INVALIDARG);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CWMIEx::ExecMethod CoSetProxyBlanket pWbemServices == NULL\n");
}

TEST(ExecMethod, OneListWithoutTheOther_Fails) {
    const std::string record =
        "1 Kestova CWMIEx::ExecMethod CoSetProxyBlanket pstrArrParameters or pvtArrArguments is NULL\n";
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("SetColor"), &pc.names, nullptr), E_INVALIDARG);
    EXPECT_EQ(Transcript(pc.emulated.journal), record);
    EXPECT_EQ(pc.Exec(TEXT("SetColor"), nullptr, pc.colors), E_INVALIDARG);
    EXPECT_EQ(Transcript(pc.emulated.journal), record + record);
    EXPECT_THAT(pc.emulated.journal.Calls(), testing::IsEmpty());  // WMI was not asked
}

TEST(ExecMethod, UnknownClass_Fails) {
    LampPc pc;
    SetLastError(ERROR_NOT_READY);
    EXPECT_EQ(CWMIEx::ExecMethod(pc.services.Get(), TEXT("Test_None"), TEXT("Blink"), ToWide(path), nullptr,
                                 nullptr, pc.output.Put(), pc.returnValue.Put()),
              notFound);
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "1 Kestova CWMIEx::ConnectServer GetObject S_OK != hResult. hResult = {long -2147217406} GetLastError: %d{ulong 21}\n");
}

TEST(ExecMethod, ClassWithoutObject_Fails) {
    LampPc pc;
    pc.Fail("IWbemServices::GetObject", S_OK);
    EXPECT_EQ(pc.SetColor(), E_INVALIDARG);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CWMIEx::ExecMethod CoSetProxyBlanket pClassObject == NULL\n");
}

TEST(ExecMethod, UnknownMethod_Fails) {
    LampPc pc;
    SetLastError(ERROR_NOT_READY);
    EXPECT_EQ(pc.Exec(TEXT("Explode")), notFound);
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "1 Kestova CWMIEx::ConnectServer GetMethod S_OK != hResult. hResult = {long -2147217406} GetLastError: %d{ulong 21}\n");
}

TEST(ExecMethod, InstanceThatCannotBeMade_IsNoFailure) {
    LampPc pc;
    pc.Fail("IWbemClassObject::SpawnInstance", 0x80041001);
    EXPECT_EQ(pc.SetColor(), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, -101));
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(ExecMethod, SuccessWithoutAnInstance_IsNoFailure) {
    LampPc pc;
    pc.Fail("IWbemClassObject::SpawnInstance", S_OK);
    EXPECT_EQ(pc.SetColor(), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, -101));
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
}

TEST(ExecMethod, MethodWithInputsCalledWithout_GetsAnEmptyInstance) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("SetColor")), S_OK);
    EXPECT_TRUE(IsNumber(pc.returnValue, -101));
    EXPECT_EQ(pc.Count("IWbemClassObject::SpawnInstance"), 1U);
    EXPECT_EQ(pc.Count("IWbemClassObject::Put"), 0U);
}

TEST(ExecMethod, FirstArgumentThatFails_EndsTheCall) {
    for (uint32_t put = 1; put <= 2; ++put) {
        LampPc pc;
        pc.Fail("IWbemClassObject::Put", 0x80041001, put);
        EXPECT_EQ(pc.SetColor(), failure);
        EXPECT_EQ(pc.Count("IWbemClassObject::Put"), put);
        EXPECT_EQ(pc.Count("IWbemServices::ExecMethod"), 0U);
        EXPECT_FALSE(pc.output);
        EXPECT_EQ(Transcript(pc.emulated.journal), "");
    }
}

TEST(ExecMethod, UnknownArgument_Fails) {
    LampPc pc;
    pc.names[1] = TEXT("Blue");
    EXPECT_EQ(pc.SetColor(), notFound);
}

TEST(ExecMethod, FailingMethod_Fails) {
    LampPc pc;
    pc.Fail("IWbemServices::ExecMethod", 0x80041001);
    EXPECT_EQ(pc.SetColor(), failure);
    EXPECT_FALSE(pc.output);
    EXPECT_EQ(V_VT(&pc.returnValue.Get()), VT_EMPTY);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(ExecMethod, MethodWithoutOutput_Fails) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("Silence")), S_OK);
    EXPECT_FALSE(pc.output);
    EXPECT_EQ(pc.Count("IWbemClassObject::Get"), 0U);
}

TEST(ExecMethod, PositiveStatusWithoutOutput_IsHandedBack) {
    LampPc pc;
    pc.Fail("IWbemServices::ExecMethod", S_FALSE);
    EXPECT_EQ(pc.SetColor(), S_FALSE);
}

TEST(ExecMethod, OutputWithoutReturnValue_Fails) {
    LampPc pc;
    EXPECT_EQ(pc.Exec(TEXT("Measure")), notFound);
    EXPECT_EQ(pc.Count("IWbemServices::ExecMethod"), 1U);
    EXPECT_TRUE(pc.output);
    EXPECT_EQ(V_VT(&pc.returnValue.Get()), VT_EMPTY);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(ExecMethod, NoMemoryForStrings_Fails) {
    for (uint32_t nth = 1; nth <= 3; ++nth) {
        LampPc pc;
        pc.Fail("SysAllocString", ERROR_NOT_ENOUGH_MEMORY, nth);
        EXPECT_LT(pc.SetColor(), 0) << "string " << nth;
        EXPECT_FALSE(pc.output);
    }
}
