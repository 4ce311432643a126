// Disks and volumes by id.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t notFound = 0x80042405;

// The id of disk 0, which is selected on the way.
GUID DiskId(VdsSession& session) {
    EXPECT_TRUE(session->SelectDisk(0));
    session.pc.journal.Clear();
    return session->DiskProperties().id;
}

// Calls a look-up, releases what it handed out and answers its code.
template <typename Interface>
HRESULT LookUp(HRESULT (*operation)(IVdsService*, VDS_OBJECT_ID, Interface**), IVdsService* service,
               const GUID& id) {
    Interface* found = nullptr;
    const HRESULT result = operation(service, id, &found);
    EXPECT_EQ(result == S_OK, found != nullptr);
    if (found != nullptr) found->Release();
    return result;
}

}  // namespace

TEST(GetVdsDisk, KnownId_ReturnsTheDisk) {
    VdsSession session(machine::FactoryMbr());
    const GUID id = DiskId(session);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsDisk, session->GetService(), id), S_OK);
    EXPECT_EQ(session.Records(), "4 Kestova CVDSEx::GetVdsDisk\\tStart\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVdsDisk, MissingService_IsTraced) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(LookUp(CVDSEx::GetVdsDisk, nullptr, GUID{}), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSEx::GetVdsDisk\\tStart",
                                        "4 Kestova CVDSEx::GetVdsDisk\\tNULL == pVdsService"}));
}

TEST(GetVdsDisk, ServiceNotReady_IsTracedWithoutItsCode) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 1);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsDisk, session->GetService(), GUID{}), S_FALSE);
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSEx::GetVdsDisk\\tStart",
                                        "4 Kestova CVDSEx::GetVdsDisk  IsServiceReady  S_OK != hResult"}));
}

TEST(GetVdsDisk, UnknownId_IsTracedInTheWordsOfTheServiceCheck) {
    VdsSession session(machine::FactoryMbr());
    session.pc.lastError = 9;
    EXPECT_EQ(LookUp(CVDSEx::GetVdsDisk, session->GetService(), GUID{}), static_cast<HRESULT>(notFound));
    EXPECT_EQ(session.Records(),
              Lines({"4 Kestova CVDSEx::GetVdsDisk\\tStart",
                     "4 Kestova CVDSEx::GetVdsDisk  IsServiceReady  S_OK != hResult. hResult = "
                     "{long -2147212283} GetLastError = {ulong 9}"}));
}

TEST(GetVdsDisk, MissingInterface_IsReturnedInSilence) {
    VdsSession session(machine::FactoryMbr());
    const GUID id = DiskId(session);
    session.Fail("IUnknown::QueryInterface", 0x80004002);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsDisk, session->GetService(), id), E_NOINTERFACE);
    EXPECT_EQ(session.Records(), "4 Kestova CVDSEx::GetVdsDisk\\tStart\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVdsAdvancedDisk, KnownId_ReturnsTheDisk) {
    VdsSession session(machine::FactoryMbr());
    const GUID id = DiskId(session);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), id), S_OK);
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                        "4 Kestova CVDSEx::GetVdsAdvancedDisk End"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVdsAdvancedDisk, MissingService_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, nullptr, GUID{}), E_INVALIDARG);
    EXPECT_EQ(session.Records(), Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                        "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService is NULL."}));
}

TEST(GetVdsAdvancedDisk, ServiceNotReady_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 0x80042401);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), GUID{}), VDS_E_INITIALIZED_FAILED);
    EXPECT_EQ(session.Records(),
              Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                     "1 Kestova CVDSEx::GetVdsAdvancedDisk IsServiceReady S_OK != hResult.hResult = "
                     "{long -2147212287} GetLastError = {ulong 0}"}));
}

TEST(GetVdsAdvancedDisk, UnknownId_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.pc.lastError = 9;
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), GUID{}), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(session.Records(),
              Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                     "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != hResult.hResult = "
                     "{long -2147212283} GetLastError = {ulong 9}"}));
}

TEST(GetVdsAdvancedDisk, SuccessWithoutAnObject_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", 0);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), GUID{}), E_INVALIDARG);
    EXPECT_EQ(session.Records(),
              Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                     "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != hResult.hResult = "
                     "{long -2147024809} GetLastError = {ulong 0}"}));
}

TEST(GetVdsAdvancedDisk, OtherSuccessCodes_AreFailures) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", 1);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), GUID{}), S_FALSE);
    EXPECT_EQ(session.Records(),
              Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                     "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != hResult.hResult = "
                     "{long 1} GetLastError = {ulong 0}"}));
}

TEST(GetVdsAdvancedDisk, MissingInterface_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    const GUID id = DiskId(session);
    session.Fail("IUnknown::QueryInterface", 0x80004002);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk, session->GetService(), id), E_NOINTERFACE);
    EXPECT_EQ(
        session.Records(),
        Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
               "1 Kestova CVDSEx::GetVdsAdvancedDisk pUnknown->QueryInterface S_OK != hResult.hResult = "
               "{long -2147467262} GetLastError = {ulong 0}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVdsAdvancedDisk2, KnownAndUnknownId_WriteNothing) {
    VdsSession session(machine::FactoryMbr());
    const GUID id = DiskId(session);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk2, session->GetService(), id), S_OK);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk2, session->GetService(), GUID{}), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk2, nullptr, id), E_INVALIDARG);
    session.Fail("IVdsService::IsServiceReady", 1);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk2, session->GetService(), id), S_FALSE);
    session.pc.faults.Disarm();
    session.Fail("IUnknown::QueryInterface", 0x80004002);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsAdvancedDisk2, session->GetService(), id), E_NOINTERFACE);
    EXPECT_EQ(session.Records(), "");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetVdsVolumeMF, EveryKindOfObject_FindsVolumesOnlyAndWritesNothing) {
    VdsSession session(machine::FactoryMbr());
    const GUID disk = DiskId(session);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsVolumeMF, session->GetService(), disk), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(LookUp(CVDSEx::GetVdsVolumeMF, nullptr, disk), E_INVALIDARG);
    EXPECT_EQ(session.Records(), "");
    WCHAR label[32] = {};
    EXPECT_TRUE(session->SelectPartition(2));
    EXPECT_TRUE(session->GetVolumeLabel(label, 32));
    EXPECT_EQ(ToUtf8(label), "Windows");
    EXPECT_EQ(session.Left(1), Holdings());
}
