#pragma once

// First, so that what the engine's headers include of the system is not declared once more as C.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <popt.h>
#include <unistd.h>

// They are C, and few of them tell C++ so.
extern "C" {
#include <ltsmin/dlopen-api.h>
#include <ltsmin/ltsmin-standard.h>
#include <ltsmin/pins-util.h>
#include <ltsmin/pins.h>
}
