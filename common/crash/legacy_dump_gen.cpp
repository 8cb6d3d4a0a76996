#include "common/crash/legacy_dump_gen.h"

#include <string>
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

// Each line is in the file before the next one is made: making it may crash, and then the file stays as it is.
class report_t {
public:
    explicit report_t(const std::wstring& path)
        : path_(path),
          file_(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (!file_) raise("Cannot create a legacy dump file. File path: [%1].");
    }
    ~report_t() {
        file_.reset();
        if (!complete_) DeleteFileW(path_.c_str());
    }
    report_t(const report_t&) = delete;
    report_t& operator=(const report_t&) = delete;

    void add_line(std::string_view text) {
        const std::string line = std::string(text) + "\r\n";
        DWORD written = 0;
        const bool done =
            WriteFile(file_.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr) != FALSE;
        if (done && written == line.size()) return;
        if (done) SetLastError(ERROR_DISK_FULL);
        raise("Cannot write a legacy dump file. File path: [%1].");
    }

    void keep() { complete_ = true; }

private:
    [[noreturn]] void raise(const char* sentence) const {
        const DWORD code = GetLastError();
        exc::raise_win_error(code, exc::format_message(sentence, text::wide_to_utf8(path_)));
    }

    std::wstring path_;
    platform::unique_file file_;
    bool complete_ = false;
};

void write(report_t& report, const CONTEXT& thread) {
    const symbols_t symbols;
    report.add_line(logging::report_separator);
    report.add_line("Loaded modules:");
    for (const module_t& module : loaded_modules()) report.add_line(describe(module, symbols));
    report.add_line("Stack frames:");
    walk_stack(thread, [&](std::uint64_t address) { report.add_line(symbols.describe_address(address)); });
}

}  // namespace

void legacy_dump_gen_t::generate(const failure_t& failure, const std::wstring& path) {
    const std::wstring file_path = reserve_dump_identifier(path) + legacy_report_ending;
    logging::ormacon_tool.info(
        exc::format_message("Writing legacy dump. Dump path: %1.", text::wide_to_utf8(file_path)));
    report_t report(file_path);
    write(report, *failure.pointers->ContextRecord);
    report.keep();
}

}  // namespace crash::win32
