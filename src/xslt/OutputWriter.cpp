#include "xslt/OutputWriter.h"

#include "xslt/Uri.h"

#include <vexa/xslt/Error.h>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

using vexa::ErrorKind;
using vexa::Output;
using vexa::OutputAccess;
using vexa::OutputData;

namespace vexa {

const Output::Data& OutputAccess::data(const Output& output) {
    if (!output.m_data) {
        throw Error(ErrorKind::Usage, "the output is empty");
    }
    return *output.m_data;
}

Output::Output(std::shared_ptr<const Data> data) noexcept : m_data(std::move(data)) {}

Output Output::file(const std::filesystem::path& path) {
    // Without a working directory the path stays empty, and is refused when it is opened.
    std::error_code ignored;
    return Output(std::make_shared<const Data>(
        Data{Data::Kind::File, std::filesystem::absolute(path, ignored)}));
}

Output Output::stream(std::ostream& stream) {
    return Output(std::make_shared<const Data>(Data{Data::Kind::Stream, {}, &stream}));
}

Output Output::text(std::string& text) {
    return Output(std::make_shared<const Data>(Data{Data::Kind::Text, {}, nullptr, &text}));
}

} // namespace vexa

std::filesystem::path followLinks(std::filesystem::path path) {
    constexpr int MOST_LINKS = 40; // as the kernel has it
    std::error_code noLink;
    for (int links = 0; links < MOST_LINKS; ++links) {
        const auto target = std::filesystem::read_symlink(path, noLink);
        if (noLink) {
            break;
        }
        path = path.parent_path() / target;
    }
    return path;
}

namespace {

constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;

/** How many names are tried that may be taken. */
constexpr int MOST_TRIES = 100;

/** A name in the folder of a file that nobody else uses; short, as the file's own may be long. */
std::filesystem::path temporaryName(const std::filesystem::path& path) {
    static std::atomic<unsigned> count{0};
    const auto name = ".vexa-" + std::to_string(::getpid()) + "-" + std::to_string(count++);
    return path.parent_path() / name;
}

/** Whether a path names a file that the process has open, such as its standard output. */
bool isOpenFile(const std::filesystem::path& path) {
    const std::string folder = path.parent_path().native();
    return folder == "/dev" || folder == "/dev/fd" || folder == "/proc/self/fd";
}

} // namespace

/**
 * A file that appears, or replaces another, when it is whole. Until then it has no name, so that
 * nothing is left behind however the process ends; where a file system has no such files, it has a
 * temporary name.
 */
