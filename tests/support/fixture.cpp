#include "support/fixture.h"

namespace ecu::test {

std::vector<std::vector<std::string>> fixture(const std::string& name) {
    std::ifstream in(ECU_FIXTURES "/" + name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with('#')) {
            std::istringstream fields(line + ";");
            rows.emplace_back();
            for (std::string field; std::getline(fields, field, ';');) {
                rows.back().push_back(field);
            }
        }
    }
    if (rows.empty()) {
        throw std::runtime_error("nothing in the fixture " + name);
    }
    return rows;
}

} // namespace ecu::test
