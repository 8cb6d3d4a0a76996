#include "demo_library/ledger.h"

#include <map>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>

#include "demo_library/error.h"
#include "demo_library/files.h"
#include "demo_library/password.h"

#include <windows.h>

namespace demo_library {
namespace {

using plug_common::SRepositoryCType;

// One array of pointers to records, with the memory they point to.
struct array_t {
    explicit array_t(const std::vector<repository_t>& list)
        : repositories(list),
          records(list.size()),
          pointers(list.size() + 1) {  // never empty, so its address is not null
        const auto text = [](const std::optional<std::wstring>& value) { return value ? value->c_str() : nullptr; };
        for (std::size_t i = 0; i < repositories.size(); ++i) {
            const repository_t& one = repositories[i];
            records[i] = {text(one.id), text(one.name), one.capacity, one.free_space, one.encrypted ? 1 : 0};
            pointers[i] = &records[i];
        }
    }
    array_t(const array_t&) = delete;
    array_t& operator=(const array_t&) = delete;

    const std::vector<repository_t> repositories;  // owns the texts
    std::vector<SRepositoryCType> records;
    std::vector<SRepositoryCType*> pointers;
};

struct ledger_t {
    std::unordered_map<const void*, secret_t> texts;
    std::unordered_map<const void*, std::unique_ptr<array_t>> arrays;
    std::uint64_t texts_allocated = 0, texts_freed = 0, arrays_allocated = 0, arrays_freed = 0, wrong = 0;
    std::map<std::string, std::uint32_t> calls;
};

ledger_t& ledger() {
    static ledger_t instance;
    return instance;
}

std::string report_text() {
    const ledger_t& book = ledger();
    std::string text = "texts=" + std::to_string(book.texts_allocated) + "/" + std::to_string(book.texts_freed) +
                       " arrays=" + std::to_string(book.arrays_allocated) + "/" + std::to_string(book.arrays_freed) +
                       " wrong=" + std::to_string(book.wrong) + "\n";
    for (const auto& [function, calls] : book.calls) text += function + "=" + std::to_string(calls) + "\n";
    return text;
}

// Overwrites the file and truncates it after the text: a program that is killed here leaves no empty file.
void write_report(const std::wstring& path, const std::string& text) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    SetEndOfFile(file);
    CloseHandle(file);
}

// A report that cannot be written is not a failure of the call.
void report() noexcept try {
    const std::wstring path = environment_text(L"ORMACON_DEMO_REPORT");
    if (!path.empty()) write_report(path, report_text());
} catch (const std::exception&) {
}

}  // namespace

wchar_t* allocate(std::wstring_view text) {
    secret_t owned(text);
    wchar_t* address = owned.data();
    ledger().texts.emplace(address, std::move(owned));
    ++ledger().texts_allocated;
    report();
    return address;
}

conf_tool::LibraryRecords allocate(const std::vector<repository_t>& repositories) {
    auto owned = std::make_unique<array_t>(repositories);
    SRepositoryCType** address = owned->pointers.data();
    ledger().arrays.emplace(address, std::move(owned));
    ++ledger().arrays_allocated;
    report();
    return address;
}

void return_copy(std::wstring_view text, conf_tool::LibraryText* out) {
    require_out({out});
    *out = allocate(text);
}

void return_copy(const std::vector<repository_t>& repositories, conf_tool::LibraryRecords* records,
                 std::int32_t* count) {
    require_out({records, count});
    *records = allocate(repositories);
    *count = static_cast<std::int32_t>(repositories.size());
}

void release(wchar_t* text) noexcept {
    if (!text) return;
    const bool known = ledger().texts.erase(text) == 1;
    ++(known ? ledger().texts_freed : ledger().wrong);
    report();
}

void release(conf_tool::LibraryRecords records, std::int32_t count) noexcept {
    if (!records) return;
    const auto found = ledger().arrays.find(records);
    const bool known = found != ledger().arrays.end();
    if (!known || count != static_cast<std::int32_t>(found->second->records.size())) ++ledger().wrong;
    if (known) {
        ledger().arrays.erase(found);
        ++ledger().arrays_freed;
    }
    report();
}

std::uint32_t count_call(const char* function) noexcept try {
    const std::uint32_t number = ++ledger().calls[function];
    report();
    return number;
} catch (const std::bad_alloc&) {
    return 0;
}

}  // namespace demo_library
