#pragma once

namespace app {

// Below the base log directory; holds the log and the crash dumps.
inline constexpr wchar_t log_folder[] = L"RmanPluginLogs";

// COM, the place of the common settings, the log with its header and separator line, the common settings: in this
// order. Raises exc::runtime_exc_t when COM or the log cannot be had; everything else falls back and is logged.
void InitializeApplication();

}  // namespace app
