#include "common/crash/recorder_program.h"

#include "common/crash/recorder/minidump_file.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/path.h"

// The recorder's program file as data: recorder_image.S.
extern "C" const unsigned char ormacon_recorder_begin;
extern "C" const unsigned char ormacon_recorder_end;

namespace crash {
namespace {

[[noreturn]] void raise_for(const std::wstring& path, const char* sentence) {
    const DWORD code = GetLastError();
    exc::raise_win_error(code, exc::format_message(sentence, encoding::wide_to_utf8(path)));
}

// Whether the failure to create the file is due to one that exists or, refusing access, is just being deleted.
bool is_taken(const std::wstring& path, DWORD code) {
    return code == ERROR_FILE_EXISTS || GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES ||
           GetLastError() == ERROR_ACCESS_DENIED;
}

// New, since a file that somebody put there would keep its owner and rights; and not shared while it is incomplete.
platform::unique_file create(const std::wstring& path, ULONGLONG longest_wait) {
    for (const ULONGLONG end = GetTickCount64() + longest_wait;; Sleep(20)) {
        platform::unique_file file(
            CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) return file;
        const DWORD code = GetLastError();
        if (is_taken(path, code) && (GetTickCount64() < end || DeleteFileW(path.c_str()))) continue;
        SetLastError(code);
        raise_for(path, "Failed to create dump recorder file: %1");
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
void write(const std::wstring& path, ULONGLONG longest_wait) {
    const platform::unique_file file = create(path, longest_wait);
    if (delete_when_closed(file.get(), true) && write_image(file.get()) && delete_when_closed(file.get(), false))
        return;
    raise_for(path, "Failed to write dump recorder code to %1");
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
    SetLastError(code);
    raise_for(path, "Failed to re-open dump recorder for deletion: %1");
}

}  // namespace

recorder_file_t::recorder_file_t(const std::wstring& folder, std::uint32_t longest_wait)
    : path_(platform::join_path(folder, L"TovakDumpRecorder")) {
    write(path_, longest_wait);
    deletion_ = reopen(path_);
}

}  // namespace crash
