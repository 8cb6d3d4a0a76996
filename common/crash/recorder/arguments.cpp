#include "common/crash/recorder/arguments.h"

namespace recorder {
namespace {

constexpr unsigned argument_count = 9;

bool is_blank(wchar_t character) { return character == L' ' || character == L'\t'; }

// Terminates the next argument and moves the position past it. Returns null at the end of the line.
wchar_t* next_argument(wchar_t*& position) {
    while (is_blank(*position)) ++position;
    if (*position == L'\0') return nullptr;
    const bool quoted = *position == L'"';
    if (quoted) ++position;
    wchar_t* const begin = position;
    while (*position != L'\0' && (quoted ? *position != L'"' : !is_blank(*position))) ++position;
    if (*position != L'\0') *position++ = L'\0';
    return begin;
}

bool read_number(const wchar_t* text, ULONG64 max, ULONG64& number) {
    number = 0;
    if (*text == L'\0') return false;
    for (; *text != L'\0'; ++text) {
        if (*text < L'0' || *text > L'9') return false;
        const auto digit = static_cast<unsigned>(*text - L'0');
        if (number > (max - digit) / 10) return false;
        number = number * 10 + digit;
    }
    return true;
}

bool is_file_name(const wchar_t* text) {
    if (*text == L'\0') return false;
    for (; *text != L'\0'; ++text) {
        if (*text == L'\\' || *text == L'/' || *text == L':') return false;
    }
    return true;
}

bool read(wchar_t* const (&texts)[argument_count], arguments_t& arguments) {
    constexpr ULONG64 max_dword = 0xffffffff;
    arguments.folder = texts[6];
    arguments.base_name = texts[7];
    return read_number(texts[1], ~0ULL, arguments.process) && read_number(texts[2], max_dword, arguments.process_id) &&
           read_number(texts[3], max_dword, arguments.thread_id) &&
           read_number(texts[4], ~0ULL, arguments.exception_pointers) &&
           read_number(texts[5], max_dword, arguments.watching_thread) &&
           read_number(texts[8], 10000, arguments.max_dumps) && arguments.max_dumps != 0 &&
           *arguments.folder != L'\0' && is_file_name(arguments.base_name) && arguments.process_id != 0 &&
           GetProcessId(reinterpret_cast<HANDLE>(arguments.process)) == arguments.process_id;
}

}  // namespace

crash::recorder_exit_t read_arguments(wchar_t* command_line, arguments_t& arguments) {
    wchar_t* texts[argument_count];
    unsigned count = 0;
    while (wchar_t* const text = next_argument(command_line)) {
        if (count == argument_count) return crash::recorder_bad_argument_count;
        texts[count++] = text;
    }
    if (count < argument_count) return crash::recorder_bad_argument_count;
    return read(texts, arguments) ? crash::recorder_success : crash::recorder_bad_arguments;
}

}  // namespace recorder
