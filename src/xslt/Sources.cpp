#include "xslt/Sources.h"

#include "xslt/InputAccess.h"
#include "xslt/Text.h"
#include "xslt/Uri.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <istream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/XMLURL.hpp>

using vexa::ErrorKind;
using vexa::Input;
using vexa::InputAccess;
using vexa::InputData;

/** A stream that the parser destroys. Out of memory, the parser may leak it: Sources destroys it.
 */
class Sources::Stream : public xercesc::BinInputStream {
public:
    explicit Stream(Sources& sources)
        : m_operation(sources.m_operation), m_bytesRead(sources.m_bytesRead),
          m_next(sources.m_streams), m_self(&sources.m_streams) {
        if (m_next) {
            m_next->m_self = &m_next;
        }
        *m_self = this;
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() override {
        *m_self = m_next;
        if (m_next) {
            m_next->m_self = m_self;
        }
    }

    XMLFilePos curPos() const override { return m_position; }
    const XMLCh* getContentType() const override { return nullptr; }
    XMLSize_t readBytes(XMLByte* target, XMLSize_t size) override {
        m_operation.poll();
        const XMLSize_t count = read(target, size);
        m_position += count;
        m_bytesRead += count;
        return count;
    }

protected:
    virtual XMLSize_t read(XMLByte* target, XMLSize_t size) = 0;

    Operation& m_operation;

private:
    std::uint64_t& m_bytesRead;
    Stream* m_next;
    /** The pointer to this stream. */
    Stream** m_self;
    XMLFilePos m_position = 0;
};

Sources::~Sources() {
    while (m_streams) {
        delete m_streams; // NOLINT(clang-analyzer-cplusplus.NewDelete): it leaves the list
    }
}

namespace {

/** The stream that a source was opened with. */
class OpenSource : public xercesc::InputSource {
public:
    OpenSource(const std::string& uri, std::unique_ptr<xercesc::BinInputStream> stream)
        : InputSource(toUtf16(uri).c_str()), m_stream(std::move(stream)) {}

    xercesc::BinInputStream* makeStream() const override { return m_stream.release(); }

private:
    mutable std::unique_ptr<xercesc::BinInputStream> m_stream;
};

class FileStream : public Sources::Stream {
public:
    FileStream(Sources& sources, const std::filesystem::path& path, std::string uri)
        : Stream(sources), m_uri(std::move(uri)), m_file(open(path)) {
        if (m_file < 0) {
            fail("cannot open");
        }
    }
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;
    ~FileStream() override { ::close(m_file); }

protected:
    XMLSize_t read(XMLByte* target, XMLSize_t size) override {
        ssize_t count = 0;
        do {
            count = ::read(m_file, target, size);
        } while (count < 0 && errno == EINTR);
        if (count < 0) {
            fail("cannot read");
        }
        return static_cast<XMLSize_t>(count);
    }

private:
    static int open(const std::filesystem::path& path) {
        // The system would take a path up to its NUL, which is not what the access policy has
        // allowed.
        const bool hasNul = path.native().find('\0') != std::string::npos;
        errno = EINVAL;
        return hasNul ? -1 : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    }

    [[noreturn]] void fail(const char* what) const {
        m_operation.fail(ErrorKind::Input,
                         std::string(what) + ": " + std::generic_category().message(errno),
                         {m_uri, 0, 0});
    }

    std::string m_uri;
    int m_file;
};

/** A text, and the input that keeps it. */
class TextStream : public Sources::Stream {
public:
    TextStream(Sources& sources, Input input, std::string_view text)
        : Stream(sources), m_input(std::move(input)), m_text(text) {}

protected:
    XMLSize_t read(XMLByte* target, XMLSize_t size) override {
        const std::size_t count = m_text.copy(reinterpret_cast<char*>(target), size);
        m_text.remove_prefix(count);
        return count;
    }

private:
    Input m_input;
    std::string_view m_text;
};

class HostStream : public Sources::Stream {
public:
    HostStream(Sources& sources, std::istream& stream, std::string uri)
        : Stream(sources), m_stream(stream), m_uri(std::move(uri)) {}

protected:
    XMLSize_t read(XMLByte* target, XMLSize_t size) override {
        try {
            // What is there now is enough: the rest of a pipe may come much later.
            m_stream.peek();
            const std::streamsize most = static_cast<std::streamsize>(size);
            const std::streamsize ready = m_stream.good() ? m_stream.rdbuf()->in_avail() : 0;
            m_stream.read(reinterpret_cast<char*>(target),
                          ready > 0 ? std::min(ready, most) : most);
        } catch (const std::ios_base::failure&) {
            // A stream may be told to throw at its end too.
            if (m_stream.bad()) {
                throw;
            }
        }
        if (m_stream.bad()) {
            m_operation.fail(ErrorKind::Input, "the stream cannot be read", {m_uri, 0, 0});
        }
        return static_cast<XMLSize_t>(m_stream.gcount());
    }

private:
    std::istream& m_stream;
    std::string m_uri;
};

Sources::Opened openFile(Sources& sources, const std::filesystem::path& path,
                         const std::string& uri) {
    auto stream = std::make_unique<FileStream>(sources, path, uri);
    return {std::make_unique<OpenSource>(uri, std::move(stream)), uri};
}

/** What the parser can fetch. */
bool isNetworkUri(std::string_view uri) {
    const std::string scheme = uriScheme(uri);
    return scheme == "http" || scheme == "https" || scheme == "ftp" ||
           scheme == "file"; // of another host
}

Sources::Opened openNetwork(const std::string& uri, const Operation& operation) {
    try {
        std::unique_ptr<xercesc::BinInputStream> stream(
            xercesc::XMLURL(toUtf16(uri).c_str()).makeNewStream());
        return {std::make_unique<OpenSource>(uri, std::move(stream)), uri};
    } catch (const xercesc::XMLException& exception) {
        operation.fail(ErrorKind::Input, cleanText(toUtf8(exception.getMessage())), {uri, 0, 0});
    }
}

/** Compared after links are resolved, of the parts that exist. */
bool isBelowOneOf(const std::filesystem::path& path,
                  const std::vector<std::filesystem::path>& folders) {
    std::error_code error;
    const auto realPath = std::filesystem::weakly_canonical(path, error);
    return !error && std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
        std::error_code folderError;
        const auto realFolder = std::filesystem::canonical(folder, folderError);
        const auto [end, ignored] =
            std::mismatch(realFolder.begin(), realFolder.end(), realPath.begin(), realPath.end());
        return !folderError && end == realFolder.end();
    });
}

