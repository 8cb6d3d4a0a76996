// The only gateway to the configuration library.
#pragma once

#include <string>
#include <vector>

#include "conf_tool/configuration.h"
#include "conf_tool/function_table.h"

namespace conf_tool {

// Use it only from the thread that created it. Each call operation blocks until the library returns, and logs its
// beginning and its end. If the library fails, it throws exc::runtime_exc_t with the library's error text, which shows
// no password of this call, or a text of its own if there is none or the results break the library's contract.
//
// When an operation ends, what a successful call returned and the error text of a failed one have gone back to the
// library, except an array with an impossible count: nobody knows its size. Other results of a failed call stay as they
// are.
class CConfigToolLibCaller {
public:
    // Loads OrmaconLib.dll and resolves every export of the mode. Throws exc::runtime_exc_t for an unknown mode or a
    // missing export (the library then stays loaded), exc::win_sys_exc_t if the library cannot be loaded.
    explicit CConfigToolLibCaller(CallerMode mode);

    // Unloads, unless Unload() did. Throws what Unload() throws, but only logs it while another exception is being
    // handled.
    ~CConfigToolLibCaller() noexcept(false);

    CConfigToolLibCaller(const CConfigToolLibCaller&) = delete;
    CConfigToolLibCaller& operator=(const CConfigToolLibCaller&) = delete;

    // Unloads the library. Throws exc::win_sys_exc_t if that fails. Call no other operation afterwards; a second call
    // does nothing.
    void Unload();

    void InitializeWizard();
    void SetCredentials(const std::wstring& domain, const std::wstring& user_name, const std::wstring& password);
    void SetHost(const std::wstring& host);
    void SetPort(int port);
    void SetRepositories(const std::vector<RepositoryEntry>& repositories);
    void SetParallelism(int parallelism);

    // Appends the repositories. The library itself writes port and parallelism, even in a failing call.
    void GetConfig(ConfigurationSnapshot& into);

    // Appends.
    void GetTBRRepositories(std::vector<RepositoryEntry>& into);

    std::wstring GetParallelismRangeString();
    std::wstring GetSummary();
    std::wstring GetResult();
    MapBackupResult MapBackup();
    Edition GetScopeEdition();
    void ExportTovakConfig(const std::wstring& path);
    void ExportRMANConfig(const std::wstring& path);
    void Commit();
    void Cancel();
    void Uninstall();

private:
    void Load(CallerMode mode);

    template <class Function, class... Arguments>
    void Call(const char* name, Function function, Arguments... arguments);
    template <class Function, class... Arguments>
    std::wstring CallForText(const char* name, Function function, Arguments... further);

    FunctionTable functions_{};
    HMODULE module_ = nullptr;  // null after Unload()
};

}  // namespace conf_tool
