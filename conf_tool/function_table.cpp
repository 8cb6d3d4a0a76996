#include "conf_tool/function_table.h"

#include <array>

namespace conf_tool {
namespace {

template <class Function>
void StoreIn(Function& slot, FARPROC function) {
    // Through the type that GCC accepts in place of any function type.
    slot = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(function));
}

template <auto Slot>
void Store(FunctionTable& table, FARPROC function) {
    StoreIn(table.*Slot, function);
}

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

}  // namespace

std::span<const RequiredExport> RequiredExports(CallerMode mode) {
    if (mode == CallerMode::Wizard) return wizard_exports;
    return direct_exports;
}

}  // namespace conf_tool
