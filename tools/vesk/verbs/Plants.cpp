// SPDX-License-Identifier: MIT
#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"
#include "tools/vesk/verbs/Verb.h"
#include "tools/vesk/verbs/Verbs.h"

#include <iostream>

namespace VeskTool {

static Json PlantsToJson() {
    Json plants = Json::array();
    for (const auto& plant : PublishedPlants::All())
        plants.push_back({{"name", plant.name},
                          {"state", plant.state.empty() ? Json() : Json(plant.state)},
                          {"process", plant.process},
                          {"bus", plant.bus}});
    return {{"plants", plants}};
}

static std::string PlantsText(const Json& plants) {
    if (plants.empty())
        return "No plant is published.\n";
    std::vector<std::vector<std::string>> rows{{"NAME", "STATE", "PROCESS", "BUS"}};
    for (const Json& plant : plants)
        rows.push_back({Harmless(plant["name"].get<std::string>()),
                        plant["state"].is_null() ? "-" : Harmless(plant["state"].get<std::string>()),
                        plant["process"].dump(), Harmless(plant["bus"].get<std::string>())});
    return Joined(TableLines(rows), "\n") + "\n";
}

Action AddPlants(CLI::App& app) {
    const auto json = std::make_shared<bool>(false);
    AddJson(app, *json);
    return [json] {
        const Json facts = PlantsToJson();
        std::cout << (*json ? JsonText(facts) : PlantsText(facts["plants"])) << std::flush;
        return DONE;
    };
}

} // namespace VeskTool
