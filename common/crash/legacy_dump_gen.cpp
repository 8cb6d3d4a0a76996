#include "common/crash/legacy_dump_gen.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "common/crash/debug_help.h"
#include "common/crash/dump_folder.h"
#include "common/crash/shared/retention.h"
#include "common/crash/stack_frames.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/versions.h"

#include <psapi.h>

namespace crash::win32 {
namespace {

// Each line is in the file before the next one is made: if that crashes, the file stays as it is.
class report_t {
public:
    explicit report_t(const std::wstring& path)
        : path_(path),
          file_(CreateFileW(platform::system_path(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (!file_) exc::raise_path_error(GetLastError(), "Cannot create a legacy dump file. File path: [%1].", path_);
    }
    ~report_t() {
        file_.reset();
        if (!complete_) DeleteFileW(platform::system_path(path_).c_str());
    }
    report_t(const report_t&) = delete;
    report_t& operator=(const report_t&) = delete;

    void add_line(std::string_view text) {
        const std::string line = std::string(text) + "\r\n";
        DWORD written = 0;
        const BOOL done = WriteFile(file_.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
        if (done && written == line.size()) return;
        exc::raise_path_error(done ? ERROR_DISK_FULL : GetLastError(),
                              "Cannot write a legacy dump file. File path: [%1].", path_);
    }

    void keep() { complete_ = true; }

private:
    std::wstring path_;
    platform::unique_file file_;
    bool complete_ = false;
};

std::vector<HMODULE> loaded_modules() {
    std::vector<HMODULE> modules(1024);
    const auto size = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    DWORD needed = 0;
    if (!K32EnumProcessModules(GetCurrentProcess(), modules.data(), size, &needed)) return {};
    modules.resize(std::min(size, needed) / sizeof(HMODULE));
    return modules;
}

// Begin, end, file name, path, file version and what symbols are known. Addresses have as many digits as they need.
std::string describe(HMODULE module, const symbols_t& symbols) {
    MODULEINFO info{};
    K32GetModuleInformation(GetCurrentProcess(), module, &info, sizeof info);
    const auto begin = reinterpret_cast<std::uint64_t>(module);
    std::array<char, 64> addresses{};
    std::snprintf(addresses.data(), addresses.size(), "0x%08llx - 0x%08llx ", begin, begin + info.SizeOfImage);
    const std::wstring path = platform::module_path(module);
    const std::string version = platform::read_version_resource(path).file_version;
    return addresses.data() + encoding::wide_to_utf8(platform::file_name_of(path)) + " (" +
           encoding::wide_to_utf8(path) + ") " + (version.empty() ? "0.0.0.0" : version) + ", " +
           symbols.describe_module(begin);
}

void write(report_t& report, const CONTEXT& thread) {
    const symbols_t symbols;
    report.add_line(std::string(74, '/'));
    report.add_line("Loaded modules:");
    for (const HMODULE module : loaded_modules()) report.add_line(describe(module, symbols));
    report.add_line("Stack frames:");
    walk_stack(thread, [&](std::uint64_t address) { report.add_line(symbols.describe_address(address)); });
}

}  // namespace

void legacy_dump_gen_t::generate(const cause_t& cause, const std::wstring& path) {
    const std::wstring file_path = reserve_dump_identifier(path) + legacy_report_ending;
    log(exc::format_message("Writing legacy dump. Dump path: %1.", encoding::wide_to_utf8(file_path)));
    report_t report(file_path);
    set_has_dump(true);
    write(report, *cause.pointers->ContextRecord);
    report.keep();
}

}  // namespace crash::win32
