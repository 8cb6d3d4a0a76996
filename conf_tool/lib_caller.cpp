#include "conf_tool/lib_caller.h"

#include <exception>
#include <string_view>
#include <utility>

#include <boost/algorithm/string/replace.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/logging/method_scope.h"
#include "common/platform/module.h"
#include "common/platform/wipe.h"
#include "conf_tool/library_memory.h"
#include "conf_tool/log_component.h"

namespace conf_tool {
namespace {

const char* LoadingText(CallerMode mode) {
    switch (mode) {
        case CallerMode::Wizard:
            return "Loading configuration library in wizard mode";
        case CallerMode::Direct:
            return "Loading configuration library in direct mode";
    }
    exc::raise("Failed to load configuration library: incorrect caller mode");
}

// The frame of every call: log scope, error text, translation of a failure. The call has failed unless Succeed() ends
// it, after the results have been taken.
class CCall {
public:
    CCall(const char* name, FunctionTable& functions) : CCall(name, name, functions) {}
    CCall(const char* name, const char* failure_name, FunctionTable& functions)
        : scope_(ormacon_tool, exc::format_message("Calling %1 function", name),
                 exc::format_message("Failed to call %1 function", failure_name)),
          functions_(functions) {}

    // What a failure's text must not show.
    void Conceal(const std::wstring& secret) { secret_ = secret; }

    template <class Function, class... Arguments>
    void Invoke(Function function, Arguments... arguments) const {
        LibraryError error = nullptr;
        if (function(arguments..., &error) != 0) exc::raise(TakeErrorText(error));
    }

    std::wstring Take(LibraryText text) const { return CLibraryText(text, functions_.FreeString).Get(); }

    void Succeed() { scope_.succeed(); }

private:
    std::string TakeErrorText(LibraryError error) const {
        const CLibraryText text(error, functions_.FreeString);
        if (!text) return "Configuration library returned an unknown error";
        std::wstring shown = text.Get();
        const platform::wipe_at_exit_t wipe_shown(shown);
        boost::replace_all(shown, secret_, L"***");
        return encoding::wide_to_utf8(shown);
    }

