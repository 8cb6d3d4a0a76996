// The crash handling of the process as the entry point sees it.
#pragma once

#include <string>

namespace crash {

// From here on a crash on any thread leaves a dump, as handle_crash() tells, and ends the process with the code of
// its exception. The dumps go to the folder "Dumps" within the given folder below the base log directory, beside the
// log. To be called by the main thread, which lives as long as the process, before anything else runs; later calls do
// nothing. Never raises, and does without what cannot be had.
void install(const std::wstring& log_folder) noexcept;

}  // namespace crash
