#include "common/logging/open_log.h"

#include <iostream>
#include <utility>

#include <boost/make_shared.hpp>

#include "common/encoding/convert.h"
#include "common/exc/format_message.h"
#include "common/exc/raise.h"
#include "common/logging/log_exception.h"
#include "common/logging/log_file.h"
#include "common/logging/logger.h"
#include "common/logging/output_sinks.h"
#include "common/platform/file_trust.h"
#include "common/platform/module.h"
#include "common/platform/path.h"
#include "common/platform/versions.h"

namespace logging {
namespace {

// What is attached to the process's logger while the log is open. Never destroyed, like the logger.
struct attached_t {
    boost::shared_ptr<log_file_set_t> file;  // exchanged atomically: any thread may ask for the log's path
    boost::shared_ptr<receiver::sink_t> echo;
};

attached_t& attached() {
    static auto* const created = new attached_t;
    return *created;
}

struct close_at_exit_t {
    ~close_at_exit_t() { close_log(); }
};
// Constructed before all objects without a priority of their own, destroyed after them.
[[gnu::init_priority(101)]] close_at_exit_t close_at_exit;

constexpr const char* foreign_folder = "Folder [%1] belongs to another account, which can replace what is in it.";

// Program, version, process and system, between separator lines.
std::string header_block() {
    const std::wstring program = platform::program_path();
    const platform::version_resource_t version = platform::read_version_resource(program);
    return exc::format_message(
        "%1\n"
        "Path to the executable module: %2\n"
        "Module version: %3\n"
        "Comments: %4\n"
        "Process Id: %5\n"
        "OS version: %6\n"
        "%1",
        {std::string(77, '='), encoding::wide_to_utf8(program), version.file_version, version.comments,
         std::to_string(GetCurrentProcessId()), platform::os_version_text()});
}

void attach_echo(const component_t& component) try {
    attached().echo = boost::make_shared<receiver::stdout_log_file_t>();
    process_logger().attach(attached().echo);
} catch (const std::exception& cause) {
    log_exception(component, "Error: Failed to initialize stdout log.", cause);
}

void attach(const component_t& component, const log_options_t& options) {
    const std::string header = header_block();
    const std::wstring folder = platform::parent_of(options.path);
    platform::create_trusted_folder(folder);
    const auto file = boost::make_shared<log_file_set_t>(log_file_set_t::numbered(options.path), options.limits);
    process_logger().attach(file);
    boost::atomic_store(&attached().file, file);
    if (options.switches.echo) attach_echo(component);
    if (options.switches.verbose) {
        process_logger().set_lowest_level(level_detail);
        process_logger().multiplex(std::cout);
    }
    component.info(header);
    for (const std::wstring& foreign : platform::foreign_folders(options.shared_folder, folder))
        component.log(level_warning, exc::format_message(foreign_folder, encoding::wide_to_utf8(foreign)));
}

[[noreturn]] void rethrow_unopened(const std::exception& cause, const std::wstring& path) {
    exc::rethrow_with_context(cause,
                              exc::format_message("Failed to initialize log [%1].", encoding::wide_to_utf8(path)));
}

log_options_t options_of_process(const std::wstring& folder, const std::wstring& file_name) try {
    return {.path = platform::join_path(log_folder_path(folder), file_name),
            .limits = process_size_limits(),
            .switches = find_switches(GetCommandLineW()),
            .shared_folder = platform::expand_variables(L"%ProgramData%")};
} catch (const std::exception& cause) {
    rethrow_unopened(cause, platform::join_path(folder, file_name));
}

}  // namespace

void initialise(const component_t& component, const std::wstring& folder, const std::wstring& file_name) try {
    open_log(component, options_of_process(folder, file_name));
} catch (const std::exception& cause) {
    exc::rethrow_with_context(cause, "Cannot init logging");
}

std::wstring log_path() {
    if (const auto file = boost::atomic_load(&attached().file)) return file->path();
    exc::raise("Value of the log path is unavailable: log is not initialized yet.");
}

void open_log(const component_t& component, const log_options_t& options) {
    close_log();
    try {
        attach(component, options);
    } catch (const std::exception& cause) {
        close_log();
        rethrow_unopened(cause, options.path);
    }
}

void close_log() noexcept {
    logger_t& logger = process_logger();
    logger.clear_multiplexors();
    logger.detach(std::exchange(attached().echo, {}));
    logger.detach(boost::atomic_exchange(&attached().file, {}));
    logger.set_lowest_level(level_info);
}

}  // namespace logging
