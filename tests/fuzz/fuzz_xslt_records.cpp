/**
 * @file
 * Any bytes as a source with records, and as a packed record.
 */
#include "support/BoundedHeap.h"
#include "support/Check.h"
#include "support/Outcome.h"
#include "support/Silence.h"

#include <vexa/xslt.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

vexa::Options closed() {
    vexa::Options options;
    options.access.folders.emplace();
    options.limits = fuzzingLimits();
    return options;
}

/** All records as XML. @param next the next one of some records */
template <typename Next>
Outcome outcomeOfAll(std::string_view bytes, Next next) {
    return outcomeOf([&] {
        vexa::Records records(vexa::Input::view(bytes, "mem:/source.xml"), "r", closed());
        std::string all;
        while (const std::optional<vexa::Document> record = next(records)) {
            all += std::to_string(records.line()) + ' ' + record->xml() + '\n';
        }
        return all;
    });
}

void readSource(std::string_view bytes) {
    const Outcome whole =
        outcomeOfAll(bytes, [](vexa::Records& records) { return records.next(); });
    const Outcome packed = outcomeOfAll(bytes, [](vexa::Records& records) {
        const auto record = records.nextPacked();
        return record ? std::optional(vexa::Records::unpack(*record, closed())) : std::nullopt;
    });
    require(whole.end != Outcome::End::Usage && packed.isLike(whole),
            "records are the same in another process");
}

void readPacked(const std::string& bytes) {
    outcomeOf([&] { return vexa::Records::unpack(bytes, closed()).xml(); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    requireSilence();
    const BoundedHeap heap;
    if (bytes.substr(0, 1) == "<") {
        readSource(bytes);
    } else {
        readPacked(std::string(bytes));
    }
    return 0;
}
