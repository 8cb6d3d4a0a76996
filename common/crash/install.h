#pragma once

#include <string>

#include "common/logging/component.h"

namespace crash {

// From here on a crash on any thread leaves a dump (see handle_crash()) and ends the process with the code of its
// exception: a fault or system exception that nobody handles, std::terminate (also for a pure virtual call), abort, an
// invalid parameter of the C runtime, and heap corruption. No dialog window appears. The dumps go to the folder "Dumps"
// in the given folder below the base log directory, beside the log. Their names begin with the base name. What is
// done is logged on the component. Both must live as long as the process.
//
// Not covered, because no hook is called: a fast-fail (0xC0000409, also of a library's stack cookie or control-flow
// guard); std::terminate, abort and invalid parameters in the runtime of a library built with another compiler.
//
// Call it on the main thread, which lives as long as the process, before anything else runs; later calls do nothing.
// Waits until its two threads run, at most two seconds.
// Never throws: if the system refuses a part of this, the crash handling works without that part.
void install(const logging::component_t& component, const std::wstring& log_folder, const wchar_t* base_name) noexcept;

}  // namespace crash
