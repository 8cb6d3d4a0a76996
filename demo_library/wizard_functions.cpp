// The exported functions of wizard mode: changes are validated at once and wait for Commit.
#include "demo_library/answer.h"
#include "demo_library/failure.h"
#include "demo_library/ledger.h"
#include "demo_library/presentation.h"
#include "demo_library/rules.h"
#include "demo_library/wizard_session.h"

using namespace conf_tool;
using namespace demo_library;
using plug_common::SRepositoryCType;

namespace {

std::wstring path_argument(const wchar_t* path) {
    if (!path) throw failure_t(L"No path is given: the text is null.");
    return path;
}

}  // namespace

extern "C" {

Status InitializeWizard(LibraryError* error) {
    return answer(__func__, error, [](const scenario_t&) { wizard_session().begin(); });
}

// The domain comes first here, the user name in GetConfig.
Status SetCredentials(const wchar_t* domain, const wchar_t* user_name, const wchar_t* password, LibraryError* error) {
    return answer(__func__, error,
                  [&](const scenario_t&) { set_credentials(wizard_session().pending(), domain, user_name, password); });
}

Status SetHost(const wchar_t* host, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t&) { set_host(wizard_session().pending(), host); });
}

Status SetPort(std::int32_t port, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t&) { set_port(wizard_session().pending(), port); });
}

Status SetRepositories(const SRepositoryCType* records, std::int32_t count, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) {
        set_repositories(wizard_session().pending(), records, count, server, most_repositories_in(server));
    });
}

Status SetParallelism(std::int32_t parallelism, LibraryError* error) {
    return answer(__func__, error,
                  [&](const scenario_t& server) { set_parallelism(wizard_session().pending(), parallelism, server); });
}

Status GetParallelismRangeString(LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) { return_copy(parallelism_range(server), text); });
}

Status GetTBRRepositories(LibraryRecords* records, std::int32_t* count, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) { return_copy(server.repositories, records, count); });
}

Status GetSummary(LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t&) { return_copy(summary(wizard_session().pending()), text); });
}

Status GetScopeEdition(std::int32_t* edition, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) {
        require_out(edition);
        *edition = server.edition;
    });
}

Status GetResult(LibraryText* text, std::int32_t* code, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t&) {
        require_out(code);
        return_copy(wizard_session().result(), text);
        *code = 0;
    });
}

Status ExportTovakConfig(const wchar_t* path, LibraryError* error) {
    return answer(__func__, error,
                  [&](const scenario_t& server) { wizard_session().export_settings(path_argument(path), server); });
}

Status ExportRMANConfig(const wchar_t* path, LibraryError* error) {
    return answer(__func__, error,
                  [&](const scenario_t& server) { wizard_session().export_rman_script(path_argument(path), server); });
}

Status Commit(LibraryError* error) {
    return answer(__func__, error, [](const scenario_t& server) { wizard_session().commit(server); });
}

Status Cancel(LibraryError* error) {
    return answer(__func__, error, [](const scenario_t&) { wizard_session().cancel(); });
}

}  // extern "C"

static_assert(std::is_same_v<decltype(&SetCredentials), SetCredentialsFn>);
static_assert(std::is_same_v<decltype(&SetHost), SetHostFn>);
static_assert(std::is_same_v<decltype(&SetPort), SetPortFn>);
static_assert(std::is_same_v<decltype(&SetRepositories), SetRepositoriesFn>);
static_assert(std::is_same_v<decltype(&SetParallelism), SetParallelismFn>);
static_assert(std::is_same_v<decltype(&GetParallelismRangeString), GetTextFn>);
static_assert(std::is_same_v<decltype(&GetTBRRepositories), GetTBRRepositoriesFn>);
static_assert(std::is_same_v<decltype(&GetSummary), GetTextFn>);
static_assert(std::is_same_v<decltype(&GetScopeEdition), GetScopeEditionFn>);
static_assert(std::is_same_v<decltype(&GetResult), GetResultFn>);
static_assert(std::is_same_v<decltype(&ExportTovakConfig), ExportFn>);
static_assert(std::is_same_v<decltype(&ExportRMANConfig), ExportFn>);
static_assert(std::is_same_v<decltype(&InitializeWizard), PlainFn>);
static_assert(std::is_same_v<decltype(&Commit), PlainFn>);
static_assert(std::is_same_v<decltype(&Cancel), PlainFn>);
