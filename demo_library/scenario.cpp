#include "demo_library/scenario.h"

#include <algorithm>
#include <string_view>

#include "demo_library/configuration.h"
#include "demo_library/error.h"
#include "demo_library/files.h"
#include "demo_library/text.h"
#include "demo_library/xml.h"

namespace demo_library {
namespace {

constexpr double tib = 1024.0 * 1024 * 1024 * 1024;

scenario_t built_in_scenario() {
    scenario_t scenario;
    scenario.repositories = {{L"REP-0001", L"Central Primary", 20 * tib, 11.5 * tib, false},
                             {L"REP-0002", L"Central Archive", 80 * tib, 52.25 * tib, false},
                             {L"REP-0003", L"Encrypted Vault", 10 * tib, 7.75 * tib, true},
                             {L"REP-0004", L"Branch Office", 4 * tib, 0.5 * tib, false},
                             {L"REP-0005", L"Disaster Recovery Site", 40 * tib, 31 * tib, false}};
    scenario.map_text = L"The demonstration library has mapped the imported backup.\r\n";
    return scenario;
}

void add_generated(std::vector<repository_t>& repositories, std::int32_t count) {
    for (std::int32_t i = 1; i <= count; ++i) {
        const std::wstring number = std::to_wstring(i);
        repositories.push_back({L"GEN-" + number, L"Generated repository " + number, tib * i, tib, i % 2 == 0});
    }
}

crash_t crash_named(const std::wstring& name) {
    if (name.empty()) return crash_t::none;
    if (name == L"access-violation") return crash_t::access_violation;
    if (name == L"exception") return crash_t::exception;
    throw error_t(L"there is no crash [" + name + L"]: it is access-violation or exception");
}

std::string function_named(const std::wstring& name) {
    std::string narrow = to_utf8(name);
    const bool has_status = exports(narrow) && !narrow.starts_with("Free");
    if (!has_status) throw error_t(L"there is no function [" + name + L"] that could fail");
    return narrow;
}

std::uint32_t positive(const TiXmlElement& element, const char* name) {
    return static_cast<std::uint32_t>(std::max(0, number_attribute(element, name, 0)));
}

fault_t read_fault(const TiXmlElement& element) {
    fault_t fault;
    fault.text = text_attribute(element, "fail");
    fault.silent = number_attribute(element, "failWithoutText", 0) != 0;
    fault.crash = crash_named(text_attribute(element, "crash").value_or(L""));
    fault.delay = positive(element, "delay");
    if (element.Attribute("consoleMode")) fault.console_mode = positive(element, "consoleMode");
    if (element.Attribute("first")) fault.first = positive(element, "first");
    return fault;
}

void read_server(scenario_t& scenario, const TiXmlElement& server) {
    scenario.edition = number_attribute(server, "edition", scenario.edition);
    scenario.min_parallelism = number_attribute(server, "lowestParallelism", scenario.min_parallelism);
    scenario.max_parallelism = number_attribute(server, "highestParallelism", scenario.max_parallelism);
}

void read_scenario(scenario_t& scenario, const TiXmlElement& root) {
    for (const TiXmlElement* element = root.FirstChildElement(); element; element = element->NextSiblingElement()) {
        const std::string_view name = element->Value();
        if (name == "Server") {
            read_server(scenario, *element);
        } else if (name == "Repositories") {
            scenario.repositories = read_repositories(*element);
            add_generated(scenario.repositories, number_attribute(*element, "generate", 0));
        } else if (name == "MapBackup") {
            scenario.map_code = number_attribute(*element, "code", scenario.map_code);
            scenario.map_text = text_attribute(*element, "text").value_or(scenario.map_text);
        } else if (name == "Function") {
            const std::string function = function_named(text_attribute(*element, "name").value_or(L""));
            scenario.faults[function] = read_fault(*element);
        } else {
            throw error_t(L"there is no element " + to_wide(name) + L" in a scenario");
        }
    }
}

}  // namespace

scenario_t load_scenario() {
    scenario_t scenario = built_in_scenario();
    const std::wstring path = environment_text(L"ORMACON_DEMO_SCENARIO");
    if (path.empty()) return scenario;
    const auto reader = [&](const TiXmlElement& root) { read_scenario(scenario, root); };
    if (!read_xml_file(path, "DemoScenario", reader)) throw error_t(L"There is no scenario file " + path);
    return scenario;
}

}  // namespace demo_library
