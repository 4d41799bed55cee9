/**
 * @file
 * What an operation may do, and the callbacks that it uses.
 */
#pragma once

#include <vexa/xslt/Error.h>
#include <vexa/xslt/Export.h>
#include <vexa/xslt/Input.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vexa {

/** What documents and stylesheets may reach by themselves. What is refused is an Error: Denied. */
struct Access {
    /** Whether other schemes than "file" are opened. */
    bool network = false;
    /** Whether DTDs and entities outside of the document are read. */
    bool externalEntities = false;
    /** Not set: every file. Set: only what is below one of these folders, links resolved. */
    std::optional<std::vector<std::filesystem::path>> folders;
};

/**
 * Bounds of one operation; 0 means none. Reaching one is an Error: Limit, whose text begins with
 * "the memory limit" (output, time, depth), and names the value. The operation leaves no result,
 * and its objects can be used again.
 */
struct Limits {
    /**
     * Most bytes that the operation holds at one time, its result included. The bytes of an Input
     * and a Document that the host has parsed do not count.
     */
    std::size_t memory = 0;
    /** Most bytes of a result. Of a result in memory: most characters of its names and texts. */
    std::size_t output = 0;
    /** Most time, by the clock. */
    std::chrono::milliseconds time{0};
    /** Most levels of templates that invoke one another, and of nested elements while parsing. */
    std::size_t depth = 0;
};

/**
 * Says whether an operation shall stop: it ends with an Error: Cancelled. A default token never
 * does. Any thread may use it.
 */
class VEXA_XSLT_EXPORT CancelToken {
public:
    /** A token that is never cancelled. */
    CancelToken() noexcept;
    /** Whether its source has been cancelled. */
    bool cancelled() const noexcept;

private:
    friend class CancelAccess;
    friend class CancelSource;
    struct VEXA_XSLT_LOCAL State;
    std::shared_ptr<const State> m_state;
};

/** Cancels the operations that have a token of it. Any thread may use it. */
class VEXA_XSLT_EXPORT CancelSource {
public:
    /** A source that is not cancelled. */
    CancelSource();
    /** Cancels all operations that have a token of this source, for good. */
    void cancel() noexcept;
    /** A token of this source. */
    CancelToken token() const;

private:
    std::shared_ptr<CancelToken::State> m_state;
};

/**
 * Is asked for what a document or a stylesheet refers to, before the access policy.
 *
 * @param uri  what is asked for, resolved against its base; as it stands where that is not possible
 * @param base the URI of the document or module that refers to it; empty if it has none
 * @return a source of the host's own, or nothing: then the URI is opened under the access policy.
 *         An Input::uri is opened under the policy too
 */
using Resolver =
    std::function<std::optional<Input>(const std::string& uri, const std::string& base)>;

/**
 * A resolver that is given the public identifier of a DTD or an entity too: assign it to
 * Options::resolver. A resolver that calls another one passes the identifier on if it is of this
 * type itself.
 */
struct PublicIdResolver {
    /** As a Resolver; `publicId` is empty where there is none. */
    std::function<std::optional<Input>(const std::string& uri, const std::string& base,
                                       const std::string& publicId)>
        resolve;

    /** Asks without a public identifier. */
    std::optional<Input> operator()(const std::string& uri, const std::string& base) const {
        return resolve(uri, base, {});
    }
};

/** Is given each message, warning and error of an operation, in order, on the thread that runs it.
 */
using MessageHandler = std::function<void(const Diagnostic&)>;

/** The settings of one operation, or of all operations of one Transformation. */
struct Options {
    Access access;            ///< what documents and stylesheets may reach
    Limits limits;            ///< none by default
    CancelToken cancel;       ///< never cancelled by default
    Resolver resolver;        ///< may be empty
    MessageHandler onMessage; ///< may be empty
};

} // namespace vexa
