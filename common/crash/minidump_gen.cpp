#include "common/crash/minidump_gen.h"

#include "common/crash/debug_help.h"
#include "common/crash/dump_folder.h"
#include "common/crash/shared/minidump_file.h"
#include "common/crash/shared/retention.h"
#include "common/crash/watchdog.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/guarded_call.h"
#include "common/platform/module.h"
#include "common/platform/path.h"

namespace crash::win32 {

void minidump_gen_t::generate(const cause_t& cause, const std::wstring& path) {
    const platform::unique_module library = load_debug_help();
    if (!library) exc::raise_win_error(GetLastError(), "Cannot load dbghelp.dll library.");
    const auto writer = platform::find_function<mini_dump_write_dump_t>(library.get(), "MiniDumpWriteDump");
    if (writer == nullptr) {
        exc::raise_win_error(GetLastError(),
                             "MiniDumpWriteDump function is not exported from the dbghelp dynamic library.");
    }

    const std::wstring file_path = reserve_dump_identifier(path) + minidump_ending;
    log(exc::format_message("Writing dump. Dump path: %1.", encoding::wide_to_utf8(file_path)));
    const platform::unique_file file(create_minidump(platform::system_path(file_path).c_str()));
    if (!file)
        exc::raise_path_error(GetLastError(), "Cannot create a blank minidump file. File path: [%1].", file_path);
    MINIDUMP_EXCEPTION_INFORMATION exception{cause.thread_id, cause.pointers, FALSE};
    const dump_source_t source{GetCurrentProcess(), GetCurrentProcessId(), &exception, watching_thread()};
    set_has_dump(platform::call_guarded([&] { return write_minidump(writer, file.get(), source); }));
    if (!has_dump()) exc::raise_win_error(GetLastError(), "MiniDumpWriteDump() function call has failed.");
}

}  // namespace crash::win32
