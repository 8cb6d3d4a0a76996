// Where an exported file goes.
#pragma once

#include <string>

#include <boost/filesystem/path.hpp>

namespace wizard {

// Asks for the path of a file, the default on an empty answer. An existing file is removed when the user agrees; else
// the path is asked for again. Raises exc::runtime_exc_t "Cannot replace [%1]: it is a folder" or exc::win_sys_exc_t
// "Cannot replace [%1]" when it cannot be removed.
boost::filesystem::path AskOutputPath(const std::wstring& prompt, const boost::filesystem::path& default_path);

}  // namespace wizard
