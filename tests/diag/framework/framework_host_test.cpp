// The module binding with the framework: what it does in which module's state, for each of the loader's
// reasons.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "diag/framework_binding/module_app.h"
#include "diag/module.h"
#include "tests/diag/framework/recording.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

class FailingApp : public CWinApp {
  public:
    BOOL InitInstance() override {
        Recording().calls.emplace_back("FailingApp::InitInstance");
        return FALSE;
    }
};

// A host application that loads the library at address 7000.
class FrameworkHost : public testing::Test {
  protected:
    // The test program has loaded the library already.
    FrameworkHost() {
        Call(DLL_PROCESS_DETACH);
        Recording() = {};
    }
    ~FrameworkHost() override {
        Recording().failure = FrameworkFailure::None;
        Call(DLL_PROCESS_DETACH);
        EXPECT_EQ(HostState().m_libraryList, nullptr);
    }

    // The calls that a reason leads to; the host's state is current afterwards.
    std::vector<std::string> Call(DWORD reason) {
        Recording().calls.clear();
        answer = DllMain(reinterpret_cast<HINSTANCE>(uintptr_t{7000}), reason, nullptr);
        EXPECT_EQ(AfxGetModuleState(), &HostState());
        return Recording().calls;
    }

    BOOL answer = FALSE;
};

// --- the four reasons ---

TEST_F(FrameworkHost, LoadsInTheModulesStateAndLinksItselfIntoTheHosts) {
    EXPECT_THAT(Call(DLL_PROCESS_ATTACH),
                ElementsAre("own: AfxCoreInitModule", "own: AfxWinInit 7000 without command line",
                            "own: CWinApp::InitInstance", "host: AfxInitExtensionModule 7000",
                            "host: CDynLinkLibrary 7000"));
    EXPECT_TRUE(answer);
    EXPECT_NE(HostState().m_libraryList, nullptr);
}

TEST_F(FrameworkHost, UnloadsInTheReverseOfItsLoad) {
    Call(DLL_PROCESS_ATTACH);
    EXPECT_THAT(Call(DLL_PROCESS_DETACH), ElementsAre("own: CWinApp::ExitInstance", "own: AfxLockTempMaps",
                                                      "own: AfxUnlockTempMaps and delete", "own: AfxWinTerm",
                                                      "host: AfxTermExtensionModule 7000"));
    EXPECT_TRUE(answer);
    EXPECT_EQ(HostState().m_libraryList, nullptr);
}

TEST_F(FrameworkHost, DoesNothingForAThreadThatBegins) {
    Call(DLL_PROCESS_ATTACH);
    EXPECT_THAT(Call(DLL_THREAD_ATTACH), ElementsAre());
    EXPECT_TRUE(answer);
}

TEST_F(FrameworkHost, ReleasesWhatAThreadLeaves) {
    Call(DLL_PROCESS_ATTACH);
    EXPECT_THAT(
        Call(DLL_THREAD_DETACH),
        ElementsAre("own: AfxLockTempMaps", "own: AfxUnlockTempMaps and delete", "own: AfxTermThread 7000"));
    EXPECT_TRUE(answer);
}

TEST_F(FrameworkHost, RestoresTheStateOfWhoeverLoadsIt) {
    AFX_MODULE_STATE anotherModule(TRUE, AfxWndProc, _MFC_VER);
    AfxSetModuleState(&anotherModule);
    constexpr DWORD reasons[] = {DLL_PROCESS_ATTACH, DLL_THREAD_ATTACH, DLL_THREAD_DETACH,
                                 DLL_PROCESS_DETACH};
    for (const DWORD reason : reasons) {
        DllMain(reinterpret_cast<HINSTANCE>(uintptr_t{7000}), reason, nullptr);
        EXPECT_EQ(AfxGetModuleState(), &anotherModule) << reason;
    }
    AfxSetModuleState(nullptr);
}

// --- loads that fail ---

TEST_F(FrameworkHost, FailsToLoadWithoutTheFramework) {
    Recording().failure = FrameworkFailure::WinInit;
    EXPECT_THAT(Call(DLL_PROCESS_ATTACH),
                ElementsAre("own: AfxCoreInitModule", "own: AfxWinInit 7000 without command line"));
    EXPECT_FALSE(answer);
}

