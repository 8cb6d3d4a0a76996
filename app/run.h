// The road of every run: start-up, one command, shutdown.
#pragma once

namespace app {

// Runs the program with UTF-8 arguments, the program's name first. Every failure of the std::exception family ends as
// its text on standard output. Must be called once per process.
void Run(int argc, const char* const* argv);

}  // namespace app
