// The functions of the configuration library that each mode needs.
#pragma once

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

// Resolves the exports of the mode, which must be one of the two, in a fixed order. Throws exc::runtime_exc_t that
// names the first one that the library lacks.
FunctionTable ResolveExports(HMODULE library, CallerMode mode);

}  // namespace conf_tool
