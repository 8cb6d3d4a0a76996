// The least that a program with the same duties must do: COM, four registry values, the folder of the log, one log
// file, a text on standard output. With --show-config also the library and one call.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "conf_tool/library_interface.h"
#include "common/win32.h"

#include <objbase.h>
#include <shlobj.h>

namespace {

void read_registry(const wchar_t* key, const wchar_t* name) {
    std::array<unsigned char, 1024> data{};
    DWORD size = data.size();
    RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_ANY | RRF_SUBKEY_WOW6464KEY, nullptr, data.data(), &size);
}

void write(HANDLE target, std::string_view text) {
    DWORD written = 0;
    WriteFile(target, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

HANDLE open_log() {
    std::array<wchar_t, MAX_PATH> folder{};
    SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder.data());
    const std::wstring path = std::wstring(folder.data()) + L"\\Ormacon_minimal.log";
    return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

void ask_library() {
    using namespace conf_tool;
    const HMODULE library = LoadLibraryW(L"OrmaconLib.dll");
    const auto find = [&](const char* name) { return reinterpret_cast<void (*)()>(GetProcAddress(library, name)); };
    const auto get_config = reinterpret_cast<GetConfigFn>(find("GetConfig"));
    const auto free_string = reinterpret_cast<FreeStringFn>(find("FreeString"));
    const auto free_repositories = reinterpret_cast<FreeRepositoriesFn>(find("FreeRepositories"));
    std::array<LibraryText, 4> texts{};
    std::int32_t port = 0, parallelism = 0, count = 0;
    LibraryRecords records = nullptr;
    LibraryError error = nullptr;
    get_config(&texts[0], &texts[1], &texts[2], &texts[3], &port, &parallelism, &records, &count, &error);
    for (wchar_t* text : texts) free_string(text);
    free_repositories(records, count);
    FreeLibrary(library);
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    read_registry(L"SOFTWARE\\Tovak\\Tovak RMAN Plugin", L"LinkTargetPath");
    read_registry(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory");
    read_registry(L"SOFTWARE\\Tovak\\Tovak Central", L"AgentMaxLogSize");
    read_registry(L"SOFTWARE\\Tovak\\Tovak Central", L"AgentMaxLogCount");
    const HANDLE log = open_log();
    write(log, "The program has started.\r\n");
    if (argc > 1 && std::wstring_view(argv[1]) == L"--show-config") ask_library();
    write(GetStdHandle(STD_OUTPUT_HANDLE), "Done.\r\n");
    CloseHandle(log);
    return 0;
}
