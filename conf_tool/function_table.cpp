#include "conf_tool/function_table.h"

#include <array>
#include <span>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace conf_tool {
namespace {

template <auto Slot>
void Store(FunctionTable& table, FARPROC function) {
    using slot_t = std::remove_reference_t<decltype(table.*Slot)>;
    // Through the type that GCC accepts in place of any function type.
    table.*Slot = reinterpret_cast<slot_t>(reinterpret_cast<void (*)()>(function));
}

struct RequiredExport {
    const char* name;
    void (*store)(FunctionTable& table, FARPROC function);
};

using T = FunctionTable;

constexpr std::array wizard_exports{
    RequiredExport{"SetCredentials", Store<&T::SetCredentials>},
    RequiredExport{"SetHost", Store<&T::SetHost>},
    RequiredExport{"SetPort", Store<&T::SetPort>},
    RequiredExport{"SetRepositories", Store<&T::SetRepositories>},
    RequiredExport{"GetConfig", Store<&T::GetConfig>},
    RequiredExport{"GetTBRRepositories", Store<&T::GetTBRRepositories>},
    RequiredExport{"GetSummary", Store<&T::GetSummary>},
    RequiredExport{"InitializeWizard", Store<&T::InitializeWizard>},
    RequiredExport{"SetParallelism", Store<&T::SetParallelism>},
    RequiredExport{"GetParallelismRangeString", Store<&T::GetParallelismRangeString>},
    RequiredExport{"GetScopeEdition", Store<&T::GetScopeEdition>},
    RequiredExport{"GetResult", Store<&T::GetResult>},
    RequiredExport{"ExportTovakConfig", Store<&T::ExportTovakConfig>},
    RequiredExport{"ExportRMANConfig", Store<&T::ExportRMANConfig>},
    RequiredExport{"Cancel", Store<&T::Cancel>},
    RequiredExport{"Commit", Store<&T::Commit>},
    RequiredExport{"FreeString", Store<&T::FreeString>},
    RequiredExport{"FreeArrayString", Store<&T::FreeArrayString>},
    RequiredExport{"FreeRepositories", Store<&T::FreeRepositories>},
};

constexpr std::array direct_exports{
    RequiredExport{"SetHostDirect", Store<&T::SetHost>},
    RequiredExport{"SetPortDirect", Store<&T::SetPort>},
    RequiredExport{"SetCredentialsDirect", Store<&T::SetCredentials>},
    RequiredExport{"SetRepositoriesDirect", Store<&T::SetRepositories>},
    RequiredExport{"SetParallelismDirect", Store<&T::SetParallelism>},
    RequiredExport{"GetTBRRepositoriesDirect", Store<&T::GetTBRRepositories>},
    RequiredExport{"MapBackupDirect", Store<&T::MapBackup>},
    RequiredExport{"GetConfig", Store<&T::GetConfig>},
    RequiredExport{"UninstallDirect", Store<&T::Uninstall>},
    RequiredExport{"FreeString", Store<&T::FreeString>},
    RequiredExport{"FreeArrayString", Store<&T::FreeArrayString>},
    RequiredExport{"FreeRepositories", Store<&T::FreeRepositories>},
};

std::span<const RequiredExport> RequiredExports(CallerMode mode) {
    if (mode == CallerMode::Wizard) return wizard_exports;
    return direct_exports;
}

}  // namespace

FunctionTable ResolveExports(HMODULE library, CallerMode mode) {
    FunctionTable table{};
    for (const RequiredExport& required : RequiredExports(mode)) {
        const FARPROC function = GetProcAddress(library, required.name);
        required.store(table, function);
        if (function == nullptr) {
            exc::raise(exc::format_message("Cannot find function [%1] in the configuration library.", required.name));
        }
    }
    return table;
}

}  // namespace conf_tool
