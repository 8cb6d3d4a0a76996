#pragma once

namespace app {

// The folder of the log and the crash dumps, below the base log directory.
inline constexpr wchar_t log_folder[] = L"RmanPluginLogs";

// Call it before anything is loaded or opened. Takes the current folder out of the search for libraries, and asks
// Windows not to follow junctions that somebody other than an administrator has made, where it can do that. Logs the
// results. Keeps all that is logged from now on for the log.
void HardenProcess();

// Initialises COM, then finds the common settings, opens the log with its header and separator line, and loads the
// common settings. Logs again what was kept for the log. Throws exc::runtime_exc_t if COM fails, and what
// logging::initialise() throws; any other failure is logged and replaced by defaults.
void InitializeApplication();

}  // namespace app