TEST_F(FrameworkHost, EndsTheFrameworkWhenTheApplicationCannotStart) {
    FailingApp failing;
    AFX_MODULE_STATE* own = nullptr;
    {
        const ModuleContext context;
        own = AfxGetModuleState();
    }
    CWinApp* const theApp = std::exchange(own->m_pCurrentWinApp, &failing);
    EXPECT_THAT(Call(DLL_PROCESS_ATTACH),
                ElementsAre("own: AfxCoreInitModule", "own: AfxWinInit 7000 without command line",
                            "FailingApp::InitInstance", "own: CWinApp::ExitInstance", "own: AfxWinTerm"));
    EXPECT_FALSE(answer);
    own->m_pCurrentWinApp = theApp;
}

TEST_F(FrameworkHost, EndsTheApplicationThatCouldNotStartOnlyOnce) {
    FailingApp failing;
    AFX_MODULE_STATE* own = nullptr;
    {
        const ModuleContext context;
        own = AfxGetModuleState();
    }
    CWinApp* const theApp = std::exchange(own->m_pCurrentWinApp, &failing);
    Call(DLL_PROCESS_ATTACH);
    EXPECT_THAT(Call(DLL_PROCESS_DETACH),
                ElementsAre("own: AfxLockTempMaps", "own: AfxUnlockTempMaps and delete",
                            StartsWith("host: AfxTermExtensionModule")));
    own->m_pCurrentWinApp = theApp;

    Call(DLL_PROCESS_ATTACH);
    EXPECT_THAT(Call(DLL_PROCESS_DETACH), Contains("own: CWinApp::ExitInstance"));
}

TEST_F(FrameworkHost, FailsToLoadAsNoExtensionModule) {
    Recording().failure = FrameworkFailure::ExtensionInit;
    EXPECT_THAT(Call(DLL_PROCESS_ATTACH),
                ElementsAre("own: AfxCoreInitModule", "own: AfxWinInit 7000 without command line",
                            "own: CWinApp::InitInstance", "host: AfxInitExtensionModule 7000"));
    EXPECT_FALSE(answer);
}

TEST_F(FrameworkHost, FailsToLoadWithoutMemoryForItsRecord) {
    Recording().failure = FrameworkFailure::RecordAllocation;
    EXPECT_THAT(Call(DLL_PROCESS_ATTACH),
                ElementsAre("own: AfxCoreInitModule", "own: AfxWinInit 7000 without command line",
                            "own: CWinApp::InitInstance", "host: AfxInitExtensionModule 7000",
                            "host: CMemoryException::Delete"));
    EXPECT_FALSE(answer);
}

// --- the application object ---

TEST_F(FrameworkHost, HasTheStateOfALibraryOfThisFramework) {
    const ModuleContext context;
    const AFX_MODULE_STATE& own = *AfxGetModuleState();
    EXPECT_EQ(own.m_bDLL, TRUE);
    EXPECT_EQ(own.m_bSystem, FALSE);
    EXPECT_EQ(own.m_dwVersion, DWORD{_MFC_VER});
    EXPECT_EQ(own.m_pfnAfxWndProc, &AfxWndProc);
}

TEST_F(FrameworkHost, MadeItsApplicationObjectInTheModulesState) {
    EXPECT_EQ(HostState().m_pCurrentWinApp, nullptr);
    const ModuleContext context;
    EXPECT_NE(dynamic_cast<CModuleApp*>(AfxGetApp()), nullptr);
}

TEST_F(FrameworkHost, MakesTheApplicationWithoutANameAndFreesItByItsBase) {
    const CWinApp* app = new CModuleApp;
    delete app;
    EXPECT_THAT(Recording().calls, ElementsAre("host: CWinApp without a name", "host: ~CWinApp"));
}

TEST_F(FrameworkHost, StartsTheApplicationWhateverItsBaseAnswers) {
    CModuleApp app;
    EXPECT_FALSE(app.CWinApp::InitInstance());
    EXPECT_EQ(app.InitInstance(), 1);
}

// --- a call's context ---

TEST_F(FrameworkHost, MakesTheModuleCurrentForACallAndRestoresWhatWasBefore) {
    EXPECT_FALSE(ModuleContext::IsCurrent());
    {
        const ModuleContext outer;
        {
            const ModuleContext inner;
            EXPECT_TRUE(ModuleContext::IsCurrent());
        }
        EXPECT_TRUE(ModuleContext::IsCurrent());
    }
    EXPECT_EQ(AfxGetModuleState(), &HostState());
    EXPECT_FALSE(ModuleContext::IsCurrent());
}

}  // namespace
