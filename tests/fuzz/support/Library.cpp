#include "Library.h"

#include "BoundedMemory.h"

#include <vexa/TQXslTransformer.h>

#include <iostream>
#include <streambuf>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

/** Takes everything: a stream without a buffer would fail, and the engine would notice. */
class Nowhere : public std::streambuf {
    int_type overflow(int_type unit) override { return traits_type::not_eof(unit); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

/** Started once and never stopped: what the process ends with is not what a fuzzer looks for. */
BoundedMemory& startLibrary() {
    static BoundedMemory& memory = *new BoundedMemory;
    static auto& nowhere = *new Nowhere;
    std::cerr.rdbuf(&nowhere);
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr, nullptr,
                                          &memory);
    delete xercesc::XMLPlatformUtils::fgNetAccessor;
    xercesc::XMLPlatformUtils::fgNetAccessor = nullptr;
    TQXslTransformer_Initialize(nullptr);
    return memory;
}

} // namespace

void beginInput() {
    static BoundedMemory& memory = startLibrary();
    memory.allowForOneInput();
}
