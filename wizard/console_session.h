// The console's settings during a run: what the program changes, and how it changes them back.
#pragma once

namespace wizard {

// As long as it exists, the console's output code page is UTF-8, std::cout prints to the console correctly, and escape
// sequences in a text are shown, not obeyed. At its end, and before Ctrl+C, Ctrl+Break, a closed window or a crash ends
// the process, the console's modes and code page are restored. Create only one in a process.
class CConsoleSession {
public:
    CConsoleSession();
    ~CConsoleSession();
    CConsoleSession(const CConsoleSession&) = delete;
    CConsoleSession& operator=(const CConsoleSession&) = delete;
};

// As long as it exists, the console does not echo input. The destructor turns the echo on again and writes the line end
// that the user's Enter did not show. Create only one at a time.
class CEchoGuard {
public:
    CEchoGuard();
    ~CEchoGuard();
    CEchoGuard(const CEchoGuard&) = delete;
    CEchoGuard& operator=(const CEchoGuard&) = delete;
};

// Turns echo and line input on. Call it before reading a visible line: the configuration library uses the same console
// and may have turned them off. Does nothing once the process is being ended.
void PrepareVisibleInput();

// Call it after each read of a console line. Returns if the read succeeded, or if the process has never had a console.
// Otherwise, and whenever the system has reported Ctrl+C, Ctrl+Break or a closed window, restores the console and ends
// the process with the exit status of Ctrl+C. A failed read means such an event even if it has not been reported yet.
void EndProcessUnlessRead(bool succeeded);

}  // namespace wizard
