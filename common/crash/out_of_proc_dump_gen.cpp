#include "common/crash/out_of_proc_dump_gen.h"

#include <utility>

#include "common/crash/recorder_process.h"
#include "common/crash/shared/exit_codes.h"
#include "common/crash/watchdog.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/path.h"

namespace crash::win32 {
namespace {

platform::unique_handle duplicate_process_handle() try {
    platform::unique_handle process;
    const HANDLE current = GetCurrentProcess();
    if (DuplicateHandle(current, current, current, process.put(), 0, TRUE, DUPLICATE_SAME_ACCESS)) return process;
    exc::raise_win_error(GetLastError(),
                         "Cannot initialize out-of-process dump generator: failed to duplicate current process handle");
} catch (const std::exception& failure) {
    exc::rethrow_with_context(failure, "Failed to create out-of-process dump generator");
}

}  // namespace

COutOfProcDumpGen::COutOfProcDumpGen(const logging::component_t& component, unsigned max_dumps,
                                     std::wstring program_folder)
    : dump_gen_base_t(component),
      max_dumps_(max_dumps),
      program_folder_(std::move(program_folder)),
      process_(duplicate_process_handle()) {}

std::wstring COutOfProcDumpGen::arguments(const cause_t& cause, const std::wstring& path) const {
    const auto decimal = [](auto number) { return std::to_wstring(number) + L" "; };
    const auto quoted = [](const std::wstring& value) { return L"\"" + value + L"\" "; };
    const std::wstring folder = platform::system_path(platform::parent_of(path));
    return decimal(reinterpret_cast<std::uintptr_t>(process_.get())) + decimal(GetCurrentProcessId()) +
           decimal(cause.thread_id) + decimal(reinterpret_cast<std::uintptr_t>(cause.pointers)) +
           decimal(watching_thread()) + quoted(folder) + quoted(platform::file_name_of(path)) +
           std::to_wstring(max_dumps_);
}

void COutOfProcDumpGen::generate(const cause_t& cause, const std::wstring& path) {
    // Anyone who can write to the program's folder can replace the program as well.
    const recorder_file_t recorder(program_folder_);
    log(exc::format_message("Generating dump to %1", encoding::wide_to_utf8(platform::parent_of(path))));
    const std::uint32_t code = wait_for_recorder(start_recorder(recorder.path(), arguments(cause, path)));
    set_has_dump(code == recorder_success);
    if (has_dump()) return;
    exc::raise(exc::format_message("Dump generator process failed with %1: %2",
                                   {std::to_string(code), recorder_exit_text(code)}));
}

}  // namespace crash::win32
