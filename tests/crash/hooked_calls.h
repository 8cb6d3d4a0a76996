// Calls of the system that a test can replace for a while: whatever this program calls goes through them.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "common/win32.h"

namespace hooked {

// May change the path. An error code makes the call fail.
inline std::function<DWORD(std::wstring& path, DWORD disposition)> create_file;
inline DWORD write_file_failure = 0;
inline DWORD duplicate_handle_failure = 0;
inline std::optional<HMODULE> loaded_library;  // null: ERROR_MOD_NOT_FOUND

// This program exports what the crash handling calls in the debug-help library: a writer that fails with
// ERROR_READ_FAULT, and a symbol engine that remembers its search path.
inline std::wstring symbol_search_path;

}  // namespace hooked
