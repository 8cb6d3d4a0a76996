#include "demo_library/repository_xml.h"

namespace demo_library {

void write_repository(TiXmlElement& element, const repository_t& repository) {
    if (repository.id) xml::set(element, "id", *repository.id);
    if (repository.name) xml::set(element, "name", *repository.name);
    xml::set(element, "capacity", repository.capacity);
    xml::set(element, "freeSpace", repository.free_space);
    xml::set(element, "encryption", repository.encrypted ? 1 : 0);
}

repository_t read_repository(const TiXmlElement& element) {
    return {xml::text(element, "id"), xml::text(element, "name"), xml::real(element, "capacity", 0),
            xml::real(element, "freeSpace", 0), xml::number(element, "encryption", 0) != 0};
}

std::vector<repository_t> read_repositories(const TiXmlElement& parent) {
    std::vector<repository_t> repositories;
    for (const TiXmlElement* element = parent.FirstChildElement("Repository"); element;
         element = element->NextSiblingElement("Repository"))
        repositories.push_back(read_repository(*element));
    return repositories;
}

TiXmlElement& write_configuration(TiXmlElement& root, const configuration_t& configuration) {
    TiXmlElement& server = xml::add(root, "Server");
    xml::set(server, "host", configuration.host);
    xml::set(server, "port", configuration.port);
    TiXmlElement& account = xml::add(root, "Account");
    xml::set(account, "domain", configuration.domain);
    xml::set(account, "userName", configuration.user_name);
    TiXmlElement& repositories = xml::add(root, "Repositories");
    for (const repository_t& repository : configuration.repositories)
        write_repository(xml::add(repositories, "Repository"), repository);
    xml::set(xml::add(root, "Channels"), "parallelism", configuration.parallelism);
    return account;
}

}  // namespace demo_library
