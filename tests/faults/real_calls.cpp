#include "tests/faults/real_calls.h"

#include <dlfcn.h>

namespace orvex_faults {

namespace {

template <typename Function>
void find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

RealCalls findAll() {
    RealCalls calls{};
    find(calls.open, "open");
    find(calls.close, "close");
    find(calls.read, "read");
    find(calls.write, "write");
    find(calls.writev, "writev");
    find(calls.tcgetattr, "tcgetattr");
    find(calls.tcsetattr, "tcsetattr");
    find(calls.ioctl, "ioctl");
    find(calls.fcntl, "fcntl");
    find(calls.fwrite, "fwrite");
    find(calls.putc, "putc");
    find(calls.fflush, "fflush");
    return calls;
}

}  // namespace

const RealCalls& real() {
    static const RealCalls calls = findAll();
    return calls;
}

}  // namespace orvex_faults
