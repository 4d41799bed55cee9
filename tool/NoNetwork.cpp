#include "NoNetwork.h"

#include "Failure.h"

#include <string>
#include <utility>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLURL.hpp>

namespace {

/** Of the transform that runs in this thread. */
thread_local std::string t_refused;

Failure refusal(const std::string& name) {
    return {name, "the network is not to be used"};
}

/** Stands where the parser has its access to the network. */
class Refusal : public xercesc::XMLNetAccessor {
public:
    const XMLCh* getId() const override {
        static const XMLCh NAME[] = u"none";
        return NAME;
    }

    xercesc::BinInputStream* makeNew(const xercesc::XMLURL& url,
                                     const xercesc::XMLNetHTTPInfo* /*request*/) override {
        const xercesc::TranscodeToStr text(url.getURLText(), "UTF-8");
        t_refused = reinterpret_cast<const char*>(text.str());
        throw refusal(t_refused);
    }
};

} // namespace

void forbidNetwork() {
    delete xercesc::XMLPlatformUtils::fgNetAccessor;
    xercesc::XMLPlatformUtils::fgNetAccessor = new Refusal;
}

void tellRefusedNetwork() {
    if (!t_refused.empty()) {
        throw refusal(std::exchange(t_refused, ""));
    }
}
