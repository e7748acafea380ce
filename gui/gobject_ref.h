// Sole owner of one reference on a GObject.
#pragma once

#include <glib-object.h>

#include <utility>

template <typename T>
class GObjectRef {
public:
    GObjectRef() = default;
    // Takes over the caller's reference.
    static GObjectRef Adopt(T* object) { return GObjectRef(object); }
    // Adds a reference of its own; a floating reference is sunk.
    static GObjectRef Share(T* object) {
        if (object != nullptr)
            g_object_ref_sink(object);
        return GObjectRef(object);
    }
    GObjectRef(GObjectRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    GObjectRef& operator=(GObjectRef&& other) noexcept {
        if (this != &other) {
            Reset();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    GObjectRef(const GObjectRef&) = delete;
    GObjectRef& operator=(const GObjectRef&) = delete;
    ~GObjectRef() { Reset(); }

    T* Get() const { return object_; }  // borrowed; null when none
    explicit operator bool() const { return object_ != nullptr; }
    T* Release() { return std::exchange(object_, nullptr); }  // the reference becomes the caller's
    void Reset() {
        if (T* old = std::exchange(object_, nullptr))
            g_object_unref(old);
    }

private:
    explicit GObjectRef(T* object) : object_(object) {}
    T* object_ = nullptr;
};
