// The calibration that a controller comes with: four cylinders fired in sequence, a turbocharger, a wheel of 36-1,
// a 2.5 bar manifold sensor and a wideband sensor on the CAN bus. Raw numbers, as they travel.
#include "controller/memory.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace ecu::controller {

namespace {

struct Default {
    std::string_view key;
    std::initializer_list<int> values; // the last one stands for the elements behind it too
};

const std::initializer_list<Default> parameter_defaults{
    {"ACC_SEN", {10}},    // 2.05 ms for a volt
    {"ACC_RATE", {32}},   // 3 V/s
    {"ACC_MINP", {250}},  // 0.40 ms
    {"ACC_MAXP", {5938}}, // 9.50 ms
    {"EGO_CUT", {500}},   // 0.80 ms
    {"MIN_PRES", {20}},   // 15 kPa
    {"TRGS_REV", {36}},
    {"FS_RPM", {10000}},
    {"HOT_P_PW", {1250}}, // 2 ms
    {"HOT_#P", {1}},
    {"CLD_P_PW", {3125}}, // 5 ms
    {"CLD_#P", {1}},
    {"TMP_THRS", {40}},
    {"EGO_RATE", {10}},
    {"EGO_GAIN", {16}}, // 0.25
    {"EGO_SECS", {20}},
    {"EGO_A_LO", {48}}, // 0.75
    {"EGO_A_HI", {80}}, // 1.25
    {"OPTIONS", {0}},
    {"MAP_TYPE", {1}},   // 2.5 bar
    {"FUEL_B", {16572}}, // 0.30 ms
    {"FUEL_MX", {8750}}, // 14.00 ms
    {"TPS_RPM", {31}},   // 303 rpm
    {"BAT_COMP", {63}},  // 100 us for a volt
    {"IAC_CLOS", {150}},
    {"IAC_OPEN", {200}},
    {"IAC_TPSE", {20}}, // 2 %
    {"IAC_TPSC", {31}},
    {"IAC_MAXR", {200}},
    {"IAC_ERRR", {100}},
    {"IAC_DEAD", {8}},
    {"IGN_TDWL", {320}}, // 3.20 ms
    {"IGN_MDEG", {40}},  // 10 degrees
    {"TDC_TETH", {14}},
    {"TDC_TRIM", {64}}, // 0 degrees
    {"BASE_DEG", {64}},
    {"PH_USED", {0x000F}},
    {"TACH_PH", {0x000F}},
    {"LIM_DEG", {80}},   // 20 degrees
    {"EGO_FLGS", {2}},   // CAN wideband
    {"EGO_WBL0", {87}},  // 0.68
    {"EGO_WBL1", {174}}, // 1.36
    {"TPS_BASE", {31}},
    {"TPS_FS", {209}},
    {"TPS_EGO", {179}}, // 70 %
    {"TPS_ENR", {6}},   // 2.4 %
    {"MAX_MAP", {863}}, // 225 kPa
    {"WRPM_SCL", {1027}},
    {"RLI_SFT1", {8400}},
    {"RLI_SFT2", {4500}},
    {"RLI_HRD1", {8500}},
    {"RLI_HRD2", {4600}},
    {"RLF_HRD1", {8600}},
    {"RLF_HRD2", {4700}},
    {"F_CUT_T1", {30}}, // 0.15 s
    {"F_CUT_T2", {20}},
    {"IDL_BY_I", {1}},
    {"IDL_MAXR", {32}}, // 8 degrees
    {"IDL_MAXA", {32}},
    {"CRK_RPMH", {450}},
    {"CRK_DEGN", {96}},   // 1.5
    {"CRK_PEGN", {80}},   // 1.25
    {"CRK_ETMR", {3000}}, // 15 s
    {"CRK_TDEG", {89}},   // 6.25 degrees
    {"FSHF_DEG", {60}},   // 15 degrees
    {"FSHF_CTM", {10}},   // 0.05 s
    {"FSHF_RTM", {20}},
    {"INPT_CGF", {4088}}, // maps by switch, cam by Hall sensor
    {"RPM_ACCL", {32}},   // 0.5
    {"IDL_DRPM", {1800}},
    {"BAR_OFST", {128}},  // none
    {"BAR_SCLR", {1024}}, // 1
    {"MAP_OFST", {128}},
    {"MAP_SCLR", {1024}},
    {"map_change_time", {100}}, // 0.5 s
    {"INJP", {1, 2, 4, 8, 0}},
    {"IGNP", {1, 2, 4, 8, 0}},
    {"PHBT", {0, 720, 1440, 2160, 0}}, // 180 degrees apart
    {"GPOS", {6, 7, 1, 3}},            // fuel pump, coolant fan, rpm and pressure, rpm and throttle
    {"GPOV", {0, 88, 0}},
    {"RPMS", {0, 0, 5500, 6500}},
    {"RPSL", {1760, 1104, 768, 592, 480, 0}}, // 110, 69, 48, 37 and 30 rpm for a mile per hour
    {"RPSH", {2240, 1392, 992, 752, 576, 0}},
    {"GGPO", {0, 0, 1, 2, 3}},
    {"STUT", {136, 136, 136, 136, 170}},
    {"BO_P", {3277}}, // 0.8
    {"BO_I", {819}},  // 0.2
    {"BO_D", {410}},  // 0.1
    {"BOEN", {100}},  // 110 kPa
    {"BOIS", {77}},   // 30 %
    {"BORT", {5}},
    {"BOFG", {0}},    // maps are pressures
    {"INJK", {4096}}, // 1
    {"INJO", {0}},
    {"INJL", {500}},   // 0.8 ms
    {"INJM", {12500}}, // 20 ms
};

const std::initializer_list<Default> nine_cell_defaults{
    {"CLTM", {122, 112, 102, 90, 78, 68, 64, 64, 65}}, // by coolant, -13 to 115 degrees
    {"MATM", {70, 68, 66, 65, 64, 63, 62, 61, 60}},
    {"AUXM", {64}},
    {"IGNM", {64}},
    {"IGNR", {64}},
    {"IGNT", {64, 64, 64, 64, 64, 60, 56, 48, 40}}, // hot air retards by up to 6 degrees
    {"BARG", {116, 120, 122, 124, 125, 126, 128, 128, 130}},
    {"IDLE", {175, 165, 152, 140, 128, 116, 108, 106, 108}}, // 1400 falling to 848 rpm
    {"DWEL", {64}},
    {"BARI", {64}},
    {"IGNC", {72, 72, 70, 68, 66, 64, 64, 60, 48}},
    {"IGNA", {64}},
    {"ACCC", {160, 144, 128, 108, 92, 76, 64, 64, 64}},
    {"BATD", {160, 160, 141, 115, 86, 70, 61, 54, 51}},  // by battery, 0 to 20 V
    {"CLTF", {24, 64, 84, 99, 114, 129, 149, 184, 254}}, // by resistance, 64 for 0 degrees C
    {"MATF", {24, 64, 84, 99, 114, 129, 149, 184, 254}},
};

int element(const Default& item, std::size_t index) {
    return *(item.values.begin() + std::min(index, item.values.size() - 1));
}

std::uint8_t cell_of(double raw) { return static_cast<std::uint8_t>(std::clamp(std::round(raw), 0.0, 255.0)); }

// Fills a square table column by column; `raw` is told rpm and the place on the load axis, 0 to 1.
template <typename Function>
void fill_square(ControllerMemory& memory, std::string_view key, std::size_t side, Function raw) {
    const double steps = side == 16 ? 16 : 8;
    const std::size_t base = calibration::find_table(key)->base;
    for (std::size_t column = 0; column < side; ++column) {
        for (std::size_t row = 0; row < side; ++row) {
            const double rpm = 10000.0 * static_cast<double>(column) / steps;
            memory.store_cell(base + column * side + row, cell_of(raw(rpm, static_cast<double>(row) / steps)));
        }
    }
}

double hump(double rpm) { return std::exp(-std::pow((rpm - 5200) / 3200, 2)); }

double timing_degrees(double rpm, double load) {
    const double full = 14 + 20 * std::min(1.0, rpm / 3500);
    const double light = 9 * std::max(0.0, 0.4 - load);
    const double boosted = 34 * std::max(0.0, load - 0.3);
    return rpm < 1200 ? 13 : std::clamp(full + light - boosted, 4.0, 42.0);
}

double target_kpa(double rpm) { return 100 + 80 * std::clamp((rpm - 2000) / 2300, 0.0, 1.0); }

} // namespace

