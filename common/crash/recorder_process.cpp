#include "common/crash/recorder_program.h"

#include <algorithm>
#include <utility>

#include "common/crash/recorder/exit_codes.h"
#include "common/crash/watchdog.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace crash {

platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments) {
    std::wstring command_line = L"\"" + file + L"\" " + arguments;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(file.c_str(), command_line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &start, &process)) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Failed to start dump generator process. File: %1",
                                                       encoding::wide_to_utf8(file)));
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

std::string_view recorder_exit_text(std::uint32_t code) noexcept {
    constexpr std::pair<std::uint32_t, std::string_view> texts[] = {
        {recorder_success, "success"},
        {recorder_unspecified_failure, "unspecified failure"},
        {recorder_bad_argument_count, "invalid count of arguments"},
        {recorder_bad_arguments, "invalid arguments"},
        {recorder_no_folder, "cannot create dump folder"},
        {recorder_old_dumps_stay, "cannot delete old dumps"},
        {recorder_bad_dump_name, "invalid dump name"},
        {recorder_no_dump_file, "cannot create dump file"},
        {recorder_no_dump_content, "cannot write dump content"},
        {recorder_no_ntdll, "NTDLL is not loaded"},
        {recorder_no_memset, "memset is not exported from NTDLL"},
        {recorder_no_vsnwprintf, "_vsnwprintf is not exported from NTDLL"},
    };
    const auto* const found = std::ranges::find(texts, code, &std::pair<std::uint32_t, std::string_view>::first);
    return found == std::end(texts) ? "unexpected exit code" : found->second;
}

}  // namespace crash
