// crash_program WAY FOLDER: dies in this way with its log and its dumps in FOLDER\logs.
#include "common/crash/crash_handler.h"
#include "common/logging/logger.h"
#include "common/text/convert.h"
#include "tests/crash/ways_to_die.h"
#include "tests/support/test_registry.h"

int main(int argc, char** argv) {
    if (argc != 3) return 0;
    const way_to_die_t die = find_way_to_die(argv[1]);
    if (die == nullptr) return 0;
    test_support::CTestRegistry registry;
    registry.SetText(L"SOFTWARE\\Tovak\\Tovak Central", L"LogDirectory", text::utf8_to_wide(argv[2]));
    crash::install(L"logs");
    logging::initialise(logging::ormacon_tool, L"logs", L"Ormacon.log");
    die();
    return 0;
}
