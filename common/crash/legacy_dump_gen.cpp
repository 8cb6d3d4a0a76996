#include "common/crash/legacy_dump_gen.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "common/crash/debug_help.h"
#include "common/crash/dump_folder.h"
#include "common/crash/shared/retention.h"
#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/platform/guarded_call.h"
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

constexpr std::size_t max_frames = 256;

// A walk through a damaged stack must not crash once more.
bool read_word(std::uint64_t address, std::uint64_t& value) {
    SIZE_T size = 0;
    return ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<const void*>(address), &value, sizeof value,
                             &size) &&
           size == sizeof value;
}

bool leave_leaf_function(CONTEXT& context) {
    std::uint64_t return_address = 0;
    if (!read_word(context.Rsp, return_address)) return false;
    context.Rip = return_address;
    context.Rsp += sizeof return_address;
    return true;
}

bool leave_function(CONTEXT& context) {
    ULONG64 image = 0;
    RUNTIME_FUNCTION* const function = RtlLookupFunctionEntry(context.Rip, &image, nullptr);
    if (function == nullptr) return leave_leaf_function(context);
    std::uint64_t top = 0;
    if (!read_word(context.Rsp, top)) return false;
    void* handler_data = nullptr;
    ULONG64 frame = 0;
    // The unwinder trusts the frame register.
    return platform::call_guarded([&] {
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, image, context.Rip, function, &context, &handler_data, &frame, nullptr);
        return true;
    });
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

void check_architecture(WORD architecture) {
    if (architecture == PROCESSOR_ARCHITECTURE_AMD64) return;
    exc::raise(exc::format_message("Unexpected processor architecture: '%1'.", std::to_string(architecture)));
}

void walk_stack(const CONTEXT& thread, const std::function<void(std::uint64_t)>& visit) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    check_architecture(system.wProcessorArchitecture);
    CONTEXT context = thread;
    for (std::size_t frame = 0; frame < max_frames; ++frame) {
        visit(context.Rip);
        const DWORD64 stack_pointer = context.Rsp;
        if (!leave_function(context) || context.Rip == 0 || context.Rsp <= stack_pointer) return;
    }
}

void legacy_dump_gen_t::generate(const cause_t& cause, const std::wstring& path) {
    const std::wstring file_path = reserve_dump_identifier(path) + legacy_report_ending;
    log(exc::format_message("Writing legacy dump. Dump path: %1.", encoding::wide_to_utf8(file_path)));
    report_t report(file_path);
    set_has_dump(true);
    write(report, *cause.pointers->ContextRecord);
    report.keep();
}

}  // namespace crash::win32
