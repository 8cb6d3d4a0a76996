#include "common/crash/shared/value_filter.h"

#include <cstddef>

#include "common/win32.h"

#include <dbghelp.h>

// Compiled for the recorder too, so nothing here needs a C or C++ runtime.

namespace crash {
namespace {

constexpr ULONG32 signature = 0x504d444d;  // "MDMP"

// Offsets in the file are taken from the file: each access is checked against its size.
class dump_view_t {
public:
    dump_view_t(unsigned char* begin, ULONG64 size) : begin_(begin), size_(size) {}

    // Returns null when the values are not within the file.
    template <class Value>
    Value* at(ULONG64 offset, ULONG64 count = 1) const {
        if (offset > size_ || count > (size_ - offset) / sizeof(Value)) return nullptr;
        return reinterpret_cast<Value*>(begin_ + offset);
    }

    const MINIDUMP_DIRECTORY* stream(ULONG32 type) const {
        const auto* const header = at<MINIDUMP_HEADER>(0);
        const auto* const streams = at<MINIDUMP_DIRECTORY>(header->StreamDirectoryRva, header->NumberOfStreams);
        for (ULONG32 i = 0; streams != nullptr && i < header->NumberOfStreams; ++i) {
            if (streams[i].StreamType == type) return &streams[i];
        }
        return nullptr;
    }

    // The items of a stream that starts with their 32-bit count.
    template <class Item>
    Item* items(ULONG32 type, ULONG32& count) const {
        const MINIDUMP_DIRECTORY* const found = stream(type);
        const auto* const stored = found == nullptr ? nullptr : at<ULONG32>(found->Location.Rva);
        auto* const list = stored == nullptr ? nullptr : at<Item>(found->Location.Rva + sizeof *stored, *stored);
        count = list == nullptr ? 0 : *stored;
        return list;
    }

private:
    unsigned char* begin_;
    ULONG64 size_;
};

class filter_t {
public:
    explicit filter_t(const dump_view_t& dump)
        : dump_(dump),
          modules_(dump.items<MINIDUMP_MODULE>(ModuleListStream, module_count_)),
          threads_(dump.items<MINIDUMP_THREAD>(ThreadListStream, thread_count_)) {}

    // Without these lists an address cannot be distinguished from a text.
    bool usable() const { return module_count_ != 0 && thread_count_ != 0; }

    bool filter_threads() const {
        for (ULONG32 i = 0; i < thread_count_; ++i) {
            if (!filter_memory(threads_[i].Stack) || !filter_context(threads_[i].ThreadContext)) return false;
        }
        return true;
    }

    bool filter_memory_list() const {
        ULONG32 count;
        const auto* const ranges = dump_.items<MINIDUMP_MEMORY_DESCRIPTOR>(MemoryListStream, count);
        for (ULONG32 i = 0; i < count; ++i) {
            if (!is_in_module(ranges[i].StartOfMemoryRange) && !filter_memory(ranges[i])) return false;
        }
        return true;
    }

    bool filter_exception() const {
        const MINIDUMP_DIRECTORY* const found = dump_.stream(ExceptionStream);
        if (found == nullptr) return true;
        const auto* const exception = dump_.at<MINIDUMP_EXCEPTION_STREAM>(found->Location.Rva);
        return exception != nullptr && filter_context(exception->ThreadContext);
    }

private:
    bool is_in_module(ULONG64 address) const {
        for (ULONG32 i = 0; i < module_count_; ++i) {
            if (address - modules_[i].BaseOfImage < modules_[i].SizeOfImage) return true;
        }
        return false;
    }

    bool is_in_stack(ULONG64 address) const {
        for (ULONG32 i = 0; i < thread_count_; ++i) {
            const MINIDUMP_MEMORY_DESCRIPTOR& stack = threads_[i].Stack;
            if (address - stack.StartOfMemoryRange < stack.Memory.DataSize) return true;
        }
        return false;
    }

    // A value that does not fill a word of the process is not an address.
    void filter_words(unsigned char* words, ULONG64 size) const {
        for (; size >= sizeof(ULONG64); size -= sizeof(ULONG64), words += sizeof(ULONG64)) {
            const ULONG64 value = *reinterpret_cast<const UNALIGNED ULONG64*>(words);
            if (!is_in_module(value) && !is_in_stack(value)) clear(words, sizeof value);
        }
        clear(words, size);
    }

    bool filter_memory(const MINIDUMP_MEMORY_DESCRIPTOR& range) const {
        const ULONG64 size = range.Memory.DataSize;
        auto* const bytes = dump_.at<unsigned char>(range.Memory.Rva, size);
        if (bytes == nullptr) return false;
        const ULONG64 unaligned = -range.StartOfMemoryRange % sizeof(ULONG64);
        const ULONG64 begin = unaligned < size ? unaligned : size;
        clear(bytes, begin);
        filter_words(bytes + begin, size - begin);
        return true;
    }

    bool filter_context(const MINIDUMP_LOCATION_DESCRIPTOR& location) const {
        if (location.DataSize == 0) return true;
        auto* const context = dump_.at<unsigned char>(location.Rva, location.DataSize);
        if (context == nullptr || location.DataSize < sizeof(CONTEXT)) return false;
        clear(context, offsetof(CONTEXT, ContextFlags));
        clear(context + offsetof(CONTEXT, Dr0), offsetof(CONTEXT, Rax) - offsetof(CONTEXT, Dr0));
        filter_words(context + offsetof(CONTEXT, Rax), offsetof(CONTEXT, Rip) - offsetof(CONTEXT, Rax));
        clear(context + offsetof(CONTEXT, FltSave), location.DataSize - offsetof(CONTEXT, FltSave));
        return true;
    }

    static void clear(volatile unsigned char* bytes, ULONG64 size) {
        for (ULONG64 i = 0; i < size; ++i) bytes[i] = 0;
    }

    dump_view_t dump_;
    ULONG32 module_count_;
    ULONG32 thread_count_;
    const MINIDUMP_MODULE* modules_;
    const MINIDUMP_THREAD* threads_;
};

bool filter_view(unsigned char* begin, ULONG64 size) {
    const dump_view_t dump(begin, size);
    const auto* const header = dump.at<MINIDUMP_HEADER>(0);
    if (header == nullptr || header->Signature != signature) return false;
    const filter_t filter(dump);
    return filter.usable() && filter.filter_threads() && filter.filter_memory_list() && filter.filter_exception();
}

}  // namespace

bool filter_values(HANDLE file) {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(file, &size) || size.QuadPart == 0) return false;
    const HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0, 0, nullptr);
    if (mapping == nullptr) return false;
    void* const view = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0);
    CloseHandle(mapping);
    if (view == nullptr) return false;
    const bool filtered = filter_view(static_cast<unsigned char*>(view), static_cast<ULONG64>(size.QuadPart));
    UnmapViewOfFile(view);
    if (!filtered) SetLastError(ERROR_INVALID_DATA);
    return filtered;
}

}  // namespace crash
