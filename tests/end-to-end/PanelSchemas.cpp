#include "PanelSchemas.h"
#include "TestFiles.h"
#include "platform/Utf8Path.h"

#include <fstream>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace panel_schemas {
namespace {

using nlohmann::json;
using valijson::adapters::NlohmannJsonAdapter;

constexpr char kReferencePrefix[] = "#/definitions/";

const json& SchemaOf(Direction direction) {
    static const auto read = [](const char* name) {
        std::ifstream file(platform::Utf8Path(SourceFile(std::string("docs/panel-schemas/") + name)));
        return json::parse(file);
    };
    static const json toPlugin = read("panel-to-plugin.json");
    static const json toPanel = read("plugin-to-panel.json");
    return direction == Direction::kToPlugin ? toPlugin : toPanel;
}

/// What is wrong with the value by a schema that may refer to the definitions; empty for nothing.
std::string Faults(const json& definitions, const json& schemaText, const json& value) {
    const json document{{"definitions", definitions}, {"allOf", {schemaText}}};
    valijson::Schema schema;
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(NlohmannJsonAdapter(document), schema);
    valijson::ValidationResults results;
    const NlohmannJsonAdapter adapter(value);
    if (valijson::Validator(valijson::Validator::kStrongTypes).validate(schema, adapter, &results))
        return "";
    std::string faults;
    for (valijson::ValidationResults::Error error; results.popError(error);)
        faults += "\n  " + error.description;
    return faults;
}

}  // namespace

std::set<std::string> Names(Direction direction) {
    std::set<std::string> names;
    for (const json& each : SchemaOf(direction).at("oneOf"))
        names.insert(each.at("$ref").get<std::string>().substr(sizeof kReferencePrefix - 1));
    return names;
}

Match Find(Direction direction, const json& message) {
    if (!message.is_object())
        return {"", message.dump() + " is no JSON object"};
    const json& definitions = SchemaOf(direction).at("definitions");
    std::string faultsByNumber;  // by the schema that has its number
    for (const std::string& name : Names(direction)) {
        const json& schema = definitions.at(name);
        const std::string faults = Faults(definitions, schema, message);
        if (faults.empty())
            return {name, ""};
        const json number = message.value("messageID", json());
        if (Faults(definitions, schema.at("properties").at("messageID"), number).empty())
            faultsByNumber = faults;
    }
    return {"", message.dump() + " stands in no schema" + faultsByNumber};
}

}  // namespace panel_schemas
