#include "conf_tool/library_memory.h"

#include <type_traits>

#include "common/exc/format_message.h"
#include "common/exc/raise.h"

namespace conf_tool {
namespace {

// More than any backup server has. Another count was never set, and the memory that it speaks of does not exist.
constexpr std::int32_t max_repositories = 1'000'000;

bool IsImpossible(std::int32_t count) { return count < 0 || count > max_repositories; }

std::wstring CopyOrEmpty(const wchar_t* text) { return text == nullptr ? std::wstring() : std::wstring(text); }

RepositoryEntry ToEntry(const plug_common::SRepositoryCType& record) {
    return {CopyOrEmpty(record.id), CopyOrEmpty(record.name), record.capacity, record.free_space,
            record.encryptionEnabled != 0};
}

}  // namespace

static_assert(std::is_nothrow_constructible_v<CLibraryText, LibraryText, FreeStringFn>);
static_assert(std::is_nothrow_constructible_v<CLibraryRepositories, LibraryRecords, std::int32_t, FreeRepositoriesFn>);

const wchar_t* CLibraryText::Get() const {
    if (!owner_) exc::raise("Configuration library returned no text");
    return owner_.get();
}

CLibraryRepositories::~CLibraryRepositories() {
    if (count_ == 0 || (records_ != nullptr && !IsImpossible(count_))) free_repositories_(records_, count_);
}

std::int32_t CLibraryRepositories::Count() const {
    if (records_ == nullptr && count_ > 0) exc::raise("Configuration library returned no repositories");
    if (IsImpossible(count_)) {
        exc::raise(exc::format_message("Configuration library returned an impossible number of repositories: [%1]",
                                       std::to_string(count_)));
    }
    return count_;
}

RepositoryEntry CLibraryRepositories::Entry(std::int32_t index) const {
    const plug_common::SRepositoryCType* record = records_[index];
    return record == nullptr ? RepositoryEntry{} : ToEntry(*record);
}

std::vector<plug_common::SRepositoryCType> ToLibraryRecords(const std::vector<RepositoryEntry>& entries) {
    std::vector<plug_common::SRepositoryCType> records;
    records.reserve(entries.size());
    for (const RepositoryEntry& entry : entries) {
        records.push_back(
            {entry.id.c_str(), entry.name.c_str(), entry.capacity, entry.free_space, entry.encryptionEnabled ? 1 : 0});
    }
    return records;
}

}  // namespace conf_tool
