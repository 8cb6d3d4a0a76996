#include "common/crash/minidump_gen.h"

#include "common/crash/dump_folder.h"
#include "common/crash/recorder/minidump_file.h"
#include "common/crash/system_library.h"
#include "common/crash/watchdog.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/platform/owned.h"
#include "common/text/convert.h"

namespace crash::win32 {
namespace {

mini_dump_write_dump_t find_writer(const platform::unique_module& library) {
    const auto writer = find_function<mini_dump_write_dump_t>(library, "MiniDumpWriteDump");
    if (writer == nullptr) {
        exc::raise_win_error(GetLastError(),
                             "MiniDumpWriteDump function is not exported from the dbghelp dynamic library.");
    }
    return writer;
}

platform::unique_file create_blank(const std::wstring& path) {
    platform::unique_file file(create_minidump(path.c_str()));
    if (!file) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Cannot create a blank minidump file. File path: [%1].",
                                                       text::wide_to_utf8(path)));
    }
    return file;
}

bool write(mini_dump_write_dump_t writer, HANDLE file, const failure_t& failure) {
    MINIDUMP_EXCEPTION_INFORMATION exception{failure.thread_id, failure.pointers, FALSE};
    return write_minidump(writer, file, {GetCurrentProcess(), GetCurrentProcessId(), &exception, watching_thread()});
}

}  // namespace

void minidump_gen_t::generate(const failure_t& failure, const std::wstring& path) {
    const platform::unique_module library = load_system_library(L"dbghelp.dll");
    if (!library) exc::raise_win_error(GetLastError(), "Cannot load dbghelp.dll library.");
    const mini_dump_write_dump_t writer = find_writer(library);
    const std::wstring file_path = reserve_dump_identifier(path) + minidump_ending;
    logging::ormacon_tool.info(exc::format_message("Writing dump. Dump path: %1.", text::wide_to_utf8(file_path)));
    const platform::unique_file file = create_blank(file_path);
    if (write(writer, file.get(), failure)) return;
    exc::raise_win_error(GetLastError(), "MiniDumpWriteDump() function call has failed.");
}

}  // namespace crash::win32
