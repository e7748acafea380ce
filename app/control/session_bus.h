// What objects of GLib's D-Bus library need to be used here.
#pragma once

#include <gio/gio.h>

#include <memory>

struct FreeError {
    void operator()(GError* error) const { g_error_free(error); }
};
using ErrorRef = std::unique_ptr<GError, FreeError>;

struct FreeVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantRef = std::unique_ptr<GVariant, FreeVariant>;

// Without one the library would start a bus of its own, which nobody else is on.
bool HasSessionBus();
