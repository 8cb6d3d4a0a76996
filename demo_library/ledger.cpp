#include "demo_library/ledger.h"

#include <map>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>

#include "demo_library/failure.h"
#include "demo_library/paths.h"
#include "demo_library/secret.h"

#include <windows.h>

namespace demo_library {
namespace {

using plug_common::SRepositoryCType;

// The memory behind one array of pointers to records.
struct array_t {
    explicit array_t(const std::vector<repository_t>& list)
        : repositories(list), records(list.size()), pointers(list.size() + 1) {  // never empty: a null address is none
        const auto text = [](const std::optional<std::wstring>& value) { return value ? value->c_str() : nullptr; };
        for (std::size_t i = 0; i < repositories.size(); ++i) {
            const repository_t& one = repositories[i];
            records[i] = {text(one.id), text(one.name), one.capacity, one.free_space, one.encrypted ? 1 : 0};
            pointers[i] = &records[i];
        }
    }
    array_t(const array_t&) = delete;
    array_t& operator=(const array_t&) = delete;

    const std::vector<repository_t> repositories;  // holds the texts
    std::vector<SRepositoryCType> records;
    std::vector<SRepositoryCType*> pointers;
};

struct ledger_t {
    std::unordered_map<const void*, secret_t> texts;
    std::unordered_map<const void*, std::unique_ptr<array_t>> arrays;
    std::uint64_t texts_out = 0, texts_back = 0, arrays_out = 0, arrays_back = 0, wrong = 0;
    std::map<std::string, std::uint32_t> calls;
};

ledger_t& ledger() {
    static ledger_t instance;
    return instance;
}

std::string report_text() {
    const ledger_t& book = ledger();
    std::string text = "texts=" + std::to_string(book.texts_out) + "/" + std::to_string(book.texts_back) +
                       " arrays=" + std::to_string(book.arrays_out) + "/" + std::to_string(book.arrays_back) +
                       " wrong=" + std::to_string(book.wrong) + "\n";
    for (const auto& [function, calls] : book.calls) text += function + "=" + std::to_string(calls) + "\n";
    return text;
}

// Overwritten in place and cut behind the text: a program that is ended here leaves no empty file.
void write_report(const std::wstring& path, const std::string& text) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    SetEndOfFile(file);
    CloseHandle(file);
}

// A report that cannot be written changes nothing for the caller.
void report() noexcept try {
    const std::wstring path = environment_text(L"ORMACON_DEMO_REPORT");
    if (!path.empty()) write_report(path, report_text());
} catch (const std::exception&) {
}

}  // namespace

wchar_t* hand_out(std::wstring_view text) {
    secret_t owned(text);
    wchar_t* address = owned.data();
    ledger().texts.emplace(address, std::move(owned));
    ++ledger().texts_out;
    report();
    return address;
}

conf_tool::LibraryRecords hand_out(const std::vector<repository_t>& repositories) {
    auto owned = std::make_unique<array_t>(repositories);
    SRepositoryCType** address = owned->pointers.data();
    ledger().arrays.emplace(address, std::move(owned));
    ++ledger().arrays_out;
    report();
    return address;
}

void hand_out(std::wstring_view text, conf_tool::LibraryText* place) {
    require_place(place);
    *place = hand_out(text);
}

void hand_out(const std::vector<repository_t>& repositories, conf_tool::LibraryRecords* records, std::int32_t* count) {
    require_place(records);
    require_place(count);
    *records = hand_out(repositories);
    *count = static_cast<std::int32_t>(repositories.size());
}

void take_back(wchar_t* text) noexcept {
    if (!text) return;
    const bool known = ledger().texts.erase(text) == 1;
    ++(known ? ledger().texts_back : ledger().wrong);
    report();
}

void take_back(conf_tool::LibraryRecords records, std::int32_t count) noexcept {
    if (!records) return;
    const auto found = ledger().arrays.find(records);
    const bool known = found != ledger().arrays.end();
    if (!known || count != static_cast<std::int32_t>(found->second->records.size())) ++ledger().wrong;
    if (known) {
        ledger().arrays.erase(found);
        ++ledger().arrays_back;
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
