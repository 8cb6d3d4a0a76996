// Prints the password that the configuration library beside it stores, unit by unit in hexadecimal. The product never
// shows it.
#include <cstdio>

#include "conf_tool/library_interface.h"
#include "common/win32.h"

extern "C" int wmain() {
    const FARPROC function = GetProcAddress(LoadLibraryW(L"OrmaconLib.dll"), "GetConfig");
    const auto get_config = reinterpret_cast<conf_tool::GetConfigFn>(reinterpret_cast<void*>(function));
    conf_tool::LibraryText user_name, domain, password, host;
    conf_tool::LibraryRecords records;
    conf_tool::LibraryError error = nullptr;
    std::int32_t port, parallelism, count;
    if (get_config(&user_name, &domain, &password, &host, &port, &parallelism, &records, &count, &error) != 0) return 1;
    for (const wchar_t* unit = password; *unit; ++unit) std::printf("%04x ", static_cast<unsigned>(*unit));
    return 0;
}
