#include "common/logging/time_stamp.h"

#include <locale>
#include <sstream>

#include <boost/date_time/posix_time/posix_time.hpp>

#include "common/win32.h"

namespace logging {
namespace {

constexpr std::uint64_t units_per_second = 10'000'000;  // of a FILETIME

}  // namespace

std::string render_time_stamp(std::uint64_t seconds) noexcept try {
    const std::uint64_t units = seconds * units_per_second;
    const FILETIME time{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    SYSTEMTIME utc{}, local{};
    if (!FileTimeToSystemTime(&time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
        return "TIME ---";
    }
    std::ostringstream text;
    // The locale owns the facet.
    text.imbue(std::locale(std::locale::classic(), new boost::posix_time::time_facet("[%d.%m.%Y %H:%M:%S] ")));
    text << boost::posix_time::ptime(boost::gregorian::date(local.wYear, local.wMonth, local.wDay),
                                     boost::posix_time::time_duration(local.wHour, local.wMinute, local.wSecond));
    return text.str();
} catch (const std::exception&) {
    return "TIME ---";
}

// The tick count is a plain read of memory; the time can cost a system call, which is too much for each record.
line_head_t line_head_clock_t::now(std::uint32_t thread_id) noexcept {
    const std::uint64_t tick = GetTickCount64();
    if (tick != tick_) {
        tick_ = tick;
        FILETIME time{};
        GetSystemTimeAsFileTime(&time);
        const std::uint64_t units = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
        if (units / units_per_second != second_) {
            second_ = units / units_per_second;
            head_ = {render_time_stamp(second_), thread_id};
        }
    }
    if (thread_id != head_.thread_id()) head_ = {head_.time_stamp(), thread_id};
    return head_;
}

}  // namespace logging
