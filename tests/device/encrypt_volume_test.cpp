// The volumes that BitLocker has encrypted, as its WMI provider reports them.
#include "device/encrypt_volume.h"

#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

using machine::EncryptableVolume;
using Texts = std::vector<WideString>;

constexpr uint32_t failure = 0x80041001;  // WBEM_E_FAILED
constexpr const char* failed = "-2147217407";
const std::string started = "4 Kestova CEncryptVolume::GetEncryptVolume\\tStart\n";

// A volume called after its letter.
EncryptableVolume Encrypted(const std::string& letter) {
    EncryptableVolume volume;
    volume.deviceId = R"(\\?\Volume{)" + letter + R"(}\)";
    volume.persistentVolumeId = "{" + letter + "}";
    volume.driveLetter = letter + ":";
    volume.encryptionMethod = 6;
    return volume;
}

EncryptableVolume NotEncrypted(const std::string& letter) {
    EncryptableVolume volume = Encrypted(letter);
    volume.encryptionMethod = 0;
    return volume;
}

EncryptableVolume Refusing(const std::string& letter) {
    EncryptableVolume volume = Encrypted(letter);
    volume.returnValue = 0x80310000;
    return volume;
}

// A PC whose BitLocker lists these volumes, and what the query found there.
struct Query : HostedPc {
    explicit Query(std::vector<EncryptableVolume> volumes) : HostedPc(PcWithDisks({})) {
        emulated.facts.encryptableVolumes = std::move(volumes);
    }
    BOOL Ask() {
        SetLastError(ERROR_NOT_READY);
        return CEncryptVolume().GetEncryptVolume(record);
    }
    Texts Ids() const { return {record.strDeviceID, record.strDeviceID + record.VolumeCount}; }
    Texts Letters() const { return {record.strDriveLetter, record.strDriveLetter + record.VolumeCount}; }
    size_t Asked() const { return emulated.journal.Calls("IWbemServices::ExecMethod").size(); }
    std::string Records() const { return Transcript(emulated.journal); }

    tagEncryptVolume_t record;
};

std::string Ended(int count, const std::string& status) {
    return "4 Kestova CEncryptVolume::GetEncryptVolume\\tpEncryptVolume->strDeviceID = {pointer <pointer>}\n"
           "4 Kestova CEncryptVolume::GetEncryptVolume\\tpEncryptVolume->strDriveLetter = "
           "{pointer <pointer>}\n"
           "4 Kestova CEncryptVolume::GetEncryptVolume\\tpEncryptVolume->VolumeCount = {int " +
           std::to_string(count) +
           "}\n"
           "4 Kestova CEncryptVolume::GetEncryptVolume\\tEnd. hResult = {long " +
           status + "}\n";
}

}  // namespace

TEST(GetEncryptVolume, TwoEncryptedVolumes_ReturnsIdAndLetterOfEach) {
    Query query({Encrypted("C"), NotEncrypted("D"), Encrypted("E")});
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Ids(), (Texts{TEXT("\\\\?\\Volume{C}\\"), TEXT("\\\\?\\Volume{E}\\")}));
    EXPECT_EQ(query.Letters(), (Texts{TEXT("C:"), TEXT("E:")}));
    EXPECT_EQ(query.Records(), started + Ended(2, "1"));
}

TEST(GetEncryptVolume, EveryVolume_IsAskedByItsPath) {
    Query query({Encrypted("C")});
    EXPECT_EQ(query.Ask(), 1);
    const auto calls = query.emulated.journal.Calls("IWbemServices::ExecMethod");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].arguments.at(0), R"(\\.\root\CIMV2\Security\MicrosoftVolumeEncryption:)"
                                        R"(Win32_EncryptableVolume.DeviceID='\\?\Volume{C}\')");
    EXPECT_EQ(calls[0].arguments.at(1), "GetEncryptionMethod");
    const auto opened = query.emulated.journal.Calls("IWbemServices::CreateInstanceEnum");
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_THAT(opened[0].arguments, testing::Contains("48"));
}

TEST(GetEncryptVolume, NoEncryptedVolume_Succeeds) {
    Query query({NotEncrypted("C"), NotEncrypted("D")});
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.record.VolumeCount, 0);
    EXPECT_EQ(query.Asked(), 2U);
    EXPECT_EQ(query.Records(), started + Ended(0, "1"));
}

TEST(GetEncryptVolume, VolumeWithoutALetter_IsReturned) {
    EncryptableVolume letterless = Encrypted("C");
    letterless.driveLetter.reset();
    letterless.persistentVolumeId.reset();
    Query query({letterless, Encrypted("D")});
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), (Texts{TEXT(""), TEXT("D:")}));
}

// A code of the method's own ends the list, and is no failure of the query.
TEST(GetEncryptVolume, RefusingVolume_EndsTheSearch) {
    Query query({Encrypted("C"), Refusing("D"), Encrypted("E")});
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), (Texts{TEXT("C:")}));
    EXPECT_EQ(query.Asked(), 2U);
    EXPECT_EQ(query.Records(), started + Ended(1, "0"));
}

