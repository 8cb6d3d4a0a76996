#include "demo_library/rules.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <winsock2.h>
#include <windows.h>
#include <ws2tcpip.h>

#include "demo_library/error.h"
#include "demo_library/password.h"
#include "demo_library/xml.h"

namespace demo_library {
namespace {

// Returns the argument, which must be a text on one line.
std::wstring line(const wchar_t* text, const std::wstring& what) {
    if (!text) throw error_t(L"No " + what + L" is given: the text is null.");
    std::wstring result = text;
    const bool has_control = std::any_of(result.begin(), result.end(), [](wchar_t c) { return c < L' '; });
    if (has_control || !xml_can_hold(result))
        throw error_t(L"The " + what + L" is not allowed: it contains a character that cannot be stored.");
    return result;
}

bool is_address(int family, const std::wstring& text) {
    IN6_ADDR address;  // room for both families
    return InetPtonW(family, text.c_str(), &address) == 1;
}

bool is_ipv6_address(const std::wstring& text) {
    const std::size_t zone = text.find(L'%');
    return zone + 1 != text.size() && is_address(AF_INET6, text.substr(0, zone));
}

bool is_name_character(wchar_t c) {
    if (c == L'-' || c == L'_' || IS_HIGH_SURROGATE(c) || IS_LOW_SURROGATE(c)) return true;
    WORD type = 0;
    return GetStringTypeW(CT_CTYPE1, &c, 1, &type) && (type & (C1_ALPHA | C1_DIGIT)) != 0;
}

bool is_label(std::wstring_view label) {
    return !label.empty() && label.size() <= 63 && label.front() != L'-' && label.back() != L'-' &&
           std::all_of(label.begin(), label.end(), is_name_character);
}

bool is_name(std::wstring_view name) {
    if (name.ends_with(L'.')) name.remove_suffix(1);
    if (name.size() > 253) return false;
    for (;;) {
        const std::size_t dot = name.find(L'.');
        if (!is_label(name.substr(0, dot))) return false;
        if (dot == std::wstring_view::npos) return true;
        name.remove_prefix(dot + 1);
    }
}

// Whether the text has the form of an IPv4 address, an IPv6 address (with or without a zone) or a host name. Names may
// contain letters of every script. Nothing is looked up.
bool is_plausible_host(const std::wstring& host) {
    if (host.find(L':') != std::wstring::npos) return is_ipv6_address(host);
    if (host.find_first_not_of(L"0123456789.") == std::wstring::npos) return is_address(AF_INET, host);
    return is_name(host);
}

void check_host(const std::wstring& host) {
    if (host.empty()) throw error_t(L"The backup server is empty: a host name or an IP address is needed.");
    if (!is_plausible_host(host))
        throw error_t(L"The backup server [" + host +
                      L"] is not allowed: it is neither a host name nor an IP address.");
}

void check_port(std::int32_t port) {
    if (port < 1 || port > 65535)
        throw error_t(L"The port " + std::to_wstring(port) + L" is not allowed: ports are 1 to 65535.");
}

void check_user_name(const std::wstring& user_name) {
    if (user_name.empty()) throw error_t(L"The user name is empty: an account of the backup server is needed.");
}

void check_parallelism(std::int32_t parallelism, const scenario_t& server) {
    if (parallelism < server.min_parallelism || parallelism > server.max_parallelism)
        throw error_t(L"The parallelism " + std::to_wstring(parallelism) + L" is not allowed: it is " +
                      std::to_wstring(server.min_parallelism) + L" to " + std::to_wstring(server.max_parallelism) +
                      L".");
}

void check_count(std::size_t count, std::size_t max) {
    if (count == 0) throw error_t(L"No repository is selected: at least one is needed.");
    if (count <= max) return;
    const std::wstring sentence = std::to_wstring(count) + L" repositories are not allowed: ";
    throw error_t(sentence + (max == 1 ? L"Oracle Standard Edition (SE) is limited to one."
                                       : L"at most " + std::to_wstring(max) + L" can be selected."));
}

std::wstring known_ids(const scenario_t& server) {
    constexpr std::size_t shown = 10;
    std::wstring list;
    for (std::size_t i = 0; i < server.repositories.size() && i < shown; ++i)
        list += (i == 0 ? L"" : L", ") + server.repositories[i].id.value_or(L"(without identifier)");
    if (server.repositories.empty()) return L"none";
    return server.repositories.size() > shown ? list + L", ..." : list;
}

std::vector<repository_t> known_repositories(const std::vector<std::wstring>& ids, const scenario_t& server,
                                             std::size_t max) {
    check_count(ids.size(), max);
    std::vector<repository_t> result;
    for (const std::wstring& id : ids) {
        const auto known = std::ranges::find(server.repositories, id, &repository_t::id);
        if (known == server.repositories.end())
            throw error_t(L"The repository [" + id + L"] is not known to the backup server. Known repositories: " +
                          known_ids(server) + L".");
        if (std::ranges::find(result, id, &repository_t::id) != result.end())
            throw error_t(L"The repository [" + id + L"] is selected twice: each copy needs one of its own.");
        result.push_back(*known);
    }
    return result;
}

std::wstring id_of(const plug_common::SRepositoryCType& record) {
    if (!record.id || !record.name) throw error_t(L"A repository has no identifier or no name: the text is null.");
    if (record.encryptionEnabled != 0 && record.encryptionEnabled != 1)
        throw error_t(L"The encryption of the repository [" + std::wstring(record.id) + L"] is " +
                      std::to_wstring(record.encryptionEnabled) + L": it is 0 or 1.");
    return record.id;
}

}  // namespace

void set_host(configuration_t& configuration, const wchar_t* host) {
    std::wstring value = line(host, L"backup server");
    check_host(value);
    configuration.host = std::move(value);
}

void set_port(configuration_t& configuration, std::int32_t port) {
    check_port(port);
    configuration.port = port;
}

void set_credentials(configuration_t& configuration, const wchar_t* domain, const wchar_t* user_name,
                     const wchar_t* password) {
    std::wstring new_domain = line(domain, L"domain name");
    std::wstring new_user_name = line(user_name, L"user name");
    if (!password) throw error_t(L"No password is given: the text is null.");
    check_user_name(new_user_name);
    configuration.protected_password = protect(password);
    configuration.domain = std::move(new_domain);
    configuration.user_name = std::move(new_user_name);
}

void set_parallelism(configuration_t& configuration, std::int32_t parallelism, const scenario_t& server) {
    check_parallelism(parallelism, server);
    configuration.parallelism = parallelism;
}

void set_repositories(configuration_t& configuration, const plug_common::SRepositoryCType* records, std::int32_t count,
                      const scenario_t& server, std::size_t max) {
    if (count < 0 || (count > 0 && !records)) throw error_t(L"The list of repositories is not valid.");
    std::vector<std::wstring> ids;
    std::transform(records, records + count, std::back_inserter(ids), id_of);
    configuration.repositories = known_repositories(ids, server, max);
}

std::size_t max_repositories_in(const scenario_t& server) { return server.edition == 1 ? 1 : max_repositories; }

void require_complete(const configuration_t& configuration, const scenario_t& server) {
    check_host(configuration.host);
    check_port(configuration.port);
    check_user_name(configuration.user_name);
    check_parallelism(configuration.parallelism, server);
    std::vector<std::wstring> ids;
    for (const repository_t& repository : configuration.repositories) ids.push_back(repository.id.value_or(L""));
    known_repositories(ids, server, max_repositories_in(server));
}

std::wstring parallelism_range(const scenario_t& server) {
    return std::to_wstring(server.min_parallelism) + L"-" + std::to_wstring(server.max_parallelism);
}

}  // namespace demo_library