class OutputWriter::File {
public:
    File(const std::filesystem::path& path, Operation& operation)
        : m_path(path), m_operation(operation) {
        struct stat status {};
        if (m_path.native().find('\0') != std::string::npos) {
            errno = EINVAL;
        } else if (::stat(m_path.c_str(), &status) != 0) {
            if (errno == ENOENT && m_path.has_filename()) {
                openTemporary();
            }
        } else if (!S_ISREG(status.st_mode) || isOpenFile(m_path)) {
            m_file = ::open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        } else if (::access(m_path.c_str(), W_OK) == 0) {
            openTemporary();
            takeAttributes(status);
        }
        if (m_file < 0) {
            fail("cannot open");
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (m_file >= 0) {
            ::close(m_file);
        }
        if (!m_temporary.empty()) {
            ::unlink(m_temporary.c_str());
        }
    }

    void write(const char* bytes, std::size_t size) {
        while (size > 0) {
            const ssize_t written = ::write(m_file, bytes, size);
            if (written < 0 && errno != EINTR) {
                fail("cannot write");
            }
            if (written > 0) {
                bytes += written;
                size -= static_cast<std::size_t>(written);
            }
        }
    }

    void commit() {
        if (m_hasNoName) {
            giveName();
        }
        if (::close(std::exchange(m_file, -1)) != 0) {
            fail("cannot write");
        }
        if (!m_temporary.empty()) {
            if (::rename(m_temporary.c_str(), m_path.c_str()) != 0) {
                fail("cannot replace");
            }
            m_temporary.clear();
        }
    }

private:
    void openTemporary() {
        // A symbolic link stays; what it names is replaced, or appears.
        m_path = followLinks(m_path);
        // A file without a name gets one by way of this folder.
        if (::access("/proc/self/fd", X_OK) == 0) {
            m_file = ::open(m_path.parent_path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
        }
        m_hasNoName = m_file >= 0;
        for (int tries = 1; m_file < 0; ++tries) {
            m_temporary = temporaryName(m_path);
            m_file = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (m_file < 0 && (errno != EEXIST || tries == MOST_TRIES)) {
                m_temporary.clear();
                fail("cannot create");
            }
        }
    }

    /** Owner and permissions of the file that is to be replaced, as far as they may be given. */
    void takeAttributes(const struct stat& original) const {
        if (::fchown(m_file, original.st_uid, original.st_gid) != 0) {
            [[maybe_unused]] const int isGroupKept =
                ::fchown(m_file, static_cast<uid_t>(-1), original.st_gid);
        }
        ::fchmod(m_file, original.st_mode & 07777);
    }

    void giveName() {
        const std::string file = "/proc/self/fd/" + std::to_string(m_file);
        const auto isNamed = [&file](const std::filesystem::path& name) {
            return ::linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
        };
        m_hasNoName = !isNamed(m_path);
        // Only a rename replaces a file.
        for (int tries = 0; m_hasNoName; ++tries) {
            if (errno != EEXIST || tries == MOST_TRIES) {
                fail("cannot create");
            }
            m_temporary = temporaryName(m_path);
            m_hasNoName = !isNamed(m_temporary);
            if (m_hasNoName) {
                m_temporary.clear(); // it is not ours
            }
        }
    }

    [[noreturn]] void fail(const char* what) const {
        m_operation.fail(ErrorKind::Output,
                         std::string(what) + ": " + std::generic_category().message(errno),
                         {fileUri(m_path), 0, 0});
    }

    std::filesystem::path m_path;
    Operation& m_operation;
    std::filesystem::path m_temporary;
    int m_file = -1;
    bool m_hasNoName = false;
};

OutputWriter::OutputWriter(const Output& output, Operation& operation)
    : m_operation(operation), m_output(output) {
    const OutputData& data = OutputAccess::data(m_output);
    if (data.kind == OutputData::Kind::File) {
        m_file = std::make_unique<File>(data.path, operation);
    }
    // What write() throws is to pass, and not to become a state of the stream.
    m_stream.exceptions(std::ios_base::badbit);
}

OutputWriter::~OutputWriter() = default;

void OutputWriter::write(const char* bytes, std::size_t size) {
    m_operation.poll();
    m_operation.takeOutput(size);
    const OutputData& data = OutputAccess::data(m_output);
    if (data.kind == OutputData::Kind::Stream) {
        data.stream->write(bytes, static_cast<std::streamsize>(size));
        if (!*data.stream) {
            m_operation.fail(ErrorKind::Output, "the stream does not take the result");
        }
        return;
    }
    m_operation.append(m_text, bytes, size);
    if (m_file && m_text.size() >= BUFFER_SIZE) {
        m_file->write(m_text.data(), m_text.size());
        m_text.clear();
    }
}

void OutputWriter::commit() {
    const OutputData& data = OutputAccess::data(m_output);
    if (m_file) {
        m_file->write(m_text.data(), m_text.size());
        m_file->commit();
    } else if (data.kind == OutputData::Kind::Text) {
        *data.text = std::move(m_text);
    } else {
        data.stream->flush();
        if (!*data.stream) {
            m_operation.fail(ErrorKind::Output, "the stream does not take the result");
        }
    }
}

std::streamsize OutputWriter::Buffer::xsputn(const char* bytes, std::streamsize size) {
    m_writer.write(bytes, static_cast<std::size_t>(size));
    return size;
}
