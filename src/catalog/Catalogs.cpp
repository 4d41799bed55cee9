#include "catalog/Catalogs.h"

#include "xslt/Uri.h"

#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>

#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/xmlIO.h>

namespace fs = std::filesystem;

namespace {

/** For all catalogs: libxml2 shares what it has read between them, and counts levels in it. */
std::mutex g_mutex; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

/** Catalogs decide what may be fetched; they are not fetched themselves. */
xmlParserInputBufferPtr openLocalFile(const char* uri, xmlCharEncoding encoding) {
    const std::string scheme = uriScheme(uri);
    return scheme.empty() || scheme == "file" ? __xmlParserInputBufferCreateFilename(uri, encoding)
                                              : nullptr;
}

void ignoreError(void* /*context*/, xmlErrorPtr /*error*/) {}

/** Keeps libxml2 silent and off the network on this thread; then restores what the host had set. */
class QuietParser {
public:
    QuietParser()
        : m_opener(std::exchange(xmlParserInputBufferCreateFilenameValue, openLocalFile)),
          m_reporter(xmlStructuredError), m_context(xmlStructuredErrorContext),
          m_lastError(std::exchange(xmlLastError, xmlError{})) {
        xmlSetStructuredErrorFunc(nullptr, ignoreError);
    }
    QuietParser(const QuietParser&) = delete;
    QuietParser& operator=(const QuietParser&) = delete;
    ~QuietParser() {
        xmlResetLastError();
        xmlLastError = m_lastError;
        xmlSetStructuredErrorFunc(m_context, m_reporter);
        xmlParserInputBufferCreateFilenameValue = m_opener;
    }

private:
    xmlParserInputBufferCreateFilenameFunc m_opener;
    xmlStructuredErrorFunc m_reporter;
    void* m_context;
    xmlError m_lastError;
};

const xmlChar* toXml(const std::string& text) {
    return text.empty() ? nullptr : reinterpret_cast<const xmlChar*>(text.c_str());
}

/** What the first catalog answers that has an answer; empty if none has. */
template <typename List, typename Lookup>
std::string firstAnswer(const List& catalogs, const Lookup& lookup) {
    for (const auto& catalog : catalogs) {
        const std::unique_ptr<xmlChar, void (*)(void*)> answer(lookup(catalog.get()), xmlFree);
        if (answer) {
            return reinterpret_cast<const char*>(answer.get());
        }
    }
    return "";
}

bool isExistingFile(const std::string& uri) {
    const auto path = pathOfFileUri(uri);
    std::error_code none;
    return path && fs::exists(*path, none);
}

} // namespace

Catalogs::Catalogs(const std::vector<fs::path>& files) {
    for (const fs::path& file : files) {
        std::error_code none; // An empty path stays one, and is missing.
        m_files.push_back(fs::absolute(file, none));
    }
}

Catalogs::~Catalogs() {
    const std::lock_guard lock(g_mutex);
    m_catalogs.clear();
}

void Catalogs::load() {
    xmlInitParser();
    xmlInitializeCatalog();
    for (const fs::path& file : m_files) {
        if (xmlCatalog* const catalog = xmlLoadACatalog(file.c_str())) {
            m_catalogs.emplace_back(catalog);
        }
    }
    m_files.clear();
}

std::optional<std::string> Catalogs::find(const std::string& uri, const std::string& publicId) {
    if (isExistingFile(uri)) {
        return std::nullopt;
    }
    const std::lock_guard lock(g_mutex);
    const QuietParser quiet;
    load();
    // An answer is a URI or the path of one.
    std::string found = firstAnswer(m_catalogs, [&](xmlCatalogPtr catalog) {
        return xmlACatalogResolve(catalog, toXml(publicId), toXml(uri));
    });
    found = found.empty() ? uri : resolveUri(found, "file:///");
    if (!isExistingFile(found)) {
        const std::string other = firstAnswer(m_catalogs, [&](xmlCatalogPtr catalog) {
            return xmlACatalogResolveURI(catalog, toXml(found));
        });
        found = other.empty() ? found : resolveUri(other, "file:///");
    }
    return found == uri ? std::nullopt : std::optional(found);
}
