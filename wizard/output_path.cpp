#include "wizard/output_path.h"

#include <boost/filesystem.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "wizard/answers.h"
#include "wizard/console.h"

namespace wizard {
namespace {

namespace fs = boost::filesystem;

bool IsTaken(const fs::path& path) {
    boost::system::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    return !failure && fs::exists(status);
}

bool AgreesToReplace(const fs::path& path) {
    PrintToConsole(FormatPrompt("%1 already exists. Do you want to replace it? (yes/no): ", {path.wstring()}));
    const std::wstring answer = ToLowerText(ReadFromConsole());
    return answer == L"yes" || answer == L"y";
}

// "Copy as path" in the Explorer puts quotes around it. No file's name contains one.
std::wstring WithoutQuotes(const std::wstring& path) {
    const bool quoted = path.size() > 2 && path.front() == L'"' && path.back() == L'"';
    return quoted ? path.substr(1, path.size() - 2) : path;
}

// A path like "D:name" is relative to that drive's own current folder, which only the system knows.
fs::path ToAbsolute(const fs::path& path) {
    return path.has_root_name() && !path.is_absolute() ? fs::system_complete(path) : fs::absolute(path);
}

void RemoveExisting(const fs::path& path) {
    boost::system::error_code failure;
    // remove() would delete an empty folder.
    if (fs::is_directory(path, failure)) {
        exc::raise(exc::format_message("Cannot replace [%1]: it is a folder", encoding::wide_to_utf8(path.wstring())));
    }
    fs::remove(path, failure);
    if (failure) {
        exc::raise_path_error(static_cast<std::uint32_t>(failure.value()), "Cannot replace [%1]", path.native());
    }
}

}  // namespace

fs::path AskOutputPath(const std::wstring& prompt, const fs::path& default_path) {
    for (;;) {
        fs::path path = WithoutQuotes(Ask(prompt, default_path.wstring()));
        if (!IsTaken(path)) return path;
        fs::path existing = ToAbsolute(path);
        if (!AgreesToReplace(existing)) continue;
        RemoveExisting(existing);
        return existing;
    }
}

}  // namespace wizard
