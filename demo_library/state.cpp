#include "demo_library/state.h"

#include "demo_library/failure.h"
#include "demo_library/files.h"
#include "demo_library/paths.h"
#include "demo_library/repository_xml.h"
#include "demo_library/text.h"
#include "demo_library/xml.h"

namespace demo_library {
namespace {

constexpr char root_name[] = "OrmaconDemoState";

const TiXmlElement& child(const TiXmlElement& root, const char* name) {
    const TiXmlElement* element = root.FirstChildElement(name);
    if (!element) throw failure_t(L"there is no element " + to_wide(name));
    return *element;
}

configuration_t parse(const TiXmlElement& root) {
    configuration_t result;
    const TiXmlElement& server = child(root, "Server");
    result.host = xml::text(server, "host").value_or(L"");
    result.port = xml::number(server, "port", 0);
    const TiXmlElement& account = child(root, "Account");
    result.domain = xml::text(account, "domain").value_or(L"");
    result.user_name = xml::text(account, "userName").value_or(L"");
    result.protected_password = to_utf8(xml::text(account, "protectedPassword").value_or(L""));
    result.repositories = read_repositories(child(root, "Repositories"));
    result.parallelism = xml::number(child(root, "Channels"), "parallelism", 1);
    return result;
}

configuration_t read(const std::wstring& path) {
    configuration_t result;
    xml::read(path, root_name, [&](const TiXmlElement& root) { result = parse(root); });
    return result;
}

void write(const std::wstring& path, const configuration_t& configuration) {
    TiXmlDocument document;
    TiXmlElement& root = xml::start(document, root_name);
    TiXmlElement& account = write_configuration(root, configuration);
    xml::set(account, "protectedPassword", to_wide(configuration.protected_password));
    xml::write(path, document, readers_t::administrators);
}

handle_t lock(const std::wstring& path, lock_end_t end = lock_end_t::keep_file) {
    return lock_file(path + L".lock", end);
}

}  // namespace

std::wstring state_path() {
    const std::wstring named = environment_text(L"ORMACON_DEMO_STATE");
    return named.empty() ? library_folder() + L"\\OrmaconDemoState.xml" : absolute_path(named);
}

configuration_t load_state() {
    const std::wstring path = state_path();
    if (!exists(path)) return {};      // reading an unconfigured host creates no lock file
    const handle_t held = lock(path);  // the file cannot be replaced while it is open for reading
    return read(path);
}

void change_state(const std::function<void(configuration_t&)>& change) {
    const std::wstring path = state_path();
    create_folders(folder_of(path));
    const handle_t held = lock(path);
    configuration_t configuration = read(path);
    change(configuration);
    write(path, configuration);
}

void remove_state() {
    const std::wstring path = state_path();
    if (!exists(folder_of(path))) return;
    const handle_t held = lock(path, lock_end_t::remove_file);
    remove_temporary_files(path);
    remove_file(path);
}

}  // namespace demo_library
