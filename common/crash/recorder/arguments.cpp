#include "common/crash/recorder/arguments.h"

namespace recorder {
namespace {

constexpr unsigned argument_count = 9;

bool is_blank(wchar_t character) { return character == L' ' || character == L'\t'; }

// Cuts off the next argument and moves the position behind it; null at the end of the line.
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

bool read_number(const wchar_t* text, ULONG64 largest, ULONG64& number) {
    number = 0;
    if (*text == L'\0') return false;
    for (; *text != L'\0'; ++text) {
        if (*text < L'0' || *text > L'9') return false;
        const auto digit = static_cast<unsigned>(*text - L'0');
        if (number > (largest - digit) / 10) return false;
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
    constexpr ULONG64 largest_dword = 0xffffffff;
    ULONG64 process, process_id, thread_id, watching_thread, most_dumps;
    if (!read_number(texts[1], ~0ULL, process) || !read_number(texts[2], largest_dword, process_id)) return false;
    if (!read_number(texts[3], largest_dword, thread_id)) return false;
    if (!read_number(texts[4], ~0ULL, arguments.exception_pointers)) return false;
    if (!read_number(texts[5], largest_dword, watching_thread)) return false;
    if (!read_number(texts[8], 10000, most_dumps) || most_dumps == 0) return false;
    arguments.process = reinterpret_cast<HANDLE>(process);
    arguments.process_id = static_cast<DWORD>(process_id);
    arguments.thread_id = static_cast<DWORD>(thread_id);
    arguments.watching_thread = static_cast<DWORD>(watching_thread);
    arguments.folder = texts[6];
    arguments.base_name = texts[7];
    arguments.most_dumps = static_cast<unsigned>(most_dumps);
    return *arguments.folder != L'\0' && is_file_name(arguments.base_name) && process_id != 0 &&
           GetProcessId(arguments.process) == process_id;
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
