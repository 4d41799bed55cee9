/**
 * @file
 * Part of a build for UndefinedBehaviorSanitizer only, in the place of a function of its own. That
 * one looks at an object through a pipe, and takes the object for a wrong one where no pipe can be
 * opened: in the last moments of a program that is interrupted, which lets its other threads open
 * nothing any more.
 */
#include <dlfcn.h>
#include <sys/resource.h>

extern "C" [[gnu::visibility("default")]] void
__ubsan_handle_dynamic_type_cache_miss_abort(void* place, void* object, void* hash) {
    using Handler = void (*)(void*, void*, void*);
    static const auto checkType =
        reinterpret_cast<Handler>(dlsym(RTLD_NEXT, "__ubsan_handle_dynamic_type_cache_miss_abort"));
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    if (files.rlim_cur != 0) {
        checkType(place, object, hash);
    }
}
