#include "demo_library/presentation.h"

#include "demo_library/configuration.h"
#include "demo_library/files.h"
#include "demo_library/text.h"
#include "demo_library/xml.h"

namespace demo_library {
namespace {

// RMAN doubles a quote inside a quoted text.
std::string quoted(const std::wstring& text) {
    std::string result = "'";
    for (const char c : to_utf8(text)) result += c == '\'' ? std::string("''") : std::string(1, c);
    return result + "'";
}

}  // namespace

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

void write_settings(const std::wstring& path, const configuration_t& configuration) {
    TiXmlDocument document;
    TiXmlElement& root =
        start_document(document, "TovakConfiguration",
                       " Written by the demonstration library. The password is not part of this file. ");
    write_configuration(root, configuration);
    write_xml_file(path, document, readers_t::everyone);
}

void write_rman_script(const std::wstring& path, const configuration_t& configuration) {
    const std::string copies = std::to_string(configuration.repositories.size());
    const std::string channels = std::to_string(configuration.parallelism);
    const std::string parameters = quoted(L"SBT_LIBRARY=" + library_folder() + L"\\TovakRmanPlugin.dll");
    std::string script =
        "# Written by the demonstration library. Run it with: rman target / cmdfile=<this file>\r\n"
        "# SBT_LIBRARY is where the plug-in is expected; change it when the plug-in is elsewhere.\r\n"
        "CONFIGURE DEFAULT DEVICE TYPE TO 'SBT_TAPE';\r\n";
    script += "CONFIGURE DEVICE TYPE 'SBT_TAPE' PARALLELISM " + channels + " BACKUP TYPE TO BACKUPSET;\r\n";
    script += "CONFIGURE CHANNEL DEVICE TYPE 'SBT_TAPE' PARMS " + parameters + " FORMAT '%d_%U';\r\n";
    script += "CONFIGURE DATAFILE BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO " + copies + ";\r\n";
    script += "CONFIGURE ARCHIVELOG BACKUP COPIES FOR DEVICE TYPE 'SBT_TAPE' TO " + copies + ";\r\n";
    write_file(path, script);
}

}  // namespace demo_library
