// The run of a wizard: values that wait for Commit, and what has become of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "demo_library/configuration.h"
#include "demo_library/scenario.h"

namespace demo_library {

class wizard_session_t {
public:
    // Begins anew with the stored configuration. What was pending is dropped, what GetResult tells is forgotten.
    void begin();

    // Raises failure_t before begin() and after commit() and cancel().
    configuration_t& pending();

    // Stores the pending values. Raises failure_t when they are not complete or cannot be stored; they stay then.
    void commit(const scenario_t& server);
    void cancel();

    // Remembers the path for the result.
    void export_settings(const std::wstring& path, const scenario_t& server);
    void export_rman_script(const std::wstring& path, const scenario_t& server);

    std::wstring result() const;

private:
    std::optional<configuration_t> pending_;
    std::vector<std::wstring> exported_;
    std::wstring outcome_;
};

// The one of this process.
wizard_session_t& wizard_session();

}  // namespace demo_library
