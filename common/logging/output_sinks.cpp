#include "common/logging/output_sinks.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "common/encoding/convert.h"
#include "common/exc/raise.h"
#include "common/platform/console.h"
#include "common/platform/owned.h"
#include "common/platform/trusted_owner.h"

namespace logging::receiver {
namespace {

// At most this long, once a second, a monitor or the holder of its mutex can delay this program: what the system's own
// function does waits without a limit.
constexpr DWORD timeout = 10;  // milliseconds

bool wait_for(HANDLE object) {
    const DWORD outcome = WaitForSingleObject(object, timeout);
    return outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
}

// A program that monitors debugger output offers a section for one text at a time: the writer's process id, then the
// text in the code page of the system.
platform::unique_handle open_trusted_section() {
    platform::unique_handle section(OpenFileMappingW(FILE_MAP_WRITE | READ_CONTROL, FALSE, L"DBWIN_BUFFER"));
    if (section && !platform::has_trusted_owner(section.get())) section.reset();
    return section;
}

bool write_section(HANDLE section, std::string_view text) {
    constexpr std::size_t section_size = 4096;
    const DWORD process = GetCurrentProcessId();
    auto* const view = static_cast<char*>(MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, section_size));
    if (view == nullptr) return false;
    std::memcpy(view, &process, sizeof process);
    view[sizeof process + text.copy(view + sizeof process, section_size - sizeof process - 1)] = '\0';
    return UnmapViewOfFile(view) != FALSE;
}

// Returns whether the monitor has got the text.
bool pass_to_monitor(std::string_view text) {
    const platform::unique_handle section = open_trusted_section();
    const platform::unique_handle mutex(OpenMutexW(SYNCHRONIZE, FALSE, L"DBWinMutex"));  // made by the first writer
    const platform::unique_handle ready(OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_BUFFER_READY"));
    const platform::unique_handle written(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"DBWIN_DATA_READY"));
    if (!section || !ready || !written || (mutex && !wait_for(mutex.get()))) return false;
    const bool done = wait_for(ready.get()) && write_section(section.get(), text) && SetEvent(written.get());
    if (mutex) ReleaseMutex(mutex.get());
    return done;
}

}  // namespace

void COutputDebugStringLog::write(const line_head_t& head, const record_t& record) {
    const std::uint64_t second = GetTickCount64() / 1000;
    if (std::exchange(looked_at_, second) != second) monitored_ = static_cast<bool>(open_trusted_section());
    if (monitored_ || IsDebuggerPresent()) sink_t::write(head, record);
}

void COutputDebugStringLog::write_line(const line_t& line) {
    text_.clear();
    append_short_line(text_, line);
    const std::wstring text = encoding::utf8_to_wide(text_ += '\n');
    if (IsDebuggerPresent()) {
        OutputDebugStringW(text.c_str());
    } else if (monitored_) {
        monitored_ = pass_to_monitor(encoding::wide_to_ansi(text));
    }
}

stdout_log_file_t::stdout_log_file_t() : output_(GetStdHandle(STD_OUTPUT_HANDLE)) {
    if (output_ == nullptr || output_ == INVALID_HANDLE_VALUE) exc::raise("Standard output is not available.");
}

void stdout_log_file_t::write(const line_head_t& head, const record_t& record) {
    lines_.clear();
    sink_t::write(head, record);
    std::fflush(stdout);  // what was printed before the record comes first
    platform::print(output_, lines_);
}

void stdout_log_file_t::write_line(const line_t& line) {
    append_console_line(lines_, line);
    lines_ += "\r\n";
}

}  // namespace logging::receiver
