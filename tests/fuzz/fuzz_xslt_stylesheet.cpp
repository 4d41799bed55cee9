/**
 * @file
 * Any bytes as a stylesheet of the second interface.
 */
#include "support/BoundedHeap.h"
#include "support/BoundedOutput.h"
#include "support/Check.h"
#include "support/Outcome.h"
#include "support/Silence.h"

#include <vexa/xslt.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

namespace {

constexpr const char* SOURCE = "<?p i?><orders xmlns:n='urn:n'><!--c--><order id='a' n:b='2'>x"
                               "<line>10</line><line>9.5</line></order><order id='c'/></orders>";

vexa::Options closed() {
    vexa::Options options;
    options.access.folders.emplace();
    options.limits = fuzzingLimits();
    return options;
}

constexpr std::size_t MANY_DOCUMENTS = 20;

/** Compiles, then transforms into a text and into a tree, twice. */
std::vector<Outcome> outcomesOf(std::string_view bytes) {
    static const auto source = vexa::Document::parse(vexa::Input::view(SOURCE, "mem:/source.xml"));
    std::vector<Outcome> outcomes;
    vexa::Stylesheet sheet;
    outcomes.push_back(outcomeOf([&] {
        sheet = vexa::Stylesheet::compile(vexa::Input::view(bytes, "mem:/sheet.xsl"), closed());
        return sheet.method() + ' ' + sheet.encoding() + ' ' + sheet.mediaType();
    }));
    if (outcomes.back().end != Outcome::End::Success) {
        return outcomes;
    }
    vexa::Transformation run(sheet, closed());
    run.parameter("p", "a value");
    std::list<BoundedOutput> documents;
    run.onDocument([&](const std::string&, const std::string&, const vexa::DocumentSettings&) {
        if (documents.size() == MANY_DOCUMENTS) {
            throw vexa::Error(vexa::ErrorKind::Denied, "too many documents");
        }
        return vexa::Output::stream(documents.emplace_back());
    });
    for (int i = 0; i < 2; ++i) {
        outcomes.push_back(outcomeOf([&] {
            BoundedOutput text;
            documents.clear();
            run.to(source, vexa::Output::stream(text));
            std::string all = text.text();
            for (const BoundedOutput& document : documents) {
                all += '\n' + document.text();
            }
            return all;
        }));
        outcomes.push_back(outcomeOf([&] {
            documents.clear();
            return run.toDocument(source).xml();
        }));
    }
    return outcomes;
}

/** Whether it uses what differs from run to run: a clock, or addresses of nodes. */
bool usesChangingValues(std::string_view bytes) {
    const auto uses = [&](std::string_view name) { return bytes.find(name) != bytes.npos; };
    return uses("generate-id") || uses("Timer") || uses("GetDateTime") || uses("dates-and-times") ||
           uses("random");
}

void requireLike(const std::vector<Outcome>& outcomes, const std::vector<Outcome>& others) {
    for (std::size_t i = 0; i < outcomes.size() && i < others.size(); ++i) {
        require(outcomes[i].isLike(others[i]), "an operation ends as the same one before");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    requireSilence();
    const BoundedHeap heap;
    const std::vector<Outcome> outcomes = outcomesOf(bytes);
    for (const Outcome& outcome : outcomes) {
        require(outcome.end != Outcome::End::Usage, "the interface was used rightly");
    }
    if (!usesChangingValues(bytes)) {
        requireLike(outcomes, outcomesOf(bytes));
        if (outcomes.size() == 5) {
            requireLike({outcomes[1], outcomes[2]}, {outcomes[3], outcomes[4]});
        }
    }
    return 0;
}
