#include "NoNetwork.h"

#include "Failure.h"

#include <string>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLURL.hpp>

namespace {

std::string g_refused;

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
        g_refused = reinterpret_cast<const char*>(text.str());
        tellRefusedNetwork();
        return nullptr;
    }
};

} // namespace

void forbidNetwork() {
    delete xercesc::XMLPlatformUtils::fgNetAccessor;
    xercesc::XMLPlatformUtils::fgNetAccessor = new Refusal;
}

void tellRefusedNetwork() {
    if (!g_refused.empty()) {
        throw Failure(g_refused, "the network is not to be used");
    }
}
