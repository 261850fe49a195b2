// What the boxes of the configuration page show in demo mode, by row; the others stay as they are.
#pragma once

#include <array>
#include <string_view>

namespace ecu::configuration {

// The text of element `i` of a row; empty when it has none.
constexpr std::string_view demo_text(std::string_view key, int i) {
    struct Sample {
        std::string_view key;
        std::string_view text;
    };
    constexpr std::array<Sample, 30> samples{{
        {"EGO_SECS", "180"},   {"EGO_RATE", "10"},      {"EGO_GAIN", "0.25"},  {"EGO_A_LO", ".604"},
        {"EGO_A_HI", "1.358"}, {"ACC_SEN", "10.2"},     {"ACC_RATE", "9.2"},   {"ACC_MINP", "1.25"},
        {"ACC_MAXP", "9.50"},  {"RLI_SFT1", "6500"},    {"RLI_SFT2", "4500"},  {"RLF_HRD1", "7000"},
        {"RLF_HRD2", "7000"},  {"F_CUT_T1", "0.150"},   {"F_CUT_T2", "0.100"}, {"MIN_PRES", "29.5"},
        {"TPS_ENR", "2.5"},    {"MAX_MAP", "225.0"},    {"CRK_RPMH", "450"},   {"CRK_DEGN", "1.50"},
        {"CRK_PEGN", "1.25"},  {"CRK_ETMR", "15.0"},    {"CRK_TDEG", "6.25"},  {"TPS_BASE", "10.2"},
        {"TPS_FS", "77.4"},    {"MAP_OFST", "0.000"},   {"MAP_SCLR", "1.000"}, {"BAR_OFST", "0.000"},
        {"BAR_SCLR", "1.000"}, {"WRPM_SCL", "0.01567"},
    }};
    constexpr std::array<std::string_view, 8> low_ratios{"300", "225", "175", "115", "75", "0", "0", "0"};
    constexpr std::array<std::string_view, 8> high_ratios{"400", "275", "230", "150", "100", "0", "0", "0"};
    if (key == "RPSL") {
        return low_ratios.at(static_cast<std::size_t>(i));
    }
    if (key == "RPSH") {
        return high_ratios.at(static_cast<std::size_t>(i));
    }
    for (const Sample& sample : samples) {
        if (sample.key == key) {
            return sample.text;
        }
    }
    return {};
}

} // namespace ecu::configuration
