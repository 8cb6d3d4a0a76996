// The exported functions that both modes of the tool use.
#include <memory>

#include "demo_library/answer.h"
#include "demo_library/failure.h"
#include "demo_library/ledger.h"
#include "demo_library/protection.h"
#include "demo_library/state.h"

using namespace conf_tool;
using namespace demo_library;

namespace {

// Releases a text that was not returned, because a later step failed.
struct release_t {
    void operator()(wchar_t* text) const noexcept { release(text); }
};

std::unique_ptr<wchar_t, release_t> outgoing(std::wstring_view text) {
    return std::unique_ptr<wchar_t, release_t>(allocate(text));
}

}  // namespace

extern "C" {

// The user name comes first here, the domain in SetCredentials.
Status GetConfig(LibraryText* user_name, LibraryText* domain, LibraryText* password, LibraryText* host,
                 std::int32_t* port, std::int32_t* parallelism, LibraryRecords* records, std::int32_t* count,
                 LibraryError* error) {
    return answer(__func__, error, [&](const scenario_t&) {
        for (const void* out :
             std::initializer_list<const void*>{user_name, domain, password, host, port, parallelism, records, count})
            require_out(out);
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

}  // extern "C"

static_assert(std::is_same_v<decltype(&GetConfig), GetConfigFn>);
static_assert(std::is_same_v<decltype(&FreeString), FreeStringFn>);
static_assert(std::is_same_v<decltype(&FreeRepositories), FreeRepositoriesFn>);
static_assert(std::is_same_v<decltype(&FreeArrayString), FreeArrayStringFn>);
