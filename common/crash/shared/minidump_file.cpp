#include "common/crash/shared/minidump_file.h"

#include "common/crash/shared/value_filter.h"

// Compiled for the recorder too, so nothing here needs a C or C++ runtime.

namespace crash {
namespace {

// Stacks, thread contexts and the list of modules. Any other memory would contain what the user typed.
constexpr auto dump_type = static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpFilterMemory);

// A thread that is excluded here is not suspended either. One that is excluded later leaves a gap in the list.
BOOL CALLBACK select(void* watching_thread, const PMINIDUMP_CALLBACK_INPUT input, PMINIDUMP_CALLBACK_OUTPUT) {
    switch (input->CallbackType) {
        case IncludeThreadCallback:
            return input->IncludeThread.ThreadId != *static_cast<DWORD*>(watching_thread);
        case IncludeModuleCallback:
        case ModuleCallback:
        case ThreadCallback:
        case ThreadExCallback:
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

bool delete_when_closed(HANDLE file, bool deleted) {
    FILE_DISPOSITION_INFO disposition = {deleted};
    return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
}

HANDLE create_minidump(const wchar_t* path) {
    const HANDLE file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE || delete_when_closed(file, true)) return file;
    const DWORD code = GetLastError();
    CloseHandle(file);
    DeleteFileW(path);
    SetLastError(code);
    return INVALID_HANDLE_VALUE;
}

bool write_minidump(mini_dump_write_dump_t writer, HANDLE file, const dump_source_t& source) {
    DWORD watching_thread = source.watching_thread;
    MINIDUMP_CALLBACK_INFORMATION selection = {&select, &watching_thread};
    return writer(source.process, source.process_id, file, dump_type, source.exception, nullptr, &selection) &&
           filter_values(file) && delete_when_closed(file, false);
}

}  // namespace crash
