#include "demo_library/summary.h"

namespace demo_library {

std::wstring summary(const configuration_t& configuration) {
    const std::wstring account =
        configuration.domain.empty() ? configuration.user_name : configuration.domain + L"\\" + configuration.user_name;
    std::wstring text = L"Summary of the demonstration library (no backup server is contacted):\r\n";
    text += L"  Backup server: " + configuration.host + L"\r\n";
    text += L"  Port: " + std::to_wstring(configuration.port) + L"\r\n";
    text += L"  User name: " + account + L"\r\n";
    text +=
        std::wstring(L"  Password: ") + (configuration.protected_password.empty() ? L"(none)" : L"(hidden)") + L"\r\n";
    text += L"  Parallelism: " + std::to_wstring(configuration.parallelism) + L"\r\n";
    std::size_t copy = 0;
    for (const repository_t& repository : configuration.repositories)
        text += L"  Repository for backup copy " + std::to_wstring(++copy) + L": " + repository.name.value_or(L"") +
                (repository.encrypted ? L" (encrypted)" : L"") + L"\r\n";
    return text;
}

}  // namespace demo_library
