// The functions of the configuration library that each mode needs, as data.
#pragma once

#include <span>

#include "conf_tool/library_interface.h"
#include "common/win32.h"

namespace conf_tool {

enum class CallerMode : int {
    Wizard = 0,  // settings are pending until Commit
    Direct = 1,  // each call takes effect at once
};

// A wizard-mode export and its direct-mode counterpart share a slot; the mode decides which of them fills it. Slots
// that a mode does not have stay null and are never called in it.
struct FunctionTable {
    PlainFn InitializeWizard;
    SetCredentialsFn SetCredentials;
    SetHostFn SetHost;
    SetPortFn SetPort;
    SetRepositoriesFn SetRepositories;
    SetParallelismFn SetParallelism;
    GetTextFn GetParallelismRangeString;
    GetConfigFn GetConfig;
    GetTBRRepositoriesFn GetTBRRepositories;
    GetTextFn GetSummary;
    GetScopeEditionFn GetScopeEdition;
    GetResultFn GetResult;
    MapBackupFn MapBackup;
    ExportFn ExportTovakConfig;
    ExportFn ExportRMANConfig;
    PlainFn Cancel;
    PlainFn Commit;
    PlainFn Uninstall;
    FreeStringFn FreeString;
    FreeArrayStringFn FreeArrayString;
    FreeRepositoriesFn FreeRepositories;
};

struct RequiredExport {
    const char* name;
    void (*store)(FunctionTable& table, FARPROC function);
};

// Returns them in the order in which they are resolved. The mode must be one of the two.
std::span<const RequiredExport> RequiredExports(CallerMode mode);

}  // namespace conf_tool
