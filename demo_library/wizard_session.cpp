#include "demo_library/wizard_session.h"

#include "demo_library/configuration.h"
#include "demo_library/error.h"
#include "demo_library/files.h"
#include "demo_library/presentation.h"
#include "demo_library/rules.h"

namespace demo_library {

void wizard_session_t::begin() {
    *this = wizard_session_t();
    pending_ = load_state();
}

configuration_t& wizard_session_t::pending() {
    if (!pending_) throw error_t(L"The wizard is not initialised: InitializeWizard must be called first.");
    return *pending_;
}

void wizard_session_t::commit(const scenario_t& server) {
    require_complete(pending(), server);
    change_state([&](configuration_t& stored) { stored = pending(); });
    pending_.reset();
    outcome_ = L"The demonstration library has applied the configuration and keeps it in " + state_path() + L".\r\n";
}

void wizard_session_t::cancel() {
    pending_.reset();
    outcome_ = L"The wizard was cancelled: the configuration of this host is unchanged.\r\n";
}

void wizard_session_t::export_settings(const std::wstring& path, const scenario_t& server) {
    require_complete(pending(), server);
    const std::wstring full = absolute_path(path);
    write_settings(full, pending());
    exports_ += L"The Tovak configuration was exported to " + full + L".\r\n";
}

void wizard_session_t::export_rman_script(const std::wstring& path, const scenario_t& server) {
    require_complete(pending(), server);
    const std::wstring full = absolute_path(path);
    write_rman_script(full, pending());
    exports_ += L"The RMAN configuration was exported to " + full + L".\r\n";
}

std::wstring wizard_session_t::result() const {
    return exports_ +
           (outcome_.empty() ? L"Nothing was applied: the configuration of this host is unchanged.\r\n" : outcome_);
}

wizard_session_t& wizard_session() {
    static wizard_session_t instance;
    return instance;
}

}  // namespace demo_library
