#include "common/crash/recorder_process.h"

#include <cstddef>
#include <vector>

#include "common/crash/watchdog.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/text/convert.h"

namespace crash {
namespace {

// A list with one attribute: the handle that a child process may inherit.
class inherited_handle_t {
public:
    explicit inherited_handle_t(HANDLE handle) : handle_(handle) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_.resize(size);
        usable_ = InitializeProcThreadAttributeList(get(), 1, 0, &size);
    }
    ~inherited_handle_t() {
        if (usable_) DeleteProcThreadAttributeList(get());
    }
    inherited_handle_t(const inherited_handle_t&) = delete;
    inherited_handle_t& operator=(const inherited_handle_t&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST get() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data()); }

    bool set() {
        return usable_ && UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, &handle_,
                                                    sizeof handle_, nullptr, nullptr);
    }

private:
    HANDLE handle_;
    std::vector<std::byte> memory_;
    bool usable_ = false;
};

}  // namespace

platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments, HANDLE inherited) {
    std::wstring command_line = L"\"" + file + L"\" " + arguments;
    inherited_handle_t list(inherited);
    STARTUPINFOEXW start{};
    start.StartupInfo.cb = sizeof start;
    start.lpAttributeList = list.get();
    PROCESS_INFORMATION process{};
    if (!list.set() || !CreateProcessW(file.c_str(), command_line.data(), nullptr, nullptr, TRUE,
                                       CREATE_NO_WINDOW | EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                                       &start.StartupInfo, &process)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(
            code, exc::format_message("Failed to start dump generator process. File: %1", text::wide_to_utf8(file)));
    }
    CloseHandle(process.hThread);
    return platform::unique_handle(process.hProcess);
}

std::uint32_t wait_for_recorder(const platform::unique_handle& process, std::uint32_t longest_wait) {
    const watchdog_pause_t pause(process.get(), longest_wait);
    const DWORD outcome = WaitForSingleObject(process.get(), longest_wait);
    if (outcome == WAIT_TIMEOUT) {
        TerminateProcess(process.get(), 1);
        exc::raise("Timed out waiting for dump generator process to finish");
    }
    if (outcome != WAIT_OBJECT_0) exc::raise_win_error(GetLastError(), "Failed to wait for dump generator process");
    DWORD code = 0;
    if (!GetExitCodeProcess(process.get(), &code)) {
        exc::raise_win_error(GetLastError(), "Failed to get exit code of dump generator process");
    }
    return code;
}

}  // namespace crash
