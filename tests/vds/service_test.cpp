// Connecting to the Virtual Disk Service.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t tooLate = 0x80010119;
constexpr uint32_t accessDenied = 0x80070005;
constexpr uint32_t notReady = 1;

// A PC on whose thread COM is initialised, and nothing else done yet.
struct Host {
    machine::EmulatedPc pc{machine::FactoryMbr()};
    ComApartment com;
};

// Connects once and answers the code; what was handed out is released.
HRESULT Connect(IVdsService*& service) {
    service = nullptr;
    return CVDSEx::GetVdsService(&service);
}

}  // namespace

TEST(InitializeSecurity, FirstCall_SetsImpersonation) {
    Host host;
    EXPECT_EQ(CVDSEx::InitializeSecurity(), S_OK);
    const auto calls = host.pc.journal.Calls("CoInitializeSecurity");
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].arguments,
              (std::vector<std::string>{"-1", "0", "3",
                                        "0x00000000"}));  // any services, default, impersonate, none
    EXPECT_EQ(Transcript(host.pc.journal), "");
}

TEST(InitializeSecurity, SetAlready_IsSuccess) {
    Host host;
    CVDSEx::InitializeSecurity();
    EXPECT_EQ(CVDSEx::InitializeSecurity(), S_OK);
    host.pc.faults.Arm({.call = "CoInitializeSecurity", .code = tooLate});
    EXPECT_EQ(CVDSEx::InitializeSecurity(), S_OK);
}

TEST(InitializeSecurity, OtherFailure_IsReturned) {
    Host host;
    host.pc.faults.Arm({.call = "CoInitializeSecurity", .code = accessDenied});
    EXPECT_EQ(CVDSEx::InitializeSecurity(), E_ACCESSDENIED);
    EXPECT_EQ(Transcript(host.pc.journal), "");
}

TEST(GetVdsService, ReadyService_IsReturned) {
    Host host;
    IVdsService* service = nullptr;
    EXPECT_EQ(Connect(service), S_OK);
    ASSERT_NE(service, nullptr);
    service->Release();
    EXPECT_EQ(Transcript(host.pc.journal), "");
    EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsServiceLoader"), 0u);
    EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsService"), 0u);
}

TEST(GetVdsService, ReadyService_IsLoadedFromALocalServerForThisPc) {
    Host host;
    IVdsService* service = nullptr;
    ASSERT_EQ(Connect(service), S_OK);
    service->Release();
    EXPECT_EQ(host.pc.journal.Calls("CoCreateInstance").at(0).arguments,
              (std::vector<std::string>{"VdsLoader", "0x00000004"}));
    EXPECT_EQ(host.pc.journal.Calls("IVdsServiceLoader::LoadService").at(0).arguments,
              (std::vector<std::string>{""}));
}

TEST(GetVdsService, FailingStep_ReturnsItsCode) {
    for (const char* const call : {"CoCreateInstance", "IVdsServiceLoader::LoadService",
                                   "IVdsService::WaitForServiceReady", "IVdsService::IsServiceReady"}) {
        SCOPED_TRACE(call);
        Host host;
        host.pc.faults.Arm({.call = call, .code = accessDenied});
        IVdsService* service = nullptr;
        EXPECT_EQ(Connect(service), E_ACCESSDENIED);
        EXPECT_EQ(host.pc.journal.Calls().back().call, call);
        EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsServiceLoader"), 0u);
        if (service != nullptr) service->Release();
        EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsService"), 0u);
    }
}

TEST(GetVdsService, StartingService_IsReturnedWithItsCode) {
    Host host;
    host.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .code = notReady});
    IVdsService* service = nullptr;
    EXPECT_EQ(Connect(service), S_FALSE);
    ASSERT_NE(service, nullptr);
    service->Release();
}

