// The fourteen correction curves of the additional mapping: one row says which table a curve is, on which page it
// stands, over what it runs, which controls show and reset it, and how its boxes answer. The rows stand in the order
// in which Update sends them; the opening reads and the graphs have orders of their own.
#pragma once

#include "calibration/parameters.h"
#include "maps/frm_2d.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace ecu::maps {

enum class CurveKeys : std::uint8_t { enter, stepped }; // stepped: Shift with an arrow steps, arrows move the focus

struct CorrectionCurve {
    const calibration::Table* table;
    std::size_t page;
    std::string_view title;
    std::string_view over; // what it runs over,
    std::string_view unit; // and in which unit
    Frm2d::Nine Frm2d::*boxes;
    platform::Picture Frm2d::*graph;
    Frm2d::Axis Frm2d::*axis;
    platform::MenuItem Frm2d::*reset;
    std::string_view reset_text;
    CurveKeys keys = CurveKeys::enter;
    bool shows_focus = false; // in red
};

inline constexpr std::string_view gain_one = "1.000";
inline constexpr std::string_view no_advance = "0.0";
inline constexpr std::string_view idle_speed = "800";

// clang-format off
inline constexpr std::array<CorrectionCurve, 14> correction_curves{{
    {&calibration::table("CLTM"), 0, "Coolant Enrichment", "Coolant Temperature", "°C", &Frm2d::clt_map, &Frm2d::clt_enr_graph,
     &Frm2d::Label6, &Frm2d::menuresetcoolant, gain_one, CurveKeys::stepped, true},
    {&calibration::table("MATM"), 0, "Air Temp Enrichment", "Manifold Air Temperature", "°C", &Frm2d::mat_data, &Frm2d::mat_enr_graph,
     &Frm2d::Label2, &Frm2d::menuresetmat, gain_one, CurveKeys::stepped, true},
    {&calibration::table("AUXM"), 0, "Aux Enrichment", "Aux Input", "V", &Frm2d::Pressure_Gain, &Frm2d::aux_enr_graph,
     &Frm2d::Label1, &Frm2d::menuresetaux, gain_one, CurveKeys::stepped, true},
    {&calibration::table("IGNM"), 1, "MAP Ignition", "Manifold Pressure", "kPa", &Frm2d::ign_map, &Frm2d::map_ign_graph,
     &Frm2d::Label4, &Frm2d::menuresetign_map, no_advance},
    {&calibration::table("IGNR"), 1, "RPM Ignition", "Engine Speed", "RPM", &Frm2d::ign_rpm, &Frm2d::rpm_ign_graph,
     &Frm2d::Label3, &Frm2d::menuresetign_rpm, no_advance},
    {&calibration::table("IGNT"), 1, "Air Temp Ignition", "Manifold Air Temperature", "°C", &Frm2d::ign_mat, &Frm2d::mat_ign_graph,
     &Frm2d::Label11, &Frm2d::menuresetign_mat, no_advance},
    {&calibration::table("BARG"), 0, "Barometric Enrichment", "Barometric Pressure", "kPa", &Frm2d::baro_gain, &Frm2d::baro_comp_graph,
     &Frm2d::Label9, &Frm2d::menureset_baro_gain, gain_one, CurveKeys::enter, true},
    {&calibration::table("IDLE"), 2, "Idle Speed", "Coolant Temperature", "°C", &Frm2d::idle_rpm_map, &Frm2d::idle_speed_graph,
     &Frm2d::Label17, &Frm2d::menuresetidle, idle_speed},
    {&calibration::table("DWEL"), 2, "Dwell Multiplier", "Manifold Pressure", "kPa", &Frm2d::dwell_map, &Frm2d::dwell_mult_graph,
     &Frm2d::Label14, &Frm2d::menureset_dwell_mult, gain_one},
    {&calibration::table("BARI"), 1, "Barometric Ignition", "Barometric Pressure", "kPa", &Frm2d::ign_bar, &Frm2d::baro_ign_graph,
     &Frm2d::Label13, &Frm2d::menuresetbaro, no_advance},
    {&calibration::table("IGNC"), 1, "Coolant Ignition", "Coolant Temperature", "°C", &Frm2d::ign_clt, &Frm2d::clt_ign_graph,
     &Frm2d::Label15, &Frm2d::menureset_CLT_ign, no_advance},
    {&calibration::table("IGNA"), 1, "Aux Ignition", "Aux Input", "V", &Frm2d::ign_aux, &Frm2d::aux_ign_graph,
     &Frm2d::Label16, &Frm2d::menureset_AUX_ign, no_advance},
    {&calibration::table("ACCC"), 0, "Accel Enrichment", "Coolant Temperature", "°C", &Frm2d::accel_map, &Frm2d::accel_clt_enr_graph,
     &Frm2d::Label10, &Frm2d::menuresetaccel, gain_one, CurveKeys::enter, true},
    {&calibration::table("BATD"), 2, "Battery Dwell Multiplier", "Battery Voltage", "V", &Frm2d::dwell_vbat, &Frm2d::dwell_vbat_mult_graph,
     &Frm2d::battery_axis, &Frm2d::menureset_vbat_dwell_mult, gain_one},
}};
// clang-format on

// In the order in which an opening reads them, and in which they stand on their pages.
inline constexpr std::array<std::string_view, 14> reading_order{"CLTM", "MATM", "BARG", "AUXM", "ACCC", "IGNM", "IGNR",
                                                                "IGNT", "IGNC", "IGNA", "BARI", "BATD", "DWEL", "IDLE"};

constexpr const CorrectionCurve& curve_of(std::string_view key) {
    return *std::ranges::find(correction_curves, key, [](const CorrectionCurve& curve) { return curve.table->key; });
}
static_assert(std::ranges::all_of(reading_order, [](std::string_view key) {
    return curve_of(key).table->key == key && std::ranges::count(reading_order, key) == 1;
}));

inline constexpr std::size_t target_page = 2; // of the lambda target table

} // namespace ecu::maps