void load_default_calibration(ControllerMemory& memory) {
    for (const Default& item : parameter_defaults) {
        const calibration::Parameter& row = *calibration::find_parameter(item.key);
        for (std::size_t i = 0; i < row.count; ++i) {
            memory.store(calibration::first_element(row) + i, static_cast<std::uint16_t>(element(item, i)));
        }
    }
    memory.clear_cells();
    for (const Default& item : nine_cell_defaults) {
        for (std::size_t i = 0; i < 9; ++i) {
            memory.store_cell(calibration::find_table(item.key)->base + i, static_cast<std::uint8_t>(element(item, i)));
        }
    }
    fill_square(memory, "MAPM", 16,
                [](double rpm, double load) { return 128 * (0.80 + 0.26 * hump(rpm) + 0.1 * load); });
    fill_square(memory, "IGN3", 16, [](double rpm, double load) { return (timing_degrees(rpm, load) + 16) * 4; });
    fill_square(memory, "TPFM", 16,
                [](double rpm, double open) { return 128 * (0.84 + 0.22 * hump(rpm) + 0.1 * open); });
    fill_square(memory, "TPFP", 16, [](double rpm, double open) { return 24 * open * std::max(0.0, 1 - rpm / 6000); });
    fill_square(memory, "EGOL", 9, [](double rpm, double load) {
        return load < 0.3 ? 128 : rpm > 6500 || load > 0.45 ? 0.86 * 128 : 0.93 * 128;
    });
    fill_square(memory, "GPO3", 9, [](double rpm, double load) { return 256 * load * std::min(1.0, rpm / 6000); });
    fill_square(memory, "GPO4", 9, [](double rpm, double open) { return rpm > 3000 ? 230 * open : 0; });
    for (const std::string_view key : {"BMP0", "BMP1", "BMP2", "BMP3"}) {
        const double step_down = 10.0 * (key.back() - '0');
        fill_square(memory, key, 9, [=](double rpm, double) { return target_kpa(rpm) - 10 - step_down; });
    }
}

} // namespace ecu::controller
