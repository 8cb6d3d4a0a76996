// Every run: start-up, one command, shutdown.
#pragma once

namespace app {

// Runs the program with UTF-8 arguments, the first of which is the program's name. Prints the text of every
// std::exception to standard output, and after a complaint about the command line a hint at --help to standard error.
// Must be called only once per process.
void Run(int argc, const char* const* argv);

}  // namespace app
