#include "common/logging/time_stamp.h"

#include <locale>
#include <sstream>
#include <utility>

#include <boost/date_time/posix_time/posix_time.hpp>

#include "common/win32.h"

namespace logging {
namespace {

constexpr std::uint64_t units_per_second = 10'000'000;  // of a FILETIME
const time_stamp_t unknown("TIME ---");

}  // namespace

time_stamp_t render_time_stamp(std::uint64_t seconds) noexcept try {
    const std::uint64_t units = seconds * units_per_second;
    const FILETIME time{static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    SYSTEMTIME utc{}, local{};
    if (!FileTimeToSystemTime(&time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
        return unknown;
    }
    std::ostringstream text;
    // The locale owns the facet.
    text.imbue(std::locale(std::locale::classic(), new boost::posix_time::time_facet("[%d.%m.%Y %H:%M:%S] ")));
    text << boost::posix_time::ptime(boost::gregorian::date(local.wYear, local.wMonth, local.wDay),
                                     boost::posix_time::time_duration(local.wHour, local.wMinute, local.wSecond));
    return time_stamp_t(text.str());
} catch (const std::exception&) {
    return unknown;
}

// The tick count is a plain read of memory; the time can cost a system call, which is too much for each record.
time_stamp_t time_stamp_clock_t::now() noexcept {
    const std::uint64_t tick = GetTickCount64();
    if (std::exchange(tick_, tick) == tick) return time_stamp_;
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    const std::uint64_t units = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    const std::uint64_t second = units / units_per_second;
    if (std::exchange(second_, second) != second) time_stamp_ = render_time_stamp(second);
    return time_stamp_;
}

}  // namespace logging
