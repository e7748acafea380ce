// A shared library that is loaded at its first use: a start does not pay for what it seldom needs.
#pragma once

#include <initializer_list>

class LateLibrary {
public:
    // The first of the names that the loader finds. It is never unloaded: libraries keep threads
    // and types that outlive their caller.
    explicit LateLibrary(std::initializer_list<const char*> names);

    // That it was found, and every function since.
    bool IsWhole() const { return isWhole_; }

    // Null where there is none of this name.
    template <typename Function>
    Function* Find(const char* name) {
        return reinterpret_cast<Function*>(Address(name));
    }

private:
    void* Address(const char* name);

    void* handle_ = nullptr;
    bool isWhole_ = false;
};
