// The one gateway to the configuration library.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"
#include "conf_tool/function_table.h"

namespace conf_tool {

// Used from the thread that created it. Each call operation logs "Calling <name> function", then the same with " ok."
// or "Failed to call <name> function". A failure that the library reports is raised as exc::runtime_exc_t with the
// library's error text as its whole message, or "Configuration library returned an unknown error". All memory of the
// library has gone back to it when an operation ends, however it ends.
class CConfigToolLibCaller {
public:
    // Loads OrmaconLib.dll and resolves every export of the mode. Raises exc::runtime_exc_t for an unknown mode and for
    // a missing export (the library then stays loaded), exc::win_sys_exc_t when the library cannot be loaded.
    explicit CConfigToolLibCaller(CallerMode mode);

    // Unloads unless Unload() did. A failure is raised as Unload() raises it, but only logged while another exception
    // is on its way.
    ~CConfigToolLibCaller() noexcept(false);

    CConfigToolLibCaller(const CConfigToolLibCaller&) = delete;
    CConfigToolLibCaller& operator=(const CConfigToolLibCaller&) = delete;

    // For an owner that wants to see the failure of unloading, exc::win_sys_exc_t. Nothing may be called after it; a
    // second time does nothing.
    void Unload();

    void InitializeWizard();
    void SetCredentials(const std::wstring& domain, const std::wstring& user_name, const std::wstring& password);
    void SetHost(const std::wstring& host);
    void SetPort(int port);
    void SetRepositories(const std::vector<RepositoryEntry>& repositories);
    void SetParallelism(int parallelism);

    // Repositories are appended. Port and parallelism are written by the library itself, also in a failing call.
    void GetConfig(ConfigurationSnapshot& into);

    // Appends.
    void GetTBRRepositories(std::vector<RepositoryEntry>& into);

    std::wstring GetParallelismRangeString();
    std::wstring GetSummary();
    std::wstring GetResult();
    MapBackupResult MapBackup();

    // 1 is Oracle Standard Edition.
    int GetScopeEdition();

    void ExportTovakConfig(const std::wstring& path);
    void ExportRMANConfig(const std::wstring& path);
    void Commit();
    void Cancel();
    void Uninstall();

private:
    void Load(CallerMode mode);
    void ResolveExports(CallerMode mode);

    template <class Invoke>
    void Call(const char* name, Invoke invoke);
    template <class Invoke, class TakeResults>
    void Call(const char* name, Invoke invoke, TakeResults take_results);
    template <class Invoke, class TakeResults>
    void Call(const char* name, const char* failure_name, Invoke invoke, TakeResults take_results);
    std::wstring CallForText(const char* name, GetTextFn function);

    FunctionTable functions_{};
    HMODULE module_ = nullptr;
    bool unloaded_ = false;
};

}  // namespace conf_tool
