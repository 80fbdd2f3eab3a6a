#include "job/JobSchema.h"

#include "job/JobChecks.h"
#include "job/JobSchemaText.h"

#include <fmt/format.h>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace tavix::job {

namespace {

using nlohmann::json;

struct Finding {
    std::string pointer;
    std::string text;
    FilePosition position;
};

/// "/tables/0/file" as users write it: tables[0].file.
std::string pathText(const std::string& pointer) {
    std::string path;
    for (const std::string& step : [&] {
             std::vector<std::string> steps;
             for (json::json_pointer rest(pointer); !rest.empty(); rest.pop_back())
                 steps.insert(steps.begin(), rest.back());
             return steps;
         }()) {
        if (!step.empty() && step.find_first_not_of("0123456789") == std::string::npos)
            path += fmt::format("[{}]", step);
        else
            path += (path.empty() ? "" : ".") + step;
    }
    return path;
}

bool hasType(const json& schema, const json& value) {
    const auto type = schema.find("type");
    return type != schema.end() &&
           ((*type == "object" && value.is_object()) || (*type == "string" && value.is_string()));
}

/// The alternative of the schema that fits the value's type.
const json& alternative(const json& schema, const json& value) {
    if (const auto all = schema.find("anyOf"); all != schema.end())
        for (const json& one : *all)
            if (hasType(one, value))
                return one;
    return schema;
}

/// Walks schema and document together to name unknown and missing keys, which the validator does not report well.
class KeyChecker {
  public:
    KeyChecker(const YamlDocument& document, std::vector<Finding>& findings)
        : m_document(document), m_findings(findings) {}

    void check(const json& wholeSchema, const json& value, const std::string& pointer) {
        const json& schema = alternative(wholeSchema, value);
        if (value.is_array() && schema.contains("items")) {
            for (std::size_t i = 0; i < value.size(); ++i)
                check(schema["items"], value[i], pointerTo(pointer, std::to_string(i)));
        } else if (value.is_object() && schema.contains("properties")) {
            checkObject(schema, value, pointer);
        }
    }

  private:
    void checkObject(const json& schema, const json& value, const std::string& pointer) {
        const json& properties = schema["properties"];
        std::vector<std::string> known;
        for (const auto& [key, ignored] : properties.items())
            known.push_back(key);
        for (const auto& [key, inner] : value.items()) {
            const std::string place = pointerTo(pointer, key);
            if (properties.contains(key))
                check(properties[key], inner, place);
            else
                m_findings.push_back({place, fmt::format("unknown key \"{}\"{}", key, suggestion(key, known)),
                                      m_document.entryPositions.at(place)});
        }
        for (const json& key : schema.value("required", json::array()))
            if (const auto word = key.get<std::string>(); !value.contains(word))
                m_findings.push_back(
                    {pointer, fmt::format("the key \"{}\" is missing", word), m_document.valuePositions.at(pointer)});
    }

    const YamlDocument& m_document;
    std::vector<Finding>& m_findings;
};

/// The limits of a text's length, if the schema states them.
std::string lengthLimits(const json& schema, const json& value) {
    if (!value.is_string() || !schema.contains("maxLength"))
        return {};
    return fmt::format(" ({} to {} characters{})", schema.value("minLength", 0), schema["maxLength"].get<int>(),
                       schema.contains("pattern") ? ", not only blanks" : "");
}

/// The schema's description of the value at `pointer`.
std::string expectation(const json& root, const json& document, const std::string& pointer) {
    const json* schema = &root;
    const json* value = &document;
    std::vector<std::string> steps;
    for (json::json_pointer rest(pointer); !rest.empty(); rest.pop_back())
        steps.insert(steps.begin(), rest.back());
    for (const std::string& step : steps) {
        const json& chosen = alternative(*schema, *value);
        if (value->is_array() && chosen.contains("items")) {
            schema = &chosen["items"];
            value = &(*value)[std::stoul(step)];
        } else if (value->is_object() && chosen.contains("properties") && chosen["properties"].contains(step)) {
            schema = &chosen["properties"][step];
            value = &(*value)[step];
        } else {
            break;
        }
    }
    return schema->value("description", "something else") + lengthLimits(*schema, *value);
}

void validate(const json& schemaText, const YamlDocument& document, std::vector<Finding>& findings) {
    valijson::Schema schema;
    valijson::SchemaParser parser;
    parser.populateSchema(valijson::adapters::NlohmannJsonAdapter(schemaText), schema);
    valijson::Validator validator;
    valijson::ValidationResults results;
    if (validator.validate(schema, valijson::adapters::NlohmannJsonAdapter(document.value), &results))
        return;
    valijson::ValidationResults::Error error;
    while (results.popError(error)) {
        std::string pointer;
        for (const std::string& step : error.context)
            if (step.size() > 2 && step.front() == '[')
                pointer = pointerTo(pointer, step.substr(1, step.size() - 2));
        const auto position = document.valuePositions.find(pointer);
        if (position == document.valuePositions.end())
            continue;
        const std::string expected = expectation(schemaText, document.value, pointer);
        findings.push_back({pointer,
                            pointer.empty() ? fmt::format("expected {}", expected)
                                            : fmt::format("\"{}\": expected {}", pathText(pointer), expected),
                            position->second});
    }
}

bool isWithin(const std::string& inner, const std::string& outer) {
    return inner.size() > outer.size() && inner.starts_with(outer) && inner[outer.size()] == '/';
}

std::optional<DocumentProblem> findProblem(const json& schema, const YamlDocument& document) {
    std::vector<Finding> findings;
    KeyChecker(document, findings).check(schema, document.value, "");
    validate(schema, document, findings);
    // A wrong value makes its containers invalid too; only the innermost finding helps.
    const Finding* first = nullptr;
    for (const Finding& finding : findings) {
        const bool isInnermost = std::none_of(findings.begin(), findings.end(), [&](const Finding& other) {
            return isWithin(other.pointer, finding.pointer);
        });
        if (isInnermost && (!first || finding.position < first->position))
            first = &finding;
    }
    if (first)
        return DocumentProblem{first->position, first->text};
    return std::nullopt;
}

} // namespace

std::optional<DocumentProblem> findSchemaProblem(const YamlDocument& document) {
    return findProblem(json::parse(kJobSchemaText), document);
}

std::optional<DocumentProblem> findAlertProblem(const YamlDocument& document) {
    const json schema = json::parse(kJobSchemaText);
    return findProblem(schema.at(json::json_pointer("/properties/tables/items/properties/alerts/items")), document);
}

} // namespace tavix::job