std::optional<Input> ask(const vexa::Resolver& resolver, const std::string& uri,
                         const std::string& base, const std::string& publicId) {
    if (!resolver) {
        return std::nullopt;
    }
    const auto* const withPublicId = resolver.target<vexa::PublicIdResolver>();
    return withPublicId ? withPublicId->resolve(uri, base, publicId) : resolver(uri, base);
}

} // namespace

Sources::Opened Sources::open(const Input& input) {
    const InputData& data = InputAccess::data(input);
    return data.kind == InputData::Kind::Uri
               ? openReference(resolveUri(data.uri, {}), {}, Reference::Document, {})
               : openOwn(input, data.uri);
}

Sources::Opened Sources::open(const std::string& uri, const std::string& base, Reference reference,
                              const vexa::Location& place, const std::string& publicId) {
    try {
        return openReference(uri, base, reference, publicId);
    } catch (const vexa::Error& error) {
        if (error.kind() == ErrorKind::Input) {
            m_operation.fail(ErrorKind::Input, uri + ": " + error.text(), place);
        }
        if (error.kind() == ErrorKind::Denied) {
            m_operation.fail(ErrorKind::Denied, error.text(), place);
        }
        throw;
    }
}

Sources::Opened Sources::openReference(const std::string& uri, const std::string& base,
                                       Reference reference, const std::string& publicId) {
    const auto& options = m_operation.options();
    if (reference == Reference::ExternalEntity && !options.access.externalEntities) {
        m_operation.fail(ErrorKind::Denied, "external entity access denied: " + uri, {base, 0, 0});
    }
    const auto answer = ask(options.resolver, uri, base, publicId);
    if (!answer) {
        return openUnderPolicy(uri);
    }
    const InputData& data = InputAccess::data(*answer);
    if (data.kind == InputData::Kind::Uri) {
        return openUnderPolicy(resolveUri(data.uri, base));
    }
    return openOwn(*answer, data.uri.empty() ? uri : data.uri);
}

/** What the host has given itself is not under the policy. */
Sources::Opened Sources::openOwn(const Input& input, const std::string& uri) {
    InputData& data = InputAccess::data(input);
    if (data.kind == InputData::Kind::File) {
        return openFile(*this, data.path, uri);
    }
    if (data.kind == InputData::Kind::Text) {
        // The text stays where it is: with the input, which lives as long as the operation.
        auto stream = std::make_unique<TextStream>(*this, input, data.text);
        return {std::make_unique<OpenSource>(uri, std::move(stream)), uri};
    }
    if (data.isStreamUsed.exchange(true)) {
        m_operation.fail(ErrorKind::Usage, "the input stream has been read already", {uri, 0, 0});
    }
    if (data.stream->fail()) {
        m_operation.fail(ErrorKind::Input, "the stream cannot be read", {uri, 0, 0});
    }
    auto stream = std::make_unique<HostStream>(*this, *data.stream, uri);
    return {std::make_unique<OpenSource>(uri, std::move(stream)), uri};
}

Sources::Opened Sources::openUnderPolicy(const std::string& uri) {
    const auto& access = m_operation.options().access;
    const auto path = pathOfFileUri(uri);
    if (!path) {
        if (!isNetworkUri(uri)) {
            m_operation.fail(ErrorKind::Input, "cannot open: unknown kind of URI", {uri, 0, 0});
        }
        if (!access.network) {
            m_operation.fail(ErrorKind::Denied, "network access denied: " + uri, {uri, 0, 0});
        }
        return openNetwork(uri, m_operation);
    }
    if (access.folders && !isBelowOneOf(*path, *access.folders)) {
        m_operation.fail(ErrorKind::Denied, "file access denied: " + uri, {uri, 0, 0});
    }
    return openFile(*this, *path, uri);
}
