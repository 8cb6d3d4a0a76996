// The exception family of the program. The classes, their serialised form and Boost's pointers are fixed from outside.
//
// An exception has an ordered list of message parts instead of one string: a catcher appends its sentence, and
// technical detail is separate from what the user should read.
#pragma once

#include <compare>
#include <cstdint>
#include <exception>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace exc {

struct message_part_t {
    std::string text;    // UTF-8
    bool trace = false;  // true for technical detail, marked "--tr:" in what()
};

enum class trace_event_t : std::uint32_t { thrown = 1, context_added = 2, rethrown = 3 };

struct trace_record_t {
    trace_event_t event;
    std::string info;  // UTF-8

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes a zero in the comparison for a pointer
    auto operator<=>(const trace_record_t&) const = default;
};

// What happened to an exception before it was serialised. Only an exception that was read back has such records.
struct trace_records_t {
    std::vector<trace_record_t> list;
    std::map<trace_record_t, std::size_t> counts;  // how often each of them occurs
};

class exc_base_t : public std::exception {
public:
    // Records the calling thread as the thrower.
    exc_base_t();
    ~exc_base_t() override = default;

    // Returns all parts joined with "\n", each trace part preceded by "--tr:". Valid until this object changes.
    const char* what() const noexcept override { return composed_.c_str(); }

    // Returns a heap copy of the dynamic type, for passing the failure to another thread.
    virtual boost::shared_ptr<exc_base_t> clone() const = 0;

    // Throws a copy of the dynamic type.
    [[noreturn]] virtual void rethrow() const = 0;

    // Appends the parts of a serialised exception to the current ones, and takes over its thread id and trace records.
    // Throws runtime_exc_t for a truncated form or an unknown trace event, and then changes nothing.
    virtual void read(std::istream& source);

    // Writes parts, thread id and trace records (their count, then for each its event's number and its text),
    // little-endian: 32-bit numbers, texts as a 32-bit byte length and their bytes, flags as one byte.
    virtual void write(std::ostream& target) const;

    void add_text(const std::string& text) { add_part(text, false); }
    void add_trace_text(const std::string& text) { add_part(text, true); }

    // Appends the code as a trace part.
    void add_error_code(std::uint32_t code);

    // Rebuilds both composed messages from the parts.
    void compose_messages();

    // Returns all parts joined with "\n", without marks.
    const std::string& plain_message() const { return plain_; }

    const std::vector<message_part_t>& parts() const { return parts_; }

    // Returns the Win32 id of the thread that constructed this exception.
    std::uint32_t thrower_thread_id() const { return thrower_thread_id_; }

    const trace_records_t& trace_records() const { return trace_records_; }

protected:
    exc_base_t(const exc_base_t&) = default;
    exc_base_t& operator=(const exc_base_t&) = default;

private:
    void add_part(const std::string& text, bool trace);

    std::vector<message_part_t> parts_;
    std::string composed_;
    std::string plain_;
    trace_records_t trace_records_;
    std::uint32_t thrower_thread_id_;
};

// An ordinary failure with a text.
class runtime_exc_t : public exc_base_t {
public:
    boost::shared_ptr<exc_base_t> clone() const override;
    [[noreturn]] void rethrow() const override;
};

// A failed call of the operating system.
class win_sys_exc_t : public exc_base_t {
public:
    explicit win_sys_exc_t(std::uint32_t code) : error_code(code) {}
    boost::shared_ptr<exc_base_t> clone() const override;
    [[noreturn]] void rethrow() const override;

    std::uint32_t error_code;
};

// A file that another process has locked.
class file_locked_exc_t : public exc_base_t {
public:
    boost::shared_ptr<exc_base_t> clone() const override;
    [[noreturn]] void rethrow() const override;
};

// Work that was ended from outside. Never thrown here; fixed from outside.
class term_exc_t : public exc_base_t {
public:
    boost::shared_ptr<exc_base_t> clone() const override;
    [[noreturn]] void rethrow() const override;
};

}  // namespace exc
