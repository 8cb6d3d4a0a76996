#include "common/crash/recorder_file.h"

#include "common/crash/recorder_image.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/text/convert.h"

namespace crash {
namespace {

[[noreturn]] void raise_for(const std::wstring& path, const char* sentence) {
    const DWORD code = GetLastError();
    exc::raise_win_error(code, exc::format_message(sentence, text::wide_to_utf8(path)));
}

// Exclusive: a program that crashes at the same time must not get at a file that is still being written. New: a file
// that somebody left there would keep its owner and rights, and is about to be run.
platform::unique_file create(const std::wstring& path) {
    DeleteFileW(path.c_str());
    platform::unique_file file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) raise_for(path, "Failed to create dump recorder file: %1");
    return file;
}

bool write_image(HANDLE file) {
    const auto size = static_cast<DWORD>(&ormacon_recorder_end - &ormacon_recorder_begin);
    DWORD written = 0;
    return WriteFile(file, &ormacon_recorder_begin, size, &written, nullptr) && written == size;
}

void write(const std::wstring& path) {
    platform::unique_file file = create(path);
    if (write_image(file.get())) return;
    const DWORD code = GetLastError();
    file.reset();
    DeleteFileW(path.c_str());
    SetLastError(code);
    raise_for(path, "Failed to write dump recorder code to %1");
}

// The start of the program needs read sharing, the deletion delete sharing; nobody may write to it any more.
platform::unique_file reopen(const std::wstring& path) {
    platform::unique_file file(CreateFileW(path.c_str(), GENERIC_READ | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                           nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (file) return file;
    const DWORD code = GetLastError();
    DeleteFileW(path.c_str());
    SetLastError(code);
    raise_for(path, "Failed to re-open dump recorder for deletion: %1");
}

}  // namespace

recorder_file_t::recorder_file_t(const std::wstring& folder) : path_(folder + L"\\TovakDumpRecorder") {
    write(path_);
    deletion_ = reopen(path_);
}

}  // namespace crash
