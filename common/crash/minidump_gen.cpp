#include "common/crash/minidump_gen.h"

#include "common/crash/dump_folder.h"
#include "common/crash/recorder/dump_type.h"
#include "common/crash/recorder/value_filter.h"
#include "common/crash/system_library.h"
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
    platform::unique_file file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                           FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message("Cannot create a blank minidump file. File path: [%1].",
                                                       text::wide_to_utf8(path)));
    }
    return file;
}

bool write(mini_dump_write_dump_t writer, HANDLE file, const failure_t& failure) {
    MINIDUMP_EXCEPTION_INFORMATION exception{failure.thread_id, failure.pointers, FALSE};
    return writer(GetCurrentProcess(), GetCurrentProcessId(), file, dump_type, &exception, nullptr, nullptr) &&
           filter_values(file);
}

}  // namespace

void minidump_gen_t::generate(const failure_t& failure, const std::wstring& path) {
    const platform::unique_module library = load_system_library(L"dbghelp.dll");
    if (!library) exc::raise_win_error(GetLastError(), "Cannot load dbghelp.dll library.");
    const mini_dump_write_dump_t writer = find_writer(library);
    const std::wstring file_path = reserve_dump_identifier(path) + minidump_ending;
    logging::ormacon_tool.info(exc::format_message("Writing dump. Dump path: %1.", text::wide_to_utf8(file_path)));
    platform::unique_file file = create_blank(file_path);
    if (write(writer, file.get(), failure)) return;
    const DWORD code = GetLastError();
    file.reset();
    DeleteFileW(file_path.c_str());
    exc::raise_win_error(code, "MiniDumpWriteDump() function call has failed.");
}

}  // namespace crash::win32
