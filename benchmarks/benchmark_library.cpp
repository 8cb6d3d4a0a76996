// A configuration library that answers at once, so that only the tool's own time is measured. The environment variable
// ORMACON_BENCHMARK_REPOSITORIES sets the number of repositories; every tenth of them is configured. The library stores
// nothing; its memory is static, so freeing it costs nothing.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "conf_tool/library_interface.h"
#include "common/win32.h"

using namespace conf_tool;
using plug_common::SRepositoryCType;

namespace {

wchar_t any_text[] = L"any";

class CRepositories {
public:
    explicit CRepositories(std::size_t count) : texts_(2 * count), records_(count) {
        for (std::size_t i = 0; i < count; ++i) {
            texts_[2 * i] = L"7b1e9c52-0d4f-4a6e-" + std::to_wstring(1000000 + i);
            texts_[2 * i + 1] = L"Repository " + std::to_wstring(i + 1);
            records_[i] = {texts_[2 * i].c_str(), texts_[2 * i + 1].c_str(), 2e13, 1e13, 0};
            offered.push_back(&records_[i]);
            if (i % 10 == 0) configured.push_back(&records_[i]);
        }
    }

    std::vector<SRepositoryCType*> offered;
    std::vector<SRepositoryCType*> configured;

private:
    std::vector<std::wstring> texts_;
    std::vector<SRepositoryCType> records_;
};

std::unique_ptr<CRepositories> repositories;

Status HandOut(std::vector<SRepositoryCType*>& chosen, LibraryRecords* records, std::int32_t* count) {
    *records = chosen.data();
    *count = static_cast<std::int32_t>(chosen.size());
    return 0;
}

}  // namespace

#define EXPORTED extern "C" __declspec(dllexport)

EXPORTED Status InitializeWizard(LibraryError*) {
    wchar_t count[16] = L"";
    GetEnvironmentVariableW(L"ORMACON_BENCHMARK_REPOSITORIES", count, 16);
    const auto wanted = static_cast<std::size_t>(std::wcstoul(count, nullptr, 10));
    if (!repositories || repositories->offered.size() != wanted) repositories = std::make_unique<CRepositories>(wanted);
    return 0;
}

EXPORTED Status GetConfig(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText* host,
                          std::int32_t* port, std::int32_t* parallelism, LibraryRecords* records, std::int32_t* count,
                          LibraryError*) {
    *user_name = *domain = *password = *host = any_text;
    *port = *parallelism = 1;
    return HandOut(repositories->configured, records, count);
}

EXPORTED Status GetTBRRepositories(LibraryRecords* records, std::int32_t* count, LibraryError*) {
    return HandOut(repositories->offered, records, count);
}

EXPORTED Status SetRepositories(const SRepositoryCType*, std::int32_t count, LibraryError*) {
    return static_cast<std::size_t>(count) == repositories->configured.size() ? 0 : 1;
}

EXPORTED Status GetScopeEdition(std::int32_t* edition, LibraryError*) {
    *edition = 2;
    return 0;
}

EXPORTED Status GetResult(LibraryText* text, std::int32_t* code, LibraryError*) {
    *text = any_text;
    *code = 0;
    return 0;
}

EXPORTED Status GetSummary(LibraryText* text, LibraryError*) {
    *text = any_text;
    return 0;
}

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
