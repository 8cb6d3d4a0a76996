#include "common/crash/recorder_exit_text.h"

#include "common/crash/recorder/exit_codes.h"

namespace crash {
namespace {

struct entry_t {
    std::uint32_t code;
    std::string_view text;
};

constexpr entry_t entries[] = {
    {recorder_success, "success"},
    {recorder_unspecified_failure, "unspecified failure"},
    {recorder_bad_argument_count, "invalid count of arguments"},
    {recorder_bad_arguments, "invalid arguments"},
    {recorder_no_folder, "cannot create dump folder"},
    {recorder_old_dumps_stay, "cannot delete old dumps"},
    {recorder_bad_dump_name, "invalid dump name"},
    {recorder_no_dump_file, "cannot create dump file"},
    {recorder_no_dump_content, "cannot write dump content"},
    {recorder_no_ntdll, "NTDLL is not loaded"},
    {recorder_no_memset, "memset is not exported from NTDLL"},
    {recorder_no_vsnwprintf, "_vsnwprintf is not exported from NTDLL"},
};

}  // namespace

std::string_view recorder_exit_text(std::uint32_t code) noexcept {
    for (const entry_t& entry : entries) {
        if (entry.code == code) return entry.text;
    }
    return "unexpected exit code";
}

}  // namespace crash
