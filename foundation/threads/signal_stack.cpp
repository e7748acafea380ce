#include "foundation/threads/signal_stack.h"

#include <signal.h>
#include <sys/mman.h>

#include <cstddef>

namespace {

constexpr std::size_t kStackBytes = 64 * 1024;

}  // namespace

LSignalStack::LSignalStack() {
    void* memory = ::mmap(nullptr, kStackBytes, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED)
        return;
    stack_t stack{};
    stack.ss_sp = memory;
    stack.ss_size = kStackBytes;
    stack_t previous{};
    // A sanitizer's run-time library brings a stack of its own and takes that down itself.
    if (::sigaltstack(nullptr, &previous) != 0 || !(previous.ss_flags & SS_DISABLE) ||
        ::sigaltstack(&stack, nullptr) != 0) {
        ::munmap(memory, kStackBytes);
        return;
    }
    memory_ = memory;
}

LSignalStack::~LSignalStack() {
    if (!memory_)
        return;
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    ::sigaltstack(&none, nullptr);
    ::munmap(memory_, kStackBytes);
}
