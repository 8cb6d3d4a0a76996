#pragma once

#include <string>

namespace crash {

// "%_NT_SYMBOL_PATH%;%_NT_ALT_SYMBOL_PATH%;%SystemRoot%\Symbols" with the variables' values, without the places that
// are not on this computer: symbol servers ("srv*...") and network folders. A process that is about to end does not
// wait for them.
std::wstring symbol_search_path();

}  // namespace crash
