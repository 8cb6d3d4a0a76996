#include "common/logging/logger.h"

#include <iostream>
#include <mutex>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/header_block.h"
#include "common/logging/log_exception.h"
#include "common/logging/log_file_set.h"
#include "common/logging/open_log.h"
#include "common/logging/process_logger.h"
#include "common/logging/stdout_log_file.h"
#include "common/platform/path.h"
#include "common/text/convert.h"
#include "common/win32.h"

namespace logging {
namespace {

// What is attached to the process's logger while the log is open.
struct attached_t {
    boost::shared_ptr<receiver::log_file_t> file;
    boost::shared_ptr<receiver::sink_t> echo;
};

// The mutex is held for nothing but the exchange: a sink may ask for the log's path under the logger's lock. Never
// destroyed, as the logger.
struct present_log_t {
    std::mutex mutex;
    attached_t attached;
};

present_log_t& present_log() {
    static auto* const log = new present_log_t;
    return *log;
}

attached_t exchange_attached(attached_t next) {
    present_log_t& log = present_log();
    const std::lock_guard guard(log.mutex);
    return std::exchange(log.attached, std::move(next));
}

struct close_at_exit_t {
    ~close_at_exit_t() { close_log(); }
};
// Constructed before all objects without a priority of their own, destroyed after them.
[[gnu::init_priority(101)]] close_at_exit_t close_at_exit;

boost::shared_ptr<receiver::sink_t> attach_echo(const component_t& component) try {
    auto echo = boost::make_shared<receiver::stdout_log_file_t>();
    process_logger().attach(echo);
    return echo;
} catch (const std::exception& cause) {
    log_exception(component, "Error: Failed to initialize stdout log.", cause);
    return {};
}

void attach(const component_t& component, const log_options_t& options) {
    const std::string header = header_block();
    platform::create_directories(platform::parent_of(options.path));
    attached_t next;
    next.file = log_file_set_t::numbered(options.path)
                    .open(options.limits, [&component](std::string_view sentence, const std::exception& cause) {
                        log_exception(component, sentence, cause);
                    });
    process_logger().attach(next.file);
    if (options.switches.echo) next.echo = attach_echo(component);
    exchange_attached(std::move(next));
    if (options.switches.verbose) {
        process_logger().set_lowest_level(level_detail);
        process_logger().multiplex(std::cout);
    }
    component.info(header);
}

}  // namespace

void open_log(const component_t& component, const log_options_t& options) {
    close_log();
    try {
        attach(component, options);
    } catch (const std::exception& cause) {
        close_log();
        exc::rethrow_with_context(
            cause, exc::format_message("Failed to initialize log [%1].", text::wide_to_utf8(options.path)));
    }
}

void close_log() noexcept {
    logger_t& logger = process_logger();
    logger.clear_multiplexors();
    const attached_t last = exchange_attached({});
    logger.detach(last.echo);
    logger.detach(last.file);
    logger.set_lowest_level(level_info);
}

void initialise(const component_t& component, const std::wstring& folder, const std::wstring& file_name) try {
    open_log(component, {.path = log_folder_path(folder) + L"\\" + file_name,
                         .limits = process_size_limits(),
                         .switches = find_switches(GetCommandLineW())});
} catch (const std::exception& cause) {
    exc::rethrow_with_context(cause, "Cannot init logging");
}

std::wstring log_path() {
    present_log_t& log = present_log();
    const std::lock_guard guard(log.mutex);
    const auto& file = log.attached.file;
    if (!file) exc::raise("Value of the log path is unavailable: log is not initialized yet.");
    return file->path();
}

}  // namespace logging
