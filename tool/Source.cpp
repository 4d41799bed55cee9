#include "Source.h"

#include "Failure.h"

#include <cerrno>
#include <iostream>

Source::Source(const std::string& argument) {
    if (argument != STANDARD_STREAM) {
        m_document.emplace(argument);
    }
}

std::string Source::name() const {
    return m_document ? m_document->asTyped() : "standard input";
}

void Source::checkReadable() const {
    if (m_document) {
        m_document->checkReadable();
    }
}

std::istream& Source::open() {
    if (!m_document) {
        return std::cin;
    }
    const std::string path = displayName(m_document->uri());
    m_file.open(path, std::ios::binary);
    if (!m_file) {
        throw Failure(name(), systemReason(errno));
    }
    return m_file;
}

void Source::checkRead() const {
    if ((m_document && m_file.bad()) || (!m_document && std::cin.bad())) {
        throw Failure(name(), "it cannot be read");
    }
}
