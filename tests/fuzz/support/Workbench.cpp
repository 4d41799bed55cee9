#include "Workbench.h"

#include "BoundedOutput.h"
#include "Check.h"

#include <sstream>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

namespace {

/** The reason of a failed parse is in the engine that parsed, until that does something else. */
void checkUse(const Dom2Dom& in, int code, const VEXAXslTransformer& transformer) {
    const bool isParseFailure = !in.GetDocument() && code == -2;
    checkResult(code, isParseFailure ? "told before" : transformer.getLastError());
}

} // namespace

void checkResult(int code, const char* lastError) {
    require(code <= 0 && code >= -5, "a result is one of the documented codes");
    require(lastError != nullptr, "the reason of a failure is never null");
    require(code == 0 || *lastError != '\0', "a failure has a reason");
}

StreamResult transformStream(VEXAXslTransformer& transformer, const std::string& source,
                             const std::string& stylesheetFile) {
    std::istringstream in(source);
    BoundedOutput out;
    try {
        const int code = transformer.doTransform(in, stylesheetFile.c_str(), out);
        checkResult(code, transformer.getLastError());
        require(code != 0 || (!out.text().empty() && out.text().back() == '\0'),
                "a stream result ends with a NUL");
        return {code, out.text()};
    } catch (...) {
        return {-5, out.text()};
    }
}

int transformInMemory(VEXAXslTransformer& transformer, Dom2Dom& in,
                      const std::string& stylesheetFile, Dom2Dom& out) {
    const int code = transformer.doTransform(in, stylesheetFile.c_str(), out);
    checkUse(in, code, transformer);
    return code;
}

int query(VEXAXslTransformer& transformer, Dom2Dom& holder, const I18NString& expression) {
    BoundedOutput out;
    const int code = transformer.doXPath(holder, expression, out);
    checkUse(holder, code, transformer);
    return code;
}

std::string serialize(Dom2Dom& holder) {
    BoundedOutput out;
    int code = 0;
    try {
        code = holder.Serialize(out);
    } catch (const xercesc::SAXException&) { // a character that XML 1.0 has not
        return out.text();
    } catch (const xercesc::OutOfMemoryException&) {
        return out.text();
    }
    checkResult(code, holder.getLastError());
    const std::string& text = out.text();
    require(code != 0 || !out.good() ||
                (text.size() >= 2 && text.compare(text.size() - 2, 2, std::string("\n\0", 2)) == 0),
            "a serialised document ends with a line feed and a NUL");
    return text;
}

bool parse(Dom2Dom& holder, const std::string& text) {
    try {
        const bool parsed = holder.InitializeInputSource(text.c_str());
        require(parsed == (holder.GetDocument() != nullptr),
                "a parse that succeeds has a document");
        require(parsed || *holder.getLastError() != '\0', "a failed parse has a reason");
        return parsed;
    } catch (const xercesc::OutOfMemoryException&) {
        return false;
    } catch (const xercesc::DOMException&) { // Xerces' tree refuses an odd version of XML
        return false;
    }
}
