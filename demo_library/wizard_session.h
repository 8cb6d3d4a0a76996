// One run of the wizard: values that wait for Commit, and its result.
#pragma once

#include <optional>
#include <string>

#include "demo_library/configuration.h"
#include "demo_library/scenario.h"

namespace demo_library {

class wizard_session_t {
public:
    // Starts again with the stored configuration. Drops the pending values and the result.
    void begin();

    // Throws error_t before begin() and after commit() and cancel().
    configuration_t& pending();

    // Replaces the whole stored configuration by the pending values, also what another process has changed since
    // begin(). Throws error_t when they are not complete or cannot be stored, and keeps them.
    void commit(const scenario_t& server);
    void cancel();

    // Both remember the path for the result. They throw error_t when the values are not complete or cannot be
    // written.
    void export_settings(const std::wstring& path, const scenario_t& server);
    void export_rman_script(const std::wstring& path, const scenario_t& server);

    std::wstring result() const;

private:
    std::optional<configuration_t> pending_;
    std::wstring exports_;
    std::wstring outcome_;
};

// The one session of this process.
wizard_session_t& wizard_session();

}  // namespace demo_library
