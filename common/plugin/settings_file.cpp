#include "common/plugin/settings_file.h"

#include <array>
#include <cstdio>
#include <memory>

#include <boost/filesystem.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/component.h"
#include "common/text/convert.h"

namespace plugin {
namespace {

using exc::format_message;
using logging::plugin_common;

// More than any settings need, and little enough to be read whole.
constexpr std::size_t largest_file = 1'048'576;

struct close_file_t {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

void require_settings_file(const std::wstring& path) {
    boost::system::error_code failure;
    if (!boost::filesystem::exists(path, failure)) exc::raise("Cannot find plug-in manager configuration file");
}

std::string read_text(const std::wstring& path) {
    const std::string name = text::wide_to_utf8(path);
    plugin_common.info(format_message("Loading xml file [%1]", name));
    const std::unique_ptr<std::FILE, close_file_t> file(_wfopen(path.c_str(), L"rb"));
    if (!file) exc::raise(format_message("Failed to open configuration file from path: %1", name));
    std::string content;
    std::array<char, 4096> chunk{};
    while (const std::size_t size = std::fread(chunk.data(), 1, chunk.size(), file.get())) {
        content.append(chunk.data(), size);
        if (content.size() > largest_file) exc::raise("The file is larger than 1 MiB.");
    }
    if (std::ferror(file.get())) exc::raise(format_message("Failed to load configuration file: %1", name));
    return content;
}

void log_unreadable(const std::wstring& path, const char* reason) {
    plugin_common.log(logging::level_warning,
                      format_message("Unable to load params from file [%1]. %2",
                                     {text::wide_to_utf8(path), reason == nullptr ? "Unknown error" : reason}));
}

}  // namespace

std::wstring find_settings_file(const std::wstring& directory) try {
    std::wstring path = (boost::filesystem::path(directory) / L"tovak_common_config.xml").wstring();
    require_settings_file(path);
    return path;
} catch (const std::exception& failure) {
    exc::rethrow_with_context(failure, "Failed to read plug-in manager configuration file");
}

common_settings_t read_settings_file(const std::wstring& path) {
    try {
        return parse_settings(read_text(path));
    } catch (const std::exception& failure) {
        log_unreadable(path, failure.what());
    }
    return {};
}

}  // namespace plugin
