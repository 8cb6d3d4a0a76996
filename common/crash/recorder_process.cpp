#include "common/crash/recorder_process.h"

#include <algorithm>
#include <utility>

#include "common/crash/shared/exit_codes.h"
#include "common/crash/shared/minidump_file.h"
#include "common/crash/watchdog.h"
#include "common/exc/raise.h"
#include "common/platform/path.h"

// The recorder's program file as data: recorder_image.S.
extern "C" const unsigned char ormacon_recorder_begin;
extern "C" const unsigned char ormacon_recorder_end;

namespace crash {
namespace {

// Whether the failure to create the file is due to one that exists or, refusing access, is just being deleted.
bool is_taken(const std::wstring& path, DWORD code) {
    return code == ERROR_FILE_EXISTS || GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ||
           GetLastError() == ERROR_ACCESS_DENIED;
}

// New, since a file that somebody put there would keep its owner and rights; and not shared while it is incomplete.
platform::unique_file create(const std::wstring& path, ULONGLONG timeout) {
    for (const ULONGLONG end = GetTickCount64() + timeout;; Sleep(20)) {
        platform::unique_file file(
            CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) return file;
        const DWORD code = GetLastError();
        if (is_taken(path, code) && (GetTickCount64() < end || DeleteFileW(path.c_str()))) continue;
        exc::raise_path_error(code, "Failed to create dump recorder file: %1", path);
    }
}

bool write_image(HANDLE file) {
    const auto size = static_cast<DWORD>(&ormacon_recorder_end - &ormacon_recorder_begin);
    DWORD written = 0;
    if (!WriteFile(file, &ormacon_recorder_begin, size, &written, nullptr)) return false;
    if (written != size) SetLastError(ERROR_DISK_FULL);
    return written == size;
}

// Marked for deletion while it is written: a process that is killed meanwhile leaves nothing.
void write(const std::wstring& path, ULONGLONG timeout) {
    const platform::unique_file file = create(path, timeout);
    if (delete_when_closed(file.get(), true) && write_image(file.get()) && delete_when_closed(file.get(), false))
        return;
    exc::raise_path_error(GetLastError(), "Failed to write dump recorder code to %1", path);
}

// Inherited by the recorder, whose end then deletes the file even when this process is killed before. The start of a
// program opens the file for reading and shares its deletion; nobody else gets the right to write, rename or delete.
platform::unique_file reopen(const std::wstring& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    platform::unique_file file(CreateFileW(path.c_str(), GENERIC_READ | DELETE, FILE_SHARE_READ, &inheritable,
                                           OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (file) return file;
    const DWORD code = GetLastError();
    DeleteFileW(path.c_str());
    exc::raise_path_error(code, "Failed to re-open dump recorder for deletion: %1", path);
}

}  // namespace

recorder_file_t::recorder_file_t(const std::wstring& folder, std::uint32_t timeout)
    : path_(platform::join_path(folder, L"TovakDumpRecorder")) {
    write(path_, timeout);
    deletion_ = reopen(path_);
}

platform::unique_handle start_recorder(const std::wstring& file, const std::wstring& arguments) {
    std::wstring command_line = L"\"" + file + L"\" " + arguments;
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(file.c_str(), command_line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &start, &process)) {
        exc::raise_path_error(GetLastError(), "Failed to start dump generator process. File: %1", file);
    }
    CloseHandle(process.hThread);
    return platform::unique_handle(process.hProcess);
}

std::uint32_t wait_for_recorder(const platform::unique_handle& process, std::uint32_t timeout) {
    const watchdog_pause_t pause(process.get(), timeout);
    const DWORD outcome = WaitForSingleObject(process.get(), timeout);
    if (outcome == WAIT_TIMEOUT) {
        TerminateProcess(process.get(), 1);
        exc::raise("Timed out waiting for dump generator process to finish");
    }
    if (outcome != WAIT_OBJECT_0) exc::raise_win_error(GetLastError(), "Failed to wait for dump generator process");
    DWORD code = 0;
    if (!GetExitCodeProcess(process.get(), &code))
        exc::raise_win_error(GetLastError(), "Failed to get exit code of dump generator process");
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
