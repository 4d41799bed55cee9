// A host that does not link the library but loads it when it wants it, and lets it go again.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using StartOrStop = int (*)(const char*);

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, dlerror());
    std::exit(EXIT_FAILURE);
}

void* find(void* library, const char* name) {
    void* const symbol = dlsym(library, name);
    if (!symbol) {
        fail(name);
    }
    return symbol;
}

void useOnce(const char* file) {
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        fail(file);
    }
    const auto start = reinterpret_cast<StartOrStop>(find(library, "TQXslTransformer_Initialize"));
    const auto stop = reinterpret_cast<StartOrStop>(find(library, "TQXslTransformer_Terminate"));
    const auto info = static_cast<const char* const*>(find(library, "nrbVersionInfo"));
    if (start(nullptr) != 0 || stop(nullptr) != 0) {
        fail("start and stop");
    }
    for (int row = 0; row < 9; ++row) {
        if (std::strncmp(info[row], "@(#)", 4) != 0) {
            fail("nrbVersionInfo");
        }
    }
    std::puts(info[2]);
    if (dlclose(library) != 0) {
        fail("dlclose");
    }
    if (dlopen(file, RTLD_NOW | RTLD_NOLOAD)) {
        fail("the library stays loaded");
    }
}

} // namespace

int main(int, char** argv) {
    useOnce(argv[1]);
    useOnce(argv[1]);
}
