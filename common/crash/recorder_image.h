#pragma once

namespace crash {

// The recorder's program file. It begins at the first byte and ends before the second one.
extern "C" const unsigned char ormacon_recorder_begin;
extern "C" const unsigned char ormacon_recorder_end;

}  // namespace crash
