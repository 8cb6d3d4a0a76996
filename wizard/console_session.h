// The console's modes during a run: what the program changes, and how it gives the console back.
#pragma once

namespace wizard {

// During its lifetime the console's output code page is UTF-8, std::cout prints there correctly, and escape sequences
// in a text are shown, not obeyed. At its end, and before Ctrl+C, Ctrl+Break, the closing of the window or a crash
// ends the process, the modes and the code page are restored to what they were. One per process.
class CConsoleSession {
public:
    CConsoleSession();
    ~CConsoleSession();
    CConsoleSession(const CConsoleSession&) = delete;
    CConsoleSession& operator=(const CConsoleSession&) = delete;
};

// Keeps the echo of the console's input off during its lifetime. Its destructor turns the echo on again and writes the
// line end that the hidden Enter did not. One at a time.
class CEchoGuard {
public:
    CEchoGuard();
    ~CEchoGuard();
    CEchoGuard(const CEchoGuard&) = delete;
    CEchoGuard& operator=(const CEchoGuard&) = delete;
};

// Call it before a visible line is read: the configuration library works in the same console and may have turned off
// echo or line input. Does nothing once the process is being ended.
void PrepareVisibleInput();

// Call it after each read of a console line. Returns for one that succeeded, and where the process has never had a
// console. Otherwise the user has pressed Ctrl+C or Ctrl+Break, or has closed the window: restores the console and ends
// the process with the exit status of Ctrl+C, whether or not the system has reported the event yet.
void EndProcessUnlessRead(bool succeeded);

}  // namespace wizard
