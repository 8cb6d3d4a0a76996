#include "common/crash/legacy_dump_gen.h"

#include <string_view>

#include "common/crash/dump_folder.h"
#include "common/crash/loaded_modules.h"
#include "common/crash/stack_frames.h"
#include "common/crash/symbols.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/logging/separators.h"
#include "common/platform/owned.h"
#include "common/text/convert.h"

namespace crash::win32 {
namespace {

[[noreturn]] void raise_for(DWORD code, const std::wstring& path, const char* sentence) {
    exc::raise_win_error(code, exc::format_message(sentence, text::wide_to_utf8(path)));
}

void write_file(const std::wstring& path, std::string_view content) {
    platform::unique_file file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) raise_for(GetLastError(), path, "Cannot create a legacy dump file. File path: [%1].");
    DWORD written = 0;
    if (WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) &&
        written == content.size()) {
        return;
    }
    const DWORD code = GetLastError();
    file.reset();
    DeleteFileW(path.c_str());
    raise_for(code, path, "Cannot write a legacy dump file. File path: [%1].");
}

std::string report(const failure_t& failure) {
    const symbols_t symbols;
    std::string content;
    const auto add_line = [&content](std::string_view line) { content.append(line).append("\r\n"); };
    add_line(logging::report_separator);
    add_line("Loaded modules:");
    for (const module_t& module : loaded_modules()) add_line(describe(module, symbols));
    add_line("Stack frames:");
    for (const std::uint64_t address : walk_stack(*failure.pointers->ContextRecord)) {
        add_line(symbols.describe_address(address));
    }
    return content;
}

}  // namespace

void legacy_dump_gen_t::generate(const failure_t& failure, const std::wstring& path) {
    const std::wstring file_path = reserve_dump_identifier(path) + legacy_report_ending;
    logging::ormacon_tool.info(
        exc::format_message("Writing legacy dump. Dump path: %1.", text::wide_to_utf8(file_path)));
    write_file(file_path, report(failure));
}

}  // namespace crash::win32
