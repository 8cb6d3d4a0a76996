// The exported functions, in the order of OrmaconLib.def.
#include <memory>

#include "demo_library/answer.h"
#include "demo_library/configuration.h"
#include "demo_library/error.h"
#include "demo_library/ledger.h"
#include "demo_library/password.h"
#include "demo_library/presentation.h"
#include "demo_library/rules.h"
#include "demo_library/wizard_session.h"

using namespace conf_tool;
using namespace demo_library;
using plug_common::SRepositoryCType;

namespace {

// Releases a text that was not returned, because a later step failed.
struct release_t {
    void operator()(wchar_t* text) const noexcept { release(text); }
};

std::unique_ptr<wchar_t, release_t> outgoing(std::wstring_view text) {
    return std::unique_ptr<wchar_t, release_t>(allocate(text));
}

std::wstring path_argument(const wchar_t* path) {
    if (!path) throw error_t(L"No path is given: the text is null.");
    return path;
}

// Calls change(values, server) with the values that wait for Commit.
template <class Change>
Status change_pending(const char* function, LibraryError* error, Change change) {
    return answer(function, error, [&](auto& server) { change(wizard_session().pending(), server); });
}

// Calls change(values, server) with the stored configuration, and saves it.
template <class Change>
Status change_stored(const char* function, LibraryError* error, Change change) {
    return answer(function, error,
                  [&](auto& server) { change_state([&](configuration_t& values) { change(values, server); }); });
}

template <class Type, auto... Functions>
constexpr bool have_type = (std::is_same_v<decltype(Functions), Type> && ...);

}  // namespace

extern "C" {

// For both modes.

// The user name comes first here, the domain in SetCredentials.
Status GetConfig(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText* host,
                 std::int32_t* port, std::int32_t* parallelism, LibraryRecords* records, std::int32_t* count,
                 LibraryError* error) {
    return answer(__func__, error, [&](auto&) {
        require_out({user_name, domain, password, host, port, parallelism, records, count});
        const configuration_t configuration = load_state();
        auto out_user_name = outgoing(configuration.user_name);
        auto out_domain = outgoing(configuration.domain);
        auto out_password = outgoing(unprotect(configuration.protected_password).view());
        auto out_host = outgoing(configuration.host);
        *records = allocate(configuration.repositories);  // the last step that can fail
        *count = static_cast<std::int32_t>(configuration.repositories.size());
        *user_name = out_user_name.release();
        *domain = out_domain.release();
        *password = out_password.release();
        *host = out_host.release();
        *port = configuration.port;
        *parallelism = configuration.parallelism;
    });
}

void FreeString(wchar_t* text) {
    count_call(__func__);
    release(text);
}

void FreeRepositories(LibraryRecords records, std::int32_t count) {
    count_call(__func__);
    release(records, count);
}

// Required by the tool, but there is nothing to free: no function returns an array of texts.
void FreeArrayString() { count_call(__func__); }

// For wizard mode: changes are validated at once and wait for Commit.

Status InitializeWizard(LibraryError* error) {
    return answer(__func__, error, [](auto&) { wizard_session().begin(); });
}

// The domain comes first here, the user name in GetConfig.
Status SetCredentials(const wchar_t* domain, const wchar_t* user_name, const wchar_t* password, LibraryError* error) {
    return change_pending(__func__, error,
                          [&](auto& values, auto&) { set_credentials(values, domain, user_name, password); });
}

Status SetHost(const wchar_t* host, LibraryError* error) {
    return change_pending(__func__, error, [&](auto& values, auto&) { set_host(values, host); });
}

Status SetPort(std::int32_t port, LibraryError* error) {
    return change_pending(__func__, error, [&](auto& values, auto&) { set_port(values, port); });
}

Status SetRepositories(const SRepositoryCType* records, std::int32_t count, LibraryError* error) {
    return change_pending(__func__, error, [&](auto& values, auto& server) {
        set_repositories(values, records, count, server, max_repositories_in(server));
    });
}

Status SetParallelism(std::int32_t parallelism, LibraryError* error) {
    return change_pending(__func__, error,
                          [&](auto& values, auto& server) { set_parallelism(values, parallelism, server); });
}

Status GetParallelismRangeString(LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](auto& server) { return_copy(parallelism_range(server), text); });
}

