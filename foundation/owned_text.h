// A text that GLib allocated, freed with its owner.
#pragma once

#include <glib.h>

#include <memory>

struct GFree {
    void operator()(void* memory) const { g_free(memory); }
};
using OwnedText = std::unique_ptr<char, GFree>;
