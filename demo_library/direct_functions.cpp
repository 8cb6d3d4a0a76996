// The exported functions of direct mode: each change is validated and stored at once.
#include "demo_library/answer.h"
#include "demo_library/failure.h"
#include "demo_library/ledger.h"
#include "demo_library/rules.h"
#include "demo_library/state.h"

using namespace conf_tool;
using namespace demo_library;
using plug_common::SRepositoryCType;

namespace {

// Calls change(configuration, server) with the stored configuration, and saves it.
template <class Change>
Status answer_with_change(const char* function, LibraryError* error, Change change) {
    return answer(function, error, [&](const scenario_t& server) {
        change_state([&](configuration_t& configuration) { change(configuration, server); });
    });
}

}  // namespace

extern "C" {

Status SetCredentialsDirect(const wchar_t* domain, const wchar_t* user_name, const wchar_t* password,
                            LibraryError* error) {
    return answer_with_change(__func__, error, [&](configuration_t& configuration, const scenario_t&) {
        set_credentials(configuration, domain, user_name, password);
    });
}

Status SetHostDirect(const wchar_t* host, LibraryError* error) {
    return answer_with_change(
        __func__, error, [&](configuration_t& configuration, const scenario_t&) { set_host(configuration, host); });
}

Status SetPortDirect(std::int32_t port, LibraryError* error) {
    return answer_with_change(
        __func__, error, [&](configuration_t& configuration, const scenario_t&) { set_port(configuration, port); });
}

Status SetRepositoriesDirect(const SRepositoryCType* records, std::int32_t count, LibraryError* error) {
    return answer_with_change(__func__, error, [&](configuration_t& configuration, const scenario_t& server) {
        set_repositories(configuration, records, count, server, most_repositories);
    });
}

Status SetParallelismDirect(std::int32_t parallelism, LibraryError* error) {
    return answer_with_change(__func__, error, [&](configuration_t& configuration, const scenario_t& server) {
        set_parallelism(configuration, parallelism, server);
    });
}

Status GetTBRRepositoriesDirect(LibraryRecords* records, std::int32_t* count, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) { return_copy(server.repositories, records, count); });
}

Status MapBackupDirect(std::int32_t* result_code, LibraryText* text, LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t& server) {
        require_out(result_code);
        return_copy(server.map_text, text);
        *result_code = server.map_code;
    });
}

Status UninstallDirect(LibraryError* error) {
    return answer(__func__, error, [](const scenario_t&) { remove_state(); });
}

}  // extern "C"

static_assert(std::is_same_v<decltype(&SetCredentialsDirect), SetCredentialsFn>);
static_assert(std::is_same_v<decltype(&SetHostDirect), SetHostFn>);
static_assert(std::is_same_v<decltype(&SetPortDirect), SetPortFn>);
static_assert(std::is_same_v<decltype(&SetRepositoriesDirect), SetRepositoriesFn>);
static_assert(std::is_same_v<decltype(&SetParallelismDirect), SetParallelismFn>);
static_assert(std::is_same_v<decltype(&GetTBRRepositoriesDirect), GetTBRRepositoriesFn>);
static_assert(std::is_same_v<decltype(&MapBackupDirect), MapBackupFn>);
static_assert(std::is_same_v<decltype(&UninstallDirect), PlainFn>);
