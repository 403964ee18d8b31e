// What the loader of this back end calls, and how the C library's faults come to be reported.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <windows.h>

#include "frame/report_fixture.h"
#include "library/load.h"
#include "platform/modules.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID);

namespace {

using WindowsEntry = ReportFixture;

HINSTANCE AsModule(int &place) {
    return reinterpret_cast<HINSTANCE>(&place);
}

TEST_F(WindowsEntry, ProcessLoadsAndUnloadsAndNothingElseDoes) {
    int module = 0;
    int other = 0;
    zr::library::LibraryUnload();
    EXPECT_EQ(DllMain(AsModule(module), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(zr::platform::StoredModule(), &module);
    SwitchLogOn();
    for (DWORD reason : {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, 4, 99}) {
        EXPECT_EQ(DllMain(AsModule(other), reason, nullptr), TRUE);
    }
    EXPECT_EQ(zr::platform::StoredModule(), &module);
    zr_switch_error(1, "T", 1);
    EXPECT_NE(TakeLog(), ""); // a load would have put its own hook into place
    EXPECT_EQ(DllMain(AsModule(module), DLL_PROCESS_DETACH, &module),
              TRUE); // as at the end of the process, which this is not
    for (DWORD reason : {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, 4, 99}) {
        EXPECT_EQ(DllMain(AsModule(other), reason, nullptr), TRUE);
    }
    EXPECT_EQ(DllMain(AsModule(other), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(zr::platform::StoredModule(), &other); // so it was unloaded, and stayed so
    zr::library::LibraryUnload();
    zr::library::LibraryLoad(nullptr);
}

TEST_F(WindowsEntry, LoadInstallsTheReporterOfBadArguments) {
    const _invalid_parameter_handler handler = _get_invalid_parameter_handler();
    ASSERT_NE(handler, nullptr);
    handler(L"buffer != 0", L"sprintf", nullptr, 0, 0);
    const std::string log = TakeLog();
    EXPECT_EQ(log.find(Stamp() + "> MESSAGE in prog.exe \"clib\" line "), 0u);
    EXPECT_NE(log.find(":\n  Invalid Parameter!\n  buffer != 0!\n  sprintf!\n\n\n"), std::string::npos);
}

int own_calls;

void OwnHandler(const wchar_t *, const wchar_t *, const wchar_t *, unsigned, std::uintptr_t) {
    ++own_calls;
}

TEST_F(WindowsEntry, FaultOfACheckedFunctionIsReportedAndTheFunctionFails) {
    char text[4] = "old";
    const _invalid_parameter_handler before = _set_invalid_parameter_handler(OwnHandler);
    own_calls = 0;
    EXPECT_EQ(strcpy_s(text, sizeof text, nullptr), EINVAL);
    _set_invalid_parameter_handler(before);
    if (own_calls == 0) {
        GTEST_SKIP() << "the C library of this build calls no handler at all";
    }
    EXPECT_EQ(strcpy_s(text, sizeof text, nullptr), EINVAL);
    EXPECT_NE(TakeLog().find(":\n  Invalid Parameter!\n"), std::string::npos);
}

TEST_F(WindowsEntry, UnloadBringsTheHandlerBeforeBack) {
    zr::library::LibraryUnload();
    const _invalid_parameter_handler before = _set_invalid_parameter_handler(OwnHandler);
    zr::library::LibraryLoad(nullptr);
    zr::library::LibraryUnload();
    EXPECT_EQ(_set_invalid_parameter_handler(before), &OwnHandler);
    zr::library::LibraryLoad(nullptr);
}

} // namespace
