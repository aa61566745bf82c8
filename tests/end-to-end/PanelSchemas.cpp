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

/// All messages of one direction, each of which has its number.
struct Messages {
    explicit Messages(const std::string& page) {
        std::ifstream file(platform::Utf8Path(SourceFile("docs/panel-schemas/" + page)));
        const json document = json::parse(file);
        valijson::SchemaParser(valijson::SchemaParser::kDraft7)
            .populateSchema(NlohmannJsonAdapter(document), schema);
    }

    valijson::Schema schema;
};

}  // namespace

std::string FaultsOf(Direction direction, const json& message) {
    static const Messages toPlugin("panel-to-plugin.json"), toPanel("plugin-to-panel.json");
    const Messages& messages = direction == Direction::kToPlugin ? toPlugin : toPanel;
    valijson::ValidationResults results;
    const NlohmannJsonAdapter adapter(message);
    if (valijson::Validator(valijson::Validator::kStrongTypes).validate(messages.schema, adapter, &results))
        return "";
    std::string faults = message.dump() + " stands in no schema";
    for (valijson::ValidationResults::Error error; results.popError(error);)
        faults += "\n  " + error.description;
    return faults;
}

}  // namespace panel_schemas
