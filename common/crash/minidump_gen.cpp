#include "common/crash/debug_help.h"
#include "common/crash/dump_folder.h"
#include "common/crash/generators.h"
#include "common/crash/recorder/minidump_file.h"
#include "common/crash/watchdog.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/guarded_call.h"
#include "common/platform/path.h"

namespace crash::win32 {
namespace {

[[noreturn]] void raise_system_error(std::string_view sentence) {
    const DWORD code = GetLastError();
    exc::raise_win_error(code, sentence);
}

}  // namespace

void minidump_gen_t::generate(const failure_t& failure, const std::wstring& path) {
    const platform::unique_module library = load_debug_help();
    if (!library) raise_system_error("Cannot load dbghelp.dll library.");
    const auto writer = find_function<mini_dump_write_dump_t>(library, "MiniDumpWriteDump");
    if (writer == nullptr) {
        raise_system_error("MiniDumpWriteDump function is not exported from the dbghelp dynamic library.");
    }

    const std::wstring file_path = reserve_dump_identifier(path) + minidump_ending;
    const std::string shown = encoding::wide_to_utf8(file_path);
    log(exc::format_message("Writing dump. Dump path: %1.", shown));
    const platform::unique_file file(create_minidump(platform::system_path(file_path).c_str()));
    if (!file) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Cannot create a blank minidump file. File path: [%1].", shown));
    }
    MINIDUMP_EXCEPTION_INFORMATION exception{failure.thread_id, failure.pointers, FALSE};
    const dump_source_t source{GetCurrentProcess(), GetCurrentProcessId(), &exception, watching_thread()};
    set_has_dump(platform::call_guarded([&] { return write_minidump(writer, file.get(), source); }));
    if (!has_dump()) raise_system_error("MiniDumpWriteDump() function call has failed.");
}

}  // namespace crash::win32