// Its positive status is the status of the query; a success without outputs would be a failure.
TEST(GetEncryptVolume, PositiveStatusWithoutOutputs_EndsTheSearch) {
    Query query({Encrypted("C"), Encrypted("D")});
    query.Fail("IWbemServices::ExecMethod", 1, 1);
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), Texts());
    EXPECT_EQ(query.Asked(), 1U);
    EXPECT_EQ(query.Records(), started + Ended(0, "1"));
}

TEST(GetEncryptVolume, PositiveCodeOfTheMethod_EndsTheSearch) {
    EncryptableVolume refusing = Encrypted("D");
    refusing.returnValue = 1;
    Query query({Encrypted("C"), refusing, Encrypted("E")});
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), (Texts{TEXT("C:")}));
    EXPECT_EQ(query.Asked(), 2U);
}

// The fourth property that is read is what the first volume's method returned.
TEST(GetEncryptVolume, PositiveStatus_EndsTheSearch) {
    Query query({Encrypted("C"), Encrypted("D")});
    query.Fail("IWbemClassObject::Get", 1, 4);
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), (Texts{TEXT("C:")}));
    EXPECT_EQ(query.Asked(), 1U);
    EXPECT_EQ(query.Records(), started + Ended(1, "1"));
}

TEST(GetEncryptVolume, MoreThan32Volumes_Returns32) {
    Query query(std::vector<EncryptableVolume>(40, Encrypted("C")));
    EXPECT_EQ(query.Ask(), 1);
    EXPECT_EQ(query.Letters(), Texts(encryptVolumeCapacity, TEXT("C:")));
    EXPECT_EQ(query.Records(), started + Ended(32, "1"));
}

TEST(GetEncryptVolume, NoBitLocker_FailsAndEmptiesTheRecord) {
    Query query({});
    query.emulated.facts.encryptableVolumes.reset();
    query.record.VolumeCount = 7;
    EXPECT_EQ(query.Ask(), 0);
    EXPECT_EQ(query.record.VolumeCount, 0);
    EXPECT_EQ(query.Records(),
              started +
                  "1 Kestova CWMIEx::ConnectServer ConnectServer hResult = {long -2147217394} "
                  "GetLastError: %d{ulong 21}\n"
                  "1 Kestova CEncryptVolume::GetEncryptVolume    CWMIEx::ConnectServer Failed. hResult = "
                  "{long -2147217394}\n");
}

TEST(GetEncryptVolume, NoSecurity_Fails) {
    Query query({Encrypted("C")});
    query.Fail("CoInitializeSecurity", failure);
    EXPECT_EQ(query.Ask(), 0);
    EXPECT_TRUE(query.emulated.journal.Calls("CoCreateInstance").empty());
    EXPECT_EQ(
        query.Records(),
        started + "1 Kestova CWMIEx::Initialize hResult = {long " + failed +
            "} GetLastError: %d{ulong 21}\n"
            "1 Kestova CEncryptVolume::GetEncryptVolume    CWMIEx::Initialize Failed. hResult = {long " +
            failed + "}\n");
}

TEST(GetEncryptVolume, UnlistedVolumes_Fail) {
    for (const char* const call : {"IWbemServices::CreateInstanceEnum", "IEnumWbemClassObject::Next"}) {
        Query query({Encrypted("C")});
        query.Fail(call, failure);
        EXPECT_EQ(query.Ask(), 0) << call;
        EXPECT_EQ(query.Records(), started + Ended(0, failed)) << call;
    }
}

// The seven answers that the second of three volumes gives, each of which can be the failing one.
TEST(GetEncryptVolume, FailingMethod_FailsWithTheVolumesBefore) {
    const std::pair<const char*, uint32_t> places[] = {{"IWbemClassObject::Get", 6},  // DeviceID
                                                       {"IWbemClassObject::Get", 7},  // PersistentVolumeID
                                                       {"IWbemClassObject::Get", 8},  // DriveLetter
                                                       {"IWbemServices::ExecMethod", 2},
                                                       {"IWbemClassObject::Get", 9},   // ReturnValue
                                                       {"IWbemClassObject::Get", 10},  // EncryptionMethod
                                                       {"IEnumWbemClassObject::Next", 2}};
    for (const auto& [call, nth] : places) {
        SCOPED_TRACE(std::string(call) + "#" + std::to_string(nth));
        Query query({Encrypted("C"), Encrypted("D"), Encrypted("E")});
        query.Fail(call, failure, nth);
        EXPECT_EQ(query.Ask(), 0);
        EXPECT_EQ(query.Letters(), (Texts{TEXT("C:")}));
        EXPECT_LE(query.Asked(), 2U);
        EXPECT_EQ(query.Records(), started + Ended(1, failed));
    }
}

// A method that ran and gave nothing has failed.
TEST(GetEncryptVolume, MethodWithoutOutput_Fails) {
    Query query({Encrypted("C")});
    query.Fail("IWbemServices::ExecMethod", S_OK);
    EXPECT_EQ(query.Ask(), 0);
    EXPECT_EQ(query.Records(), started + Ended(0, "-2147024809"));
}
