#include "demo_library/state.h"

#include "demo_library/failure.h"
#include "demo_library/files.h"
#include "demo_library/protection.h"
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
    result.password = unprotect(to_utf8(xml::text(account, "protectedPassword").value_or(L"")));
    result.repositories = read_repositories(child(root, "Repositories"));
    result.parallelism = xml::number(child(root, "Channels"), "parallelism", 1);
    return result;
}

}  // namespace

std::wstring state_path() {
    const std::wstring named = environment_text(L"ORMACON_DEMO_STATE");
    return named.empty() ? library_folder() + L"\\OrmaconDemoState.xml" : absolute_path(named);
}

configuration_t load_state() {
    configuration_t result;
    xml::read(state_path(), root_name, [&](const TiXmlElement& root) { result = parse(root); });
    return result;
}

void save_state(const configuration_t& configuration) {
    TiXmlDocument document;
    TiXmlElement& root = xml::start(document, root_name);
    TiXmlElement& account = write_configuration(root, configuration);
    xml::set(account, "protectedPassword", to_wide(protect(configuration.password)));
    xml::write(state_path(), document, readers_t::administrators);
}

void remove_state() { remove_file(state_path()); }

}  // namespace demo_library
