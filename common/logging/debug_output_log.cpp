#include "common/logging/debug_output_log.h"

#include "common/platform/owned.h"
#include "common/text/convert.h"

namespace logging::receiver {
namespace {

// Where the system hands debugger output to a monitoring program, which creates it.
bool monitor_runs() {
    return static_cast<bool>(platform::unique_handle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, L"DBWIN_BUFFER")));
}

}  // namespace

// OutputDebugStringW raises and handles a structured exception, which costs more than writing the line to the file.
bool COutputDebugStringLog::somebody_listens() {
    constexpr std::uint64_t look_every = 1000;
    const std::uint64_t now = GetTickCount64();
    if (looked_at_ == 0 || now - looked_at_ >= look_every) {
        looked_at_ = now;
        somebody_listens_ = IsDebuggerPresent() || monitor_runs();
    }
    return somebody_listens_;
}

void COutputDebugStringLog::write(std::string_view time_stamp, std::uint32_t thread_id, const record_t& record) {
    if (somebody_listens()) sink_t::write(time_stamp, thread_id, record);
}

void COutputDebugStringLog::write_line(const line_t& line) {
    text_.clear();
    append_short_line(text_, line);
    text_ += '\n';
    OutputDebugStringW(text::utf8_to_wide(text_).c_str());
}

}  // namespace logging::receiver
