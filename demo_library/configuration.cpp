#include "demo_library/configuration.h"

#include "demo_library/error.h"
#include "demo_library/text.h"

namespace demo_library {
namespace {

constexpr char root_name[] = "OrmaconDemoState";

const TiXmlElement& child(const TiXmlElement& root, const char* name) {
    const TiXmlElement* element = root.FirstChildElement(name);
    if (!element) throw error_t(L"there is no element " + to_wide(name));
    return *element;
}

void write_repository(TiXmlElement& element, const repository_t& repository) {
    if (repository.id) set_attribute(element, "id", *repository.id);
    if (repository.name) set_attribute(element, "name", *repository.name);
    set_attribute(element, "capacity", repository.capacity);
    set_attribute(element, "freeSpace", repository.free_space);
    set_attribute(element, "encryption", repository.encrypted ? 1 : 0);
}

repository_t read_repository(const TiXmlElement& element) {
    return {text_attribute(element, "id"), text_attribute(element, "name"), real_attribute(element, "capacity", 0),
            real_attribute(element, "freeSpace", 0), number_attribute(element, "encryption", 0) != 0};
}

configuration_t read(const std::wstring& path) {
    configuration_t result;
    read_xml_file(path, root_name, [&](const TiXmlElement& root) {
        const TiXmlElement& server = child(root, "Server");
        result.host = text_attribute(server, "host").value_or(L"");
        result.port = number_attribute(server, "port", 0);
        const TiXmlElement& account = child(root, "Account");
        result.domain = text_attribute(account, "domain").value_or(L"");
        result.user_name = text_attribute(account, "userName").value_or(L"");
        result.protected_password = to_utf8(text_attribute(account, "protectedPassword").value_or(L""));
        result.repositories = read_repositories(child(root, "Repositories"));
        result.parallelism = number_attribute(child(root, "Channels"), "parallelism", 1);
    });
    return result;
}

void write(const std::wstring& path, const configuration_t& configuration) {
    TiXmlDocument document;
    TiXmlElement& root = start_document(document, root_name);
    TiXmlElement& account = write_configuration(root, configuration);
    set_attribute(account, "protectedPassword", to_wide(configuration.protected_password));
    write_xml_file(path, document, readers_t::administrators);
}

handle_t lock(const std::wstring& path, lock_end_t end = lock_end_t::keep_file) {
    return lock_file(path + L".lock", end);
}

}  // namespace

std::vector<repository_t> read_repositories(const TiXmlElement& parent) {
    std::vector<repository_t> repositories;
    for (const TiXmlElement* element = parent.FirstChildElement("Repository"); element;
         element = element->NextSiblingElement("Repository"))
        repositories.push_back(read_repository(*element));
    return repositories;
}

TiXmlElement& write_configuration(TiXmlElement& root, const configuration_t& configuration) {
    TiXmlElement& server = add_element(root, "Server");
    set_attribute(server, "host", configuration.host);
    set_attribute(server, "port", configuration.port);
    TiXmlElement& account = add_element(root, "Account");
    set_attribute(account, "domain", configuration.domain);
    set_attribute(account, "userName", configuration.user_name);
    TiXmlElement& repositories = add_element(root, "Repositories");
    for (const repository_t& repository : configuration.repositories)
        write_repository(add_element(repositories, "Repository"), repository);
    set_attribute(add_element(root, "Channels"), "parallelism", configuration.parallelism);
    return account;
}

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
