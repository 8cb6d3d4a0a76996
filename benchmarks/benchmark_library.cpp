// A configuration library that answers at once, so that only the tool's own time is measured. The environment variable
// ORMACON_BENCHMARK_REPOSITORIES sets the number of repositories; every tenth of them is configured. The library stores
// nothing; its memory is static, so freeing it costs nothing.
#include <cstdlib>
#include <string>
#include <vector>

#include "conf_tool/library_interface.h"
#include "common/win32.h"

using namespace conf_tool;
using plug_common::SRepositoryCType;

namespace {

wchar_t any_text[] = L"any";
std::vector<std::wstring> texts;
std::vector<SRepositoryCType> records;
std::vector<SRepositoryCType*> offered;
std::vector<SRepositoryCType*> configured;

Status HandOut(std::vector<SRepositoryCType*>& chosen, LibraryRecords* array, std::int32_t* count) {
    *array = chosen.data();
    *count = static_cast<std::int32_t>(chosen.size());
    return 0;
}

}  // namespace

#define EXPORTED extern "C" __declspec(dllexport)

// Called once: each run of the wizard loads the library anew.
EXPORTED Status InitializeWizard(LibraryError*) {
    wchar_t wanted[16] = L"";
    GetEnvironmentVariableW(L"ORMACON_BENCHMARK_REPOSITORIES", wanted, 16);
    const std::size_t count = std::wcstoul(wanted, nullptr, 10);
    texts.reserve(2 * count);
    records.reserve(count);
    for (std::size_t i = 1; i <= count; ++i) {
        const std::wstring& id = texts.emplace_back(L"7b1e9c52-0d4f-4a6e-" + std::to_wstring(1000000 + i));
        const std::wstring& name = texts.emplace_back(L"Repository " + std::to_wstring(i));
        offered.push_back(&records.emplace_back(SRepositoryCType{id.c_str(), name.c_str(), 2e13, 1e13, 0}));
        if (i % 10 == 0) configured.push_back(offered.back());
    }
    return 0;
}

EXPORTED Status GetConfig(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText* host,
                          std::int32_t* port, std::int32_t* parallelism, LibraryRecords* array, std::int32_t* count,
                          LibraryError*) {
    *user_name = *domain = *password = *host = any_text;
    *port = *parallelism = 1;
    return HandOut(configured, array, count);
}

EXPORTED Status GetTBRRepositories(LibraryRecords* array, std::int32_t* count, LibraryError*) {
    return HandOut(offered, array, count);
}

EXPORTED Status SetRepositories(const SRepositoryCType*, std::int32_t count, LibraryError*) {
    return static_cast<std::size_t>(count) == configured.size() ? 0 : 1;
}

EXPORTED Status GetScopeEdition(std::int32_t* edition, LibraryError*) {
    *edition = 2;
    return 0;
}

EXPORTED Status GetSummary(LibraryText* text, LibraryError*) {
    *text = any_text;
    return 0;
}
EXPORTED Status GetResult(LibraryText* text, std::int32_t*, LibraryError* error) { return GetSummary(text, error); }
EXPORTED Status GetParallelismRangeString(LibraryText* text, LibraryError* error) { return GetSummary(text, error); }
EXPORTED Status SetCredentials(const wchar_t*, const wchar_t*, const wchar_t*, LibraryError*) { return 0; }
EXPORTED Status SetHost(const wchar_t*, LibraryError*) { return 0; }
EXPORTED Status SetPort(std::int32_t, LibraryError*) { return 0; }
EXPORTED Status SetParallelism(std::int32_t, LibraryError*) { return 0; }
EXPORTED Status ExportTovakConfig(const wchar_t*, LibraryError*) { return 0; }
EXPORTED Status ExportRMANConfig(const wchar_t*, LibraryError*) { return 0; }
EXPORTED Status Cancel(LibraryError*) { return 0; }
EXPORTED Status Commit(LibraryError*) { return 0; }
EXPORTED void FreeString(wchar_t*) {}
EXPORTED void FreeArrayString() {}
EXPORTED void FreeRepositories(LibraryRecords, std::int32_t) {}
