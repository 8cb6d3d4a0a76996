#include "wizard/console_stream.h"

#include <cstdio>
#include <iostream>
#include <streambuf>

#include <boost/algorithm/string/replace.hpp>

#include "common/platform/console.h"
#include "common/text/convert.h"
#include "wizard/windows_console.h"
#include "common/win32.h"

namespace wizard {
namespace {

// Buffers nothing, so that the log's echo appears in the right place between two texts.
class CConsoleBuffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const std::string lines(text, static_cast<std::size_t>(size));
        CWindowsConsole().Write(text::utf8_to_wide(boost::replace_all_copy(lines, "\n", "\r\n")));
        return size;
    }

    int_type overflow(int_type character) override {
        const char single = traits_type::to_char_type(character);
        if (!traits_type::eq_int_type(character, traits_type::eof())) xsputn(&single, 1);
        return traits_type::not_eof(character);
    }
};

}  // namespace

void PrepareStandardOutput() {
    if (platform::is_console(GetStdHandle(STD_OUTPUT_HANDLE))) {
        // Never destroyed: static objects print while the process ends.
        static auto* const buffer = new CConsoleBuffer;
        std::cout.rdbuf(buffer);
    } else {
        // Without a buffer, the C runtime writes to NUL character by character.
        std::setvbuf(stdout, nullptr, _IOFBF, 4096);
    }
}

}  // namespace wizard
