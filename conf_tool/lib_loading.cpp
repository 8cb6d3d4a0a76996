// Loading, resolving and unloading. The calls are in lib_caller.cpp.
#include "conf_tool/lib_caller.h"

#include <exception>
#include <utility>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/logging/method_scope.h"
#include "common/platform/module.h"
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
    ResolveExports(mode);
    scope.succeed();
}

void CConfigToolLibCaller::ResolveExports(CallerMode mode) {
    for (const RequiredExport& required : RequiredExports(mode)) {
        const FARPROC function = GetProcAddress(module_, required.name);
        required.store(functions_, function);
        if (function == nullptr) {
            exc::raise(exc::format_message("Cannot find function [%1] in the configuration library.", required.name));
        }
    }
}

void CConfigToolLibCaller::Unload() {
    if (std::exchange(unloaded_, true)) return;
    logging::method_scope_t scope(ormacon_tool, "Unloading configuration library");
    if (module_ != nullptr && !FreeLibrary(module_)) {
        exc::raise_win_error(GetLastError(), "Failed to unload configuration library");
    }
    scope.succeed();
}

}  // namespace conf_tool
