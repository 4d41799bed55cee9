#include "testing/CaseResult.h"

#include "base/Json.h"

#include <rapidjson/document.h>

namespace {

const rapidjson::Value& member(const rapidjson::Value& object, const char* name) {
    return object.FindMember(name)->value;
}

/** {URI: {"lines": [LINE, COUNT, ...], "routines": [LINE, NAME, COUNT, ...]}} */
void add(JsonText& json, const Coverage& coverage) {
    json.name("coverage");
    json.begin();
    for (const auto& [uri, module] : coverage.modules()) {
        json.name(uri.c_str());
        json.begin();
        json.name("lines");
        json.writer().StartArray();
        for (const auto& [line, count] : module.lines) {
            json.writer().Uint64(line);
            json.writer().Uint64(count);
        }
        json.writer().EndArray();
        json.name("routines");
        json.writer().StartArray();
        for (const auto& [routine, count] : module.routines) {
            json.writer().Uint64(routine.first);
            json.string(routine.second);
            json.writer().Uint64(count);
        }
        json.writer().EndArray();
        json.end();
    }
    json.end();
}

std::size_t toSize(const rapidjson::Value& number) {
    return static_cast<std::size_t>(number.GetUint64());
}

Coverage coverageOf(const rapidjson::Value& json) {
    Coverage coverage;
    for (const auto& [uri, counts] : json.GetObject()) {
        Coverage::Module& module = coverage.modules()[uri.GetString()];
        const auto lines = member(counts, "lines").GetArray();
        for (rapidjson::SizeType i = 0; i < lines.Size(); i += 2) {
            module.lines[toSize(lines[i])] = lines[i + 1].GetUint64();
        }
        const auto routines = member(counts, "routines").GetArray();
        for (rapidjson::SizeType i = 0; i < routines.Size(); i += 3) {
            module.routines[{toSize(routines[i]), routines[i + 1].GetString()}] =
                routines[i + 2].GetUint64();
        }
    }
    return coverage;
}

} // namespace

std::string CaseResult::json() const {
    JsonText json;
    json.begin();
    json.name("failures");
    json.writer().StartArray();
    for (const std::string& failure : failures) {
        json.string(failure);
    }
    json.writer().EndArray();
    json.member("error", isError);
    json.name("outdated");
    json.writer().StartArray();
    for (const std::size_t index : outdated) {
        json.writer().Uint64(index);
    }
    json.writer().EndArray();
    json.milliseconds(milliseconds);
    add(json, coverage);
    json.end();
    return json.text();
}

CaseResult CaseResult::fromJson(const std::string& json) {
    rapidjson::Document document;
    document.Parse(json.data(), json.size());
    CaseResult result;
    for (const auto& failure : member(document, "failures").GetArray()) {
        result.failures.emplace_back(failure.GetString(), failure.GetStringLength());
    }
    result.isError = member(document, "error").GetBool();
    for (const auto& index : member(document, "outdated").GetArray()) {
        result.outdated.push_back(toSize(index));
    }
    result.milliseconds = member(document, "milliseconds").GetDouble();
    result.coverage = coverageOf(member(document, "coverage"));
    return result;
}
