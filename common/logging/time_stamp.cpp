#include "common/logging/time_stamp.h"

#include <locale>
#include <sstream>

#include <boost/date_time/posix_time/posix_time.hpp>

#include "common/win32.h"

namespace logging {
namespace {

constexpr std::uint64_t units_per_second = 10'000'000;
constexpr std::uint64_t seconds_1601_to_1970 = 11'644'473'600;

// In units of 100 ns since 1601.
std::uint64_t system_time() {
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

}  // namespace

std::string render_time_stamp(std::time_t time) noexcept try {
    std::tm local{};
    if (localtime_s(&local, &time) != 0) return "TIME ---";
    std::ostringstream text;
    // The locale owns the facet.
    text.imbue(std::locale(std::locale::classic(), new boost::posix_time::time_facet("[%d.%m.%Y %H:%M:%S] ")));
    text << boost::posix_time::ptime_from_tm(local);
    return text.str();
} catch (const std::exception&) {
    return "TIME ---";
}

// The tick count is a plain read of memory; the time can cost a call of the system, which a record has no time for.
std::string_view time_stamp_clock_t::now() noexcept {
    if (const std::uint64_t tick = GetTickCount64(); tick != tick_ || text_.empty()) {
        tick_ = tick;
        look_at_time();
    }
    return text_;
}

void time_stamp_clock_t::look_at_time() noexcept {
    const std::uint64_t time = system_time();
    // A clock that was set back gives a difference beyond every second.
    if (time - second_begin_ < units_per_second && !text_.empty()) return;
    second_begin_ = time - time % units_per_second;
    text_ = render_time_stamp(static_cast<std::time_t>(time / units_per_second - seconds_1601_to_1970));
}

}  // namespace logging
