// What is done between a crash and the end of the process.
#pragma once

#include <string>

#include "common/crash/dump_gen_base.h"

namespace crash {

// Sets what the handling logs on, and how the names of the dumps begin. Both must live as long as the process.
void set_names(const logging::component_t& component, const wchar_t* base_name) noexcept;

// Sets the folder of the dumps, which need not exist yet. Without a folder, or with an empty path, a crash leaves no
// dump. Any thread may call it. Throws what platform::program_path() throws.
void set_dump_folder(const std::wstring& folder);

// Runs the registered handlers, removes old dumps, and writes one dump: out of process, else a minidump from within,
// else a text report. Each step is logged, and every failure; none stops the rest. Finally one line about the crash
// goes to the standard error.
//
// This is done in stages, each of which is entered once in the life of the process: the thread that runs a stage and
// crashes in it (see die()) calls again and continues with the next one. The caller ends the process.
void handle_crash(const cause_t& cause) noexcept;

}  // namespace crash
