#include "common/crash/debug_help.h"

#include <array>
#include <cstdio>

#include "common/encoding/convert.h"
#include "common/platform/guarded_call.h"
#include "common/platform/module.h"
#include "common/platform/path.h"

namespace crash {
namespace {

constexpr const wchar_t* search_path = L"%_NT_SYMBOL_PATH%;%_NT_ALT_SYMBOL_PATH%;%SystemRoot%\\Symbols";
constexpr std::size_t max_name_length = 512;

struct named_symbol_t {
    SYMBOL_INFOW info;
    wchar_t rest_of_name[max_name_length];
};

template <class... Arguments>
std::string print(const char* format, Arguments... arguments) {
    std::array<char, 128> line{};
    std::snprintf(line.data(), line.size(), format, arguments...);
    return line.data();
}

// " Ormacon.exe + 0x1234", or nothing for an address outside of all modules.
std::string module_at(std::uint64_t address) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<const wchar_t*>(address), &module)) {
        return {};
    }
    return " " + encoding::wide_to_utf8(platform::file_name_of(platform::module_path(module))) +
           print(" + 0x%llx", address - reinterpret_cast<std::uint64_t>(module));
}

}  // namespace

platform::unique_module load_debug_help() {
    platform::unique_module library;
    platform::call_guarded([&] {
        return (*library.put() = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) != nullptr;
    });
    return library;
}

symbols_t::symbols_t() : library_(load_debug_help()) {
    if (!library_) return;
    const auto set_options = platform::find_function<decltype(&SymSetOptions)>(library_.get(), "SymSetOptions");
    const auto initialise = platform::find_function<decltype(&SymInitializeW)>(library_.get(), "SymInitializeW");
    get_module_info_ = platform::find_function<decltype(&SymGetModuleInfoW64)>(library_.get(), "SymGetModuleInfoW64");
    from_address_ = platform::find_function<decltype(&SymFromAddrW)>(library_.get(), "SymFromAddrW");
    if (!set_options || !initialise || !get_module_info_ || !from_address_) return;
    set_options(SYMOPT_UNDNAME | SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_NO_PROMPTS);
    const std::wstring path = platform::expand_variables(search_path);
    initialised_ = platform::call_guarded([&] { return initialise(GetCurrentProcess(), path.c_str(), TRUE); });
}

symbols_t::~symbols_t() {
    const auto clean_up = platform::find_function<decltype(&SymCleanup)>(library_.get(), "SymCleanup");
    if (initialised_ && clean_up != nullptr) platform::call_guarded([&] { return clean_up(GetCurrentProcess()); });
}

std::string symbols_t::describe_module(std::uint64_t begin) const {
    if (!initialised_) return "no symbols are available";
    IMAGEHLP_MODULEW64 info{};
    info.SizeOfStruct = sizeof info;
    if (!platform::call_guarded([&] { return get_module_info_(GetCurrentProcess(), begin, &info); })) {
        return print("no matching symbolic information found (error code: 0x%08x)",
                     static_cast<unsigned>(GetLastError()));
    }
    return info.SymType == SymNone ? "no symbols are available" : "symbols loaded";
}

std::string symbols_t::function_at(std::uint64_t address) const {
    if (!initialised_) return {};
    named_symbol_t symbol{};
    symbol.info.SizeOfStruct = sizeof symbol.info;
    symbol.info.MaxNameLen = max_name_length;
    DWORD64 distance = 0;
    if (!platform::call_guarded([&] { return from_address_(GetCurrentProcess(), address, &distance, &symbol.info); }))
        return {};
    return " " + encoding::wide_to_utf8(symbol.info.Name) + print(" + 0x%llx", static_cast<std::uint64_t>(distance));
}

std::string symbols_t::describe_address(std::uint64_t address) const {
    return print("0x%08llx", address) + module_at(address) + function_at(address);
}

}  // namespace crash