Status GetTBRRepositories(LibraryRecords* records, std::int32_t* count, LibraryError* error) {
    return answer(__func__, error, [&](auto& server) { return_copy(server.repositories, records, count); });
}

Status GetSummary(LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](auto&) { return_copy(summary(wizard_session().pending()), text); });
}

Status GetScopeEdition(std::int32_t* edition, LibraryError* error) {
    return answer(__func__, error, [&](const auto& server) {
        require_out({edition});
        *edition = server.edition;
    });
}

Status GetResult(LibraryText* text, std::int32_t* code, LibraryError* error) {
    return answer(__func__, error, [&](auto&) {
        require_out({code});
        return_copy(wizard_session().result(), text);
        *code = 0;
    });
}

Status ExportTovakConfig(const wchar_t* path, LibraryError* error) {
    return answer(__func__, error,
                  [&](auto& server) { wizard_session().export_settings(path_argument(path), server); });
}

Status ExportRMANConfig(const wchar_t* path, LibraryError* error) {
    return answer(__func__, error,
                  [&](auto& server) { wizard_session().export_rman_script(path_argument(path), server); });
}

Status Commit(LibraryError* error) {
    return answer(__func__, error, [](auto& server) { wizard_session().commit(server); });
}

Status Cancel(LibraryError* error) {
    return answer(__func__, error, [](auto&) { wizard_session().cancel(); });
}

// For direct mode: each change is validated and stored at once.

Status SetCredentialsDirect(const wchar_t* domain, const wchar_t* user_name, const wchar_t* password,
                            LibraryError* error) {
    return change_stored(__func__, error,
                         [&](auto& values, auto&) { set_credentials(values, domain, user_name, password); });
}

Status SetHostDirect(const wchar_t* host, LibraryError* error) {
    return change_stored(__func__, error, [&](auto& values, auto&) { set_host(values, host); });
}

Status SetPortDirect(std::int32_t port, LibraryError* error) {
    return change_stored(__func__, error, [&](auto& values, auto&) { set_port(values, port); });
}

Status SetRepositoriesDirect(const SRepositoryCType* records, std::int32_t count, LibraryError* error) {
    return change_stored(__func__, error, [&](auto& values, auto& server) {
        set_repositories(values, records, count, server, max_repositories);
    });
}

Status SetParallelismDirect(std::int32_t parallelism, LibraryError* error) {
    return change_stored(__func__, error,
                         [&](auto& values, auto& server) { set_parallelism(values, parallelism, server); });
}

Status GetTBRRepositoriesDirect(LibraryRecords* records, std::int32_t* count, LibraryError* error) {
    return answer(__func__, error, [&](auto& server) { return_copy(server.repositories, records, count); });
}

Status MapBackupDirect(std::int32_t* result_code, LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](auto& server) {
        require_out({result_code});
        return_copy(server.map_text, text);
        *result_code = server.map_code;
    });
}

Status UninstallDirect(LibraryError* error) {
    return answer(__func__, error, [](auto&) { remove_state(); });
}

}  // extern "C"

static_assert(have_type<GetConfigFn, GetConfig>);
static_assert(have_type<FreeStringFn, FreeString>);
static_assert(have_type<FreeArrayStringFn, FreeArrayString>);
static_assert(have_type<FreeRepositoriesFn, FreeRepositories>);
static_assert(have_type<SetCredentialsFn, SetCredentials, SetCredentialsDirect>);
static_assert(have_type<SetHostFn, SetHost, SetHostDirect>);
static_assert(have_type<SetPortFn, SetPort, SetPortDirect>);
static_assert(have_type<SetRepositoriesFn, SetRepositories, SetRepositoriesDirect>);
static_assert(have_type<SetParallelismFn, SetParallelism, SetParallelismDirect>);
static_assert(have_type<GetTBRRepositoriesFn, GetTBRRepositories, GetTBRRepositoriesDirect>);
static_assert(have_type<GetTextFn, GetParallelismRangeString, GetSummary>);
static_assert(have_type<GetScopeEditionFn, GetScopeEdition>);
static_assert(have_type<GetResultFn, GetResult>);
static_assert(have_type<ExportFn, ExportTovakConfig, ExportRMANConfig>);
static_assert(have_type<MapBackupFn, MapBackupDirect>);
static_assert(have_type<PlainFn, InitializeWizard, Cancel, Commit, UninstallDirect>);
