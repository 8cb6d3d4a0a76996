#include "wizard/console_stream.h"

#include <iostream>
#include <streambuf>

#include "common/text/convert.h"
#include "wizard/windows_console.h"
#include "common/win32.h"

namespace wizard {
namespace {

// Keeps nothing back: what the log echoes to the console between two texts stands between them.
class CConsoleBuffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        CWindowsConsole().Write(text::utf8_to_wide(std::string(text, static_cast<std::size_t>(size))));
        return size;
    }

    int_type overflow(int_type character) override {
        const char single = traits_type::to_char_type(character);
        if (!traits_type::eq_int_type(character, traits_type::eof())) xsputn(&single, 1);
        return traits_type::not_eof(character);
    }
};

bool OutputIsConsole() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != FALSE;
}

}  // namespace

void PrintToConsoleAsUtf16() {
    // Never destroyed: objects with static storage print while the process ends.
    static auto* const buffer = new CConsoleBuffer;
    if (OutputIsConsole()) std::cout.rdbuf(buffer);
}

}  // namespace wizard
