#include "ErrorRoute.h"

#include <iostream>

namespace {

thread_local std::streambuf* t_pTarget = nullptr;

/** Stands in std::cerr for good, as several threads cannot take turns there. */
class Router : private std::streambuf {
public:
    /** Never destroyed: std::cerr is used until the process has ended. */
    static Router& instance() {
        static Router* const router = new Router;
        return *router;
    }

    std::streambuf* target() const { return t_pTarget ? t_pTarget : m_pStandardError; }

private:
    Router() : m_pStandardError(std::cerr.rdbuf(this)) {}

    // A target that fails is no reason to close std::cerr to the other threads.

    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            target()->sputc(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* text, std::streamsize length) override {
        target()->sputn(text, length);
        return length;
    }

    int sync() override {
        target()->pubsync();
        return 0;
    }

    std::streambuf* m_pStandardError;
};

} // namespace

std::streambuf* redirectErrors(std::streambuf* target) {
    std::streambuf* const before = Router::instance().target();
    t_pTarget = target;
    return before;
}
