// Asks where an export goes.
#pragma once

#include <string>

#include <boost/filesystem/path.hpp>

namespace wizard {

// Asks for the path of a file, which may be in quotes; an empty answer means the default. If the user agrees, removes
// an existing file; otherwise asks for the path again. Throws exc::runtime_exc_t if the path is a folder's, and
// exc::win_sys_exc_t if the file cannot be removed.
boost::filesystem::path AskOutputPath(const std::wstring& prompt, const boost::filesystem::path& default_path);

}  // namespace wizard
