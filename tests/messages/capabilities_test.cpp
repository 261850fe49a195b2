#include "messages/capabilities.h"

#include "console/forms.h"
#include "support/fixture.h"
#include "support/sim_desktop.h"

#include <gtest/gtest.h>

#include <set>

namespace ecu::messages {
namespace {

// The controls whose enabled state (of frames: visible state) differs after `word` from that after `before`.
std::set<std::string> changed_by(std::uint16_t before, std::uint16_t word) {
    test::SimDesktop desktop;
    console::Forms forms{desktop};
    Capabilities capabilities(forms.registry);
    const auto states = [&forms] {
        std::map<std::string, std::pair<bool, bool>> all;
        for (const platform::Form* form : forms.registry.forms()) {
            for (const platform::Control* control : form->controls()) {
                all[form->name() + "." + control->full_name()] = {control->enabled(), control->visible()};
            }
        }
        return all;
    };
    capabilities.apply(before);
    const auto then = states();
    capabilities.apply(word);
    std::set<std::string> changed;
    for (const auto& [name, state] : states()) {
        if (state != then.at(name)) {
            changed.insert(name);
        }
    }
    return changed;
}

TEST(Capabilities, DriverCountsLeaveOnlyThatManyBoxesOfEveryPhase) {
    for (const auto& [shift, array] : {std::pair{0, "frm_tool.inj_ph_"}, std::pair{4, "frm_tool.ign_ph_"}}) {
        std::set<std::string> beyond;
        for (int phase = 0; phase < 16; ++phase) {
            for (int box = 3; box < 8; ++box) {
                beyond.insert(array + std::to_string(phase) + "(" + std::to_string(box) + ")");
            }
        }
        EXPECT_EQ(changed_by(0x3FFF, static_cast<std::uint16_t>(0x3FFF & ~(12 << shift))), beyond) << array;
        EXPECT_EQ(changed_by(0x3F88, 0x3FFF).size(), 0U) << "more drivers than boxes";
    }
}

TEST(Capabilities, EachFunctionBitActsOnItsOwnControlsOnly) {
    std::map<int, std::set<std::string>> by_bit{{14, {}}};
    for (const auto& row : test::fixture("capability_controls.csv")) {
        by_bit[std::stoi(row[0])].insert(row.begin() + 1, row.end());
    }
    for (const auto& [bit, controls] : by_bit) {
        EXPECT_EQ(changed_by(0x3F88, static_cast<std::uint16_t>(0x3F88 ^ (1 << bit))), controls) << bit;
        EXPECT_EQ(changed_by(0x0088, static_cast<std::uint16_t>(0x0088 | (1 << bit))), controls) << bit;
    }
}

} // namespace
} // namespace ecu::messages
