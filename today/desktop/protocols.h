#pragma once

// The names of the protocols' arguments are words of C, and one is none of C++.
#define namespace name_space
#include <wlr-layer-shell-unstable-v1.h>
#undef namespace
#include <xdg-shell.h>