    logging::method_scope_t scope_;
    FunctionTable& functions_;
    std::wstring_view secret_;
};

void LogReceived(const RepositoryEntry& entry) {
    ormacon_tool.info(exc::format_message(
        "ConfigToolLibCaller received repo id=[%1] name=[%2] capacity=[%3] free_space=[%4] encryptionEnabled=[%5]",
        {encoding::wide_to_utf8(entry.id), encoding::wide_to_utf8(entry.name), SizeText(entry.capacity),
         SizeText(entry.free_space), entry.encryptionEnabled ? "1" : "0"}));
}

}  // namespace

CConfigToolLibCaller::CConfigToolLibCaller(CallerMode mode) { Load(mode); }

CConfigToolLibCaller::~CConfigToolLibCaller() noexcept(false) {
    if (std::uncaught_exceptions() == 0) {
        Unload();
        return;
    }
    try {
        Unload();
    } catch (const std::exception& failure) {
        logging::log_exception(ormacon_tool, failure);
    }
}

void CConfigToolLibCaller::Load(CallerMode mode) {
    logging::method_scope_t scope(ormacon_tool, LoadingText(mode));
    module_ = LoadLibraryW(L"OrmaconLib.dll");
    if (module_ == nullptr) exc::raise_win_error(GetLastError(), "Failed to load configuration library");
    ormacon_tool.log(
        logging::level_detail,
        exc::format_message("Configuration library: [%1]", encoding::wide_to_utf8(platform::module_path(module_))));
    functions_ = ResolveExports(module_, mode);
    scope.succeed();
}

void CConfigToolLibCaller::Unload() {
    if (module_ == nullptr) return;
    logging::method_scope_t scope(ormacon_tool, "Unloading configuration library");
    if (!FreeLibrary(std::exchange(module_, nullptr))) {
        exc::raise_win_error(GetLastError(), "Failed to unload configuration library");
    }
    scope.succeed();
}

template <class Function, class... Arguments>
void CConfigToolLibCaller::Call(const char* name, Function function, Arguments... arguments) {
    CCall call(name, functions_);
    call.Invoke(function, arguments...);
    call.Succeed();
}

template <class Function, class... Arguments>
std::wstring CConfigToolLibCaller::CallForText(const char* name, Function function, Arguments... further) {
    CCall call(name, functions_);
    LibraryText text = nullptr;
    call.Invoke(function, &text, further...);
    std::wstring result = call.Take(text);
    call.Succeed();
    return result;
}

void CConfigToolLibCaller::InitializeWizard() { Call("InitializeWizard", functions_.InitializeWizard); }

void CConfigToolLibCaller::SetCredentials(const std::wstring& domain, const std::wstring& user_name,
                                          const std::wstring& password) {
    CCall call("SetCredentials", functions_);
    call.Conceal(password);
    call.Invoke(functions_.SetCredentials, domain.c_str(), user_name.c_str(), password.c_str());
    call.Succeed();
}

void CConfigToolLibCaller::SetHost(const std::wstring& host) { Call("SetHost", functions_.SetHost, host.c_str()); }

void CConfigToolLibCaller::SetPort(int port) { Call("SetPort", functions_.SetPort, port); }

void CConfigToolLibCaller::SetRepositories(const std::vector<RepositoryEntry>& repositories) {
    CCall call("SetRepositories", functions_);
    const auto records = ToLibraryRecords(repositories);
    call.Invoke(functions_.SetRepositories, records.empty() ? nullptr : records.data(),
                static_cast<std::int32_t>(records.size()));
    call.Succeed();
}

void CConfigToolLibCaller::SetParallelism(int parallelism) {
    Call("SetParallelism", functions_.SetParallelism, parallelism);
}

void CConfigToolLibCaller::GetConfig(ConfigurationSnapshot& into) {
    // The spelling of this operation's failure line is fixed from outside.
    CCall call("GetConfig", "CallGetConfig", functions_);
    LibraryText user_name = nullptr;
    LibraryText domain = nullptr;
    LibraryText password = nullptr;
    LibraryText host = nullptr;
    LibraryRecords records = nullptr;
    std::int32_t count = 0;
    call.Invoke(functions_.GetConfig, &user_name, &domain, &password, &host, &into.port, &into.parallelism, &records,
                &count);
    const CLibraryText owned_user_name(user_name, functions_.FreeString);
    const CLibraryText owned_domain(domain, functions_.FreeString);
    const CLibraryText owned_password(password, functions_.FreeString);
    const CLibraryText owned_host(host, functions_.FreeString);
    const CLibraryRepositories owned_repositories(records, count, functions_.FreeRepositories);
    into.user_name = owned_user_name.Get();
    into.domain = owned_domain.Get();
    into.password = owned_password.Get();
    into.host = owned_host.Get();
    const std::int32_t size = owned_repositories.Count();
    for (std::int32_t i = 0; i < size; ++i) into.repositories.push_back(owned_repositories.Entry(i));
    call.Succeed();
}

void CConfigToolLibCaller::GetTBRRepositories(std::vector<RepositoryEntry>& into) {
    CCall call("GetTBRRepositories", functions_);
    LibraryRecords records = nullptr;
    std::int32_t count = 0;
    call.Invoke(functions_.GetTBRRepositories, &records, &count);
    const CLibraryRepositories owned(records, count, functions_.FreeRepositories);
    ormacon_tool.info(exc::format_message("ConfigToolLibCaller received repos: size=[%1]", std::to_string(count)));
    const std::int32_t size = owned.Count();
    for (std::int32_t i = 0; i < size; ++i) {
        into.push_back(owned.Entry(i));
        LogReceived(into.back());
    }
    call.Succeed();
}

std::wstring CConfigToolLibCaller::GetParallelismRangeString() {
    return CallForText("GetParallelismRangeString", functions_.GetParallelismRangeString);
}

std::wstring CConfigToolLibCaller::GetSummary() { return CallForText("GetSummary", functions_.GetSummary); }

std::wstring CConfigToolLibCaller::GetResult() {
    std::int32_t code = 0;
    return CallForText("GetResult", functions_.GetResult, &code);
}

MapBackupResult CConfigToolLibCaller::MapBackup() {
    CCall call("MapBackup", functions_);
    MapBackupResult result;
    LibraryText text = nullptr;
    call.Invoke(functions_.MapBackup, &result.code, &text);
    result.text = call.Take(text);
    call.Succeed();
    return result;
}

Edition CConfigToolLibCaller::GetScopeEdition() {
    std::int32_t edition = 0;
    Call("GetScopeEdition", functions_.GetScopeEdition, &edition);
    return Edition{edition} == Edition::Standard ? Edition::Standard : Edition::Unlimited;
}

void CConfigToolLibCaller::ExportTovakConfig(const std::wstring& path) {
    Call("ExportTovakConfig", functions_.ExportTovakConfig, path.c_str());
}

void CConfigToolLibCaller::ExportRMANConfig(const std::wstring& path) {
    Call("ExportRMANConfig", functions_.ExportRMANConfig, path.c_str());
}

void CConfigToolLibCaller::Commit() { Call("Commit", functions_.Commit); }

void CConfigToolLibCaller::Cancel() { Call("Cancel", functions_.Cancel); }

void CConfigToolLibCaller::Uninstall() { Call("Uninstall", functions_.Uninstall); }

}  // namespace conf_tool
