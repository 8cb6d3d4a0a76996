#include "conf_tool/lib_caller.h"

#include <boost/algorithm/string/replace.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/method_scope.h"
#include "common/platform/wipe.h"
#include "conf_tool/library_memory.h"
#include "conf_tool/log_component.h"

namespace conf_tool {
namespace {

std::string TakeErrorText(LibraryError error, FreeStringFn free_string, const std::wstring& secret) {
    const CLibraryText text(error, free_string);
    if (!text) return "Configuration library returned an unknown error";
    std::wstring shown = text.Get();
    const platform::wipe_at_exit_t wipe_shown(shown);
    boost::replace_all(shown, secret, L"***");
    return encoding::wide_to_utf8(shown);
}

void LogReceived(const RepositoryEntry& entry) {
    ormacon_tool.info(exc::format_message(
        "ConfigToolLibCaller received repo id=[%1] name=[%2] capacity=[%3] free_space=[%4] encryptionEnabled=[%5]",
        {encoding::wide_to_utf8(entry.id), encoding::wide_to_utf8(entry.name), SizeText(entry.capacity),
         SizeText(entry.free_space), entry.encryptionEnabled ? "1" : "0"}));
}

}  // namespace

// The frame of every call: log scope, error pointer, translation of a failure, and only then the results.
template <class Invoke, class TakeResults>
void CConfigToolLibCaller::Call(const char* name, const char* failure_name, Invoke invoke, TakeResults take_results,
                                const std::wstring& secret) {
    logging::method_scope_t scope(ormacon_tool, exc::format_message("Calling %1 function", name),
                                  exc::format_message("Failed to call %1 function", failure_name));
    LibraryError error = nullptr;
    if (invoke(&error) != 0) exc::raise(TakeErrorText(error, functions_.FreeString, secret));
    take_results();
    scope.succeed();
}

template <class Invoke, class TakeResults>
void CConfigToolLibCaller::Call(const char* name, Invoke invoke, TakeResults take_results) {
    Call(name, name, invoke, take_results);
}

template <class Invoke>
void CConfigToolLibCaller::Call(const char* name, Invoke invoke) {
    Call(name, name, invoke, [] {});
}

std::wstring CConfigToolLibCaller::CallForText(const char* name, GetTextFn function) {
    LibraryText text = nullptr;
    std::wstring result;
    Call(
        name, [&](LibraryError* error) { return function(&text, error); },
        [&] { result = CLibraryText(text, functions_.FreeString).Get(); });
    return result;
}

void CConfigToolLibCaller::InitializeWizard() { Call("InitializeWizard", functions_.InitializeWizard); }

void CConfigToolLibCaller::SetCredentials(const std::wstring& domain, const std::wstring& user_name,
                                          const std::wstring& password) {
    const auto invoke = [&](LibraryError* error) {
        return functions_.SetCredentials(domain.c_str(), user_name.c_str(), password.c_str(), error);
    };
    const auto take_nothing = [] {};
    Call("SetCredentials", "SetCredentials", invoke, take_nothing, password);
}

void CConfigToolLibCaller::SetHost(const std::wstring& host) {
    Call("SetHost", [&](LibraryError* error) { return functions_.SetHost(host.c_str(), error); });
}

void CConfigToolLibCaller::SetPort(int port) {
    Call("SetPort", [&](LibraryError* error) { return functions_.SetPort(port, error); });
}

void CConfigToolLibCaller::SetRepositories(const std::vector<RepositoryEntry>& repositories) {
    Call("SetRepositories", [&](LibraryError* error) {
        const auto records = ToLibraryRecords(repositories);
        return functions_.SetRepositories(records.empty() ? nullptr : records.data(),
                                          static_cast<std::int32_t>(records.size()), error);
    });
}

void CConfigToolLibCaller::SetParallelism(int parallelism) {
    Call("SetParallelism", [&](LibraryError* error) { return functions_.SetParallelism(parallelism, error); });
}

void CConfigToolLibCaller::GetConfig(ConfigurationSnapshot& into) {
    LibraryText user_name = nullptr;
    LibraryText domain = nullptr;
    LibraryText password = nullptr;
    LibraryText host = nullptr;
    LibraryRecords records = nullptr;
    std::int32_t count = 0;
    const auto invoke = [&](LibraryError* error) {
        return functions_.GetConfig(&user_name, &domain, &password, &host, &into.port, &into.parallelism, &records,
                                    &count, error);
    };
    const auto take_results = [&] {
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
    };
    // The spelling of this operation's failure line is fixed from outside.
    Call("GetConfig", "CallGetConfig", invoke, take_results);
}

void CConfigToolLibCaller::GetTBRRepositories(std::vector<RepositoryEntry>& into) {
    LibraryRecords records = nullptr;
    std::int32_t count = 0;
    const auto take_results = [&] {
        const CLibraryRepositories owned(records, count, functions_.FreeRepositories);
        ormacon_tool.info(exc::format_message("ConfigToolLibCaller received repos: size=[%1]", std::to_string(count)));
        const std::int32_t size = owned.Count();
        for (std::int32_t i = 0; i < size; ++i) {
            into.push_back(owned.Entry(i));
            LogReceived(into.back());
        }
    };
    Call(
        "GetTBRRepositories",
        [&](LibraryError* error) { return functions_.GetTBRRepositories(&records, &count, error); }, take_results);
}

std::wstring CConfigToolLibCaller::GetParallelismRangeString() {
    return CallForText("GetParallelismRangeString", functions_.GetParallelismRangeString);
}

std::wstring CConfigToolLibCaller::GetSummary() { return CallForText("GetSummary", functions_.GetSummary); }

std::wstring CConfigToolLibCaller::GetResult() {
    LibraryText text = nullptr;
    std::int32_t code = 0;
    std::wstring result;
    Call(
        "GetResult", [&](LibraryError* error) { return functions_.GetResult(&text, &code, error); },
        [&] { result = CLibraryText(text, functions_.FreeString).Get(); });
    return result;
}

MapBackupResult CConfigToolLibCaller::MapBackup() {
    MapBackupResult result;
    LibraryText text = nullptr;
    Call(
        "MapBackup", [&](LibraryError* error) { return functions_.MapBackup(&result.code, &text, error); },
        [&] { result.text = CLibraryText(text, functions_.FreeString).Get(); });
    return result;
}

int CConfigToolLibCaller::GetScopeEdition() {
    std::int32_t edition = 0;
    Call("GetScopeEdition", [&](LibraryError* error) { return functions_.GetScopeEdition(&edition, error); });
    return edition;
}

void CConfigToolLibCaller::ExportTovakConfig(const std::wstring& path) {
    Call("ExportTovakConfig", [&](LibraryError* error) { return functions_.ExportTovakConfig(path.c_str(), error); });
}

void CConfigToolLibCaller::ExportRMANConfig(const std::wstring& path) {
    Call("ExportRMANConfig", [&](LibraryError* error) { return functions_.ExportRMANConfig(path.c_str(), error); });
}

void CConfigToolLibCaller::Commit() { Call("Commit", functions_.Commit); }

void CConfigToolLibCaller::Cancel() { Call("Cancel", functions_.Cancel); }

void CConfigToolLibCaller::Uninstall() { Call("Uninstall", functions_.Uninstall); }

}  // namespace conf_tool
