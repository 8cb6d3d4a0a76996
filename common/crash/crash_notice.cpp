#include "common/crash/crash_notice.h"

#include <array>
#include <cstdio>

#include "common/text/convert.h"
#include "common/win32.h"

namespace crash {
namespace {

std::wstring sentence(std::uint32_t code, const std::wstring& dump_folder) {
    std::array<wchar_t, 64> begin{};
    std::swprintf(begin.data(), begin.size(), L"The program has crashed with 0x%08X. ", code);
    const std::wstring rest =
        dump_folder.empty() ? L"No crash dump could be written." : L"The crash dump is in " + dump_folder + L".";
    return begin.data() + rest + L"\r\n";
}

}  // namespace

void tell_crash(std::uint32_t code, const std::wstring& dump_folder) {
    const HANDLE target = GetStdHandle(STD_ERROR_HANDLE);
    const std::wstring line = sentence(code, dump_folder);
    // The console's cursor may stand behind a prompt.
    const std::wstring on_screen = L"\r\n" + line;
    DWORD written = 0;
    if (WriteConsoleW(target, on_screen.data(), static_cast<DWORD>(on_screen.size()), &written, nullptr)) return;
    const std::string in_file = text::wide_to_utf8(line);
    WriteFile(target, in_file.data(), static_cast<DWORD>(in_file.size()), &written, nullptr);
}

}  // namespace crash