TEST(GetVdsService, SuccessWithoutAnInterface_IsAFailure) {
    for (const char* const call : {"CoCreateInstance", "IVdsServiceLoader::LoadService"}) {
        SCOPED_TRACE(call);
        Host host;
        host.pc.faults.Arm({.call = call, .code = 0});
        IVdsService* service = nullptr;
        EXPECT_EQ(Connect(service), E_INVALIDARG);
        EXPECT_EQ(service, nullptr);
        EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsServiceLoader"), 0u);
    }
}

TEST(Initialize, ReadyService_ConnectsAtTheFirstAttempt) {
    Host host;
    {
        CVDSPartition partition;
        EXPECT_EQ(partition.GetService(), nullptr);
        EXPECT_TRUE(partition.Initialize());
        EXPECT_NE(partition.GetService(), nullptr);
    }
    EXPECT_EQ(host.pc.clockMilliseconds, 0u);
    EXPECT_EQ(Transcript(host.pc.journal), "");
    EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsService"), 0u);
}

TEST(Initialize, ServiceNeverReady_IsAskedTwentyTimes) {
    Host host;
    host.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .code = notReady});
    {
        CVDSPartition partition;
        EXPECT_FALSE(partition.Initialize());
    }
    EXPECT_EQ(host.pc.journal.Calls("CoCreateInstance").size(), 20u);
    EXPECT_EQ(host.pc.clockMilliseconds, 19'000u);
    EXPECT_EQ(Transcript(host.pc.journal), "");
    // Each new attempt drops the service of the one before; the last one is released with the object.
    EXPECT_EQ(host.pc.ledger.Outstanding().at("IVdsService"), 19);
}

TEST(Initialize, EachAttempt_ForgetsTheServiceOfTheOneBefore) {
    Host host;
    host.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .nth = 1, .code = notReady});
    host.pc.faults.Arm({.call = "CoCreateInstance", .nth = 2, .onwards = true, .code = accessDenied});
    {
        CVDSPartition partition;
        EXPECT_FALSE(partition.Initialize());
        EXPECT_EQ(partition.GetService(), nullptr);
    }
    EXPECT_EQ(host.pc.journal.Calls("CoCreateInstance").size(), 20u);
    EXPECT_EQ(host.pc.ledger.Outstanding().at("IVdsService"), 1);
}

TEST(Initialize, ReadyAtTheLastAttempt_Succeeds) {
    Host host;
    for (uint32_t attempt = 1; attempt <= 19; ++attempt) {
        host.pc.faults.Arm({.call = "IVdsServiceLoader::LoadService", .nth = attempt, .code = accessDenied});
    }
    {
        CVDSPartition partition;
        EXPECT_TRUE(partition.Initialize());
        EXPECT_NE(partition.GetService(), nullptr);
    }
    EXPECT_EQ(host.pc.journal.Calls("IVdsServiceLoader::LoadService").size(), 20u);
    EXPECT_EQ(host.pc.clockMilliseconds, 19'000u);
    EXPECT_EQ(host.pc.ledger.Outstanding().count("IVdsService"), 0u);
}

TEST(Initialize, NoSecurity_ServiceIsNotLoaded) {
    Host host;
    host.pc.faults.Arm({.call = "CoInitializeSecurity", .code = accessDenied});
    CVDSPartition partition;
    EXPECT_FALSE(partition.Initialize());
    EXPECT_EQ(partition.GetService(), nullptr);
    EXPECT_EQ(host.pc.journal.Calls("CoInitializeSecurity").size(), 20u);
    EXPECT_TRUE(host.pc.journal.Calls("CoCreateInstance").empty());
    EXPECT_EQ(host.pc.clockMilliseconds, 19'000u);
}

TEST(Initialize, SecuritySetByTheHost_DoesNotStopTheConnection) {
    Host host;
    host.pc.faults.Arm({.call = "CoInitializeSecurity", .code = tooLate});
    CVDSPartition partition;
    EXPECT_TRUE(partition.Initialize());
    EXPECT_EQ(host.pc.clockMilliseconds, 0u);
}

TEST(Initialize, SecondConnection_DropsTheFirst) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->Initialize());
    EXPECT_EQ(session.Left(0), (Holdings{{"IVdsService", 1}}));
}
