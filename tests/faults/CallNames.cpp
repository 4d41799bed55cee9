#include "CallNames.h"

#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <link.h>
#include <map>
#include <memory>
#include <unordered_map>

namespace {

std::string demangled(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return text ? text.get() : name;
}

/** A value in the bytes of a file, where it need not be aligned. */
template <typename Type>
Type valueAt(const std::string& file, std::size_t offset) {
    Type value{};
    if (offset + sizeof value <= file.size()) {
        std::memcpy(&value, file.data() + offset, sizeof value);
    }
    return value;
}

struct Function {
    std::size_t size;
    std::string name;
};

/** By address in the library. */
using Functions = std::map<std::size_t, Function>;

/** All functions of a library that is not stripped: the dynamic linker knows only exported ones. */
Functions readFunctions(const char* library) {
    std::ifstream stream(library, std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(stream)), {});
    const auto header = valueAt<ElfW(Ehdr)>(file, 0);
    const auto section = [&](std::size_t index) {
        return valueAt<ElfW(Shdr)>(file, header.e_shoff + index * header.e_shentsize);
    };
    Functions functions;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const auto symbols = section(i);
        if (symbols.sh_type != SHT_SYMTAB) {
            continue;
        }
        const auto names = section(symbols.sh_link);
        for (std::size_t at = 0; at < symbols.sh_size; at += sizeof(ElfW(Sym))) {
            const auto symbol = valueAt<ElfW(Sym)>(file, symbols.sh_offset + at);
            if (ELF64_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_size > 0) {
                functions[symbol.st_value] = {symbol.st_size,
                                              file.data() + names.sh_offset + symbol.st_name};
            }
        }
    }
    return functions;
}

std::string hiddenName(const char* library, std::size_t address) {
    static std::unordered_map<std::string, Functions> libraries;
    const auto [entry, isNew] = libraries.try_emplace(library);
    if (isNew) {
        entry->second = readFunctions(library);
    }
    auto next = entry->second.upper_bound(address);
    if (next == entry->second.begin()) {
        return "?";
    }
    const auto& [begin, function] = *--next;
    return address < begin + function.size ? demangled(function.name.c_str()) : "?";
}

std::string findCallName(void* returnAddress) {
    // A call that does not return may be the last instruction of its function.
    const auto address = reinterpret_cast<std::size_t>(returnAddress) - 1;
    Dl_info info{};
    link_map* library = nullptr;
    if (!dladdr1(reinterpret_cast<void*>(address), &info, reinterpret_cast<void**>(&library),
                 RTLD_DL_LINKMAP) ||
        !info.dli_fname) {
        return "?";
    }
    const std::string file = info.dli_fname;
    return file.substr(file.rfind('/') + 1) + ": " +
           (info.dli_sname ? demangled(info.dli_sname)
                           : hiddenName(info.dli_fname, address - library->l_addr));
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
