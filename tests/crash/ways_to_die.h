#pragma once

// Each function dies in its own way; its name is what a backtrace must show. Null for an unknown name.
using way_to_die_t = void (*)();
way_to_die_t find_way_to_die(const char* name);
