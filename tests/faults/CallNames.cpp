#include "CallNames.h"

#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <unordered_map>

namespace {

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return text ? text.get() : name;
}

std::string findCallName(void* address) {
    Dl_info info{};
    if (!dladdr(address, &info) || !info.dli_fname) {
        return "?";
    }
    const std::string file = info.dli_fname;
    return file.substr(file.rfind('/') + 1) + ": " +
           (info.dli_sname ? demangled(info.dli_sname) : "?");
}

/** Cached: the dynamic linker searches all symbols of a library each time. */
const std::string& callName(void* address) {
    static std::unordered_map<void*, std::string> names;
    const auto [entry, isNew] = names.try_emplace(address);
    if (isNew) {
        entry->second = findCallName(address);
    }
    return entry->second;
}

} // namespace

std::vector<std::string> callNames(void* const* frames, int depth) {
    std::vector<std::string> names;
    for (int i = 0; i < depth; ++i) {
        names.push_back(callName(frames[i]));
    }
    return names;
}
