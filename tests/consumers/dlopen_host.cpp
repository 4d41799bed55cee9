// A host that does not link the library but loads it when it needs it, and unloads it again: alone,
// and together with a component that links it.
//
//     dlopen_host LIBRARY COMPONENT STYLESHEET
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using StartOrStop = int (*)(const char*);
using RunComponent = void (*)(const char*);

[[noreturn]] void fail(const char* what) {
    const char* const error = dlerror();
    std::fprintf(stderr, "%s: %s\n", what, error ? error : "failed");
    std::exit(EXIT_FAILURE);
}

void* load(const char* file) {
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        fail(file);
    }
    return library;
}

void* find(void* library, const char* name) {
    void* const symbol = dlsym(library, name);
    if (!symbol) {
        fail(name);
    }
    return symbol;
}

void unload(void* library, const char* file) {
    if (dlclose(library) != 0) {
        fail("dlclose");
    }
    if (dlopen(file, RTLD_NOW | RTLD_NOLOAD)) {
        std::fprintf(stderr, "%s stays loaded\n", file);
        std::exit(EXIT_FAILURE);
    }
}

void useLibrary(const char* file) {
    void* const library = load(file);
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
    unload(library, file);
}

/** The component finds the library by its name, as it is loaded already. */
void useComponent(const char* file, const char* componentFile, const char* stylesheet) {
    void* const library = load(file);
    void* const component = load(componentFile);
    reinterpret_cast<RunComponent>(find(component, "runComponent"))(stylesheet);
    unload(component, componentFile);
    unload(library, file);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        fail("usage: dlopen_host LIBRARY COMPONENT STYLESHEET");
    }
    std::setvbuf(stdout, nullptr, _IONBF, 0); // the component writes there, too
    for (int i = 0; i < 2; ++i) {
        useLibrary(argv[1]);
        useComponent(argv[1], argv[2], argv[3]);
    }
}
