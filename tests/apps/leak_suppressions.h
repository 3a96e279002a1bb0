// What a leak checker should overlook in tests that draw: the font library keeps its configuration until the end.
// Its pointers are stored as offsets, so that a checker takes what they lead to for lost.
#pragma once

/// Read by the leak checker of the sanitizers when the program ends; one suppression a line.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
