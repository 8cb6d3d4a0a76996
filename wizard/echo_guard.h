// Console modes that must be as they were when the program ends, whatever ends it.
#pragma once

namespace wizard {

// Keeps the echo of the console's input off while it lives; then turns it on again and writes the line end that the
// hidden Enter did not. Raises exc::term_exc_t when the program is being ended already. One at a time.
class CEchoGuard {
public:
    CEchoGuard();
    ~CEchoGuard();
    CEchoGuard(const CEchoGuard&) = delete;
    CEchoGuard& operator=(const CEchoGuard&) = delete;
};

// While it lives, the console's output code page is UTF-8, and std::cout is printed there unharmed. When it ends, and
// before Ctrl+C, Ctrl+Break, closing of the window or a crash ends the process, the modes and the code page are as
// they were found. One per process.
class CConsoleSession {
public:
    CConsoleSession();
    ~CConsoleSession();
    CConsoleSession(const CConsoleSession&) = delete;
    CConsoleSession& operator=(const CConsoleSession&) = delete;
};

// To be called before a line is read that is to be seen: the configuration library works in the same console and may
// have left it without echo, or handing out single keys. Does nothing while the process is being ended.
void PrepareVisibleInput();

// True once Ctrl+C, Ctrl+Break or the closing of the window is ending the process.
bool IsInputCancelled();

}  // namespace wizard
