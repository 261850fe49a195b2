#include "history/difference.h"

#include "calibration/encoding.h"
#include "maps/correction_curves.h"
#include "maps/frm_3d.h"
#include "platform/display_mask.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>

namespace ecu::history {

using namespace calibration; // NOLINT: this file is about nothing else

namespace {

struct FormGroup {
    std::string_view form;
    std::string_view title;
};
// By the names of the main window's buttons.
constexpr std::array<FormGroup, 4> form_groups{
    {{"frm_3d", "Basic Map"}, {"frm_2d", "Additional Map"}, {"frm_sup", "GPO Drivers"}, {"frm_tool", "Configuration"}}};

struct TableTitle {
    std::string_view key;
    std::string_view title;
};
constexpr std::array<TableTitle, 13> table_titles{{{"MAPM", "Fuel Map"},
                                                   {"IGN3", "Ignition Map"},
                                                   {"TPFM", "TPS Fuel Map"},
                                                   {"TPFP", "TPS Mix Map"},
                                                   {"EGOL", "Lambda Target"},
                                                   {"GPO1", "Output 1"},
                                                   {"GPO2", "Output 2"},
                                                   {"GPO3", "Output 3"},
                                                   {"GPO4", "Output 4"},
                                                   {"BMP0", "Boost 1"},
                                                   {"BMP1", "Boost 2"},
                                                   {"BMP2", "Boost 3"},
                                                   {"BMP3", "Boost 4"}}};

const Screen& screen_of(const FileKey& key) { return key.table != nullptr ? key.table->screen : key.parameter->screen; }

std::string_view form_of(const FileKey& key) {
    return key.table != nullptr ? key.table->form : key.parameter->control.form;
}

// Where the group stands among all: the tabs of the configuration page, then the maps.
int rank_of(const FileKey& key) {
    const int tab = page_of(screen_of(key).tab);
    if (tab >= 0) {
        return tab;
    }
    const auto* form = std::ranges::find(form_groups, form_of(key), &FormGroup::form);
    return static_cast<int>(tab_captions.size()) + static_cast<int>(form - form_groups.begin());
}

const Conversion* conversion_of(const FileKey& key) {
    if (key.table != nullptr) {
        return &key.table->shown;
    }
    return key.parameter->shows_text() ? &key.parameter->shown : nullptr;
}

int decimals_of(std::string_view text) {
    const std::size_t point = text.find('.');
    return point == std::string_view::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

std::string number(const char* format, int decimals, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, decimals, value);
    return text.data();
}

std::string lower(std::string_view text) {
    std::string out(text);
    std::ranges::transform(out, out.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

Scales in_units(Scales scales, const Scales& units) {
    scales.lambda_scale = units.lambda_scale;
    scales.shows_lambda = units.shows_lambda;
    return scales;
}

} // namespace

std::string group_of(const FileKey& key) {
    const int tab = page_of(screen_of(key).tab);
    if (tab >= 0) {
        return std::string(tab_captions.at(static_cast<std::size_t>(tab)));
    }
    const auto* form = std::ranges::find(form_groups, form_of(key), &FormGroup::form);
    return form == form_groups.end() ? "Other" : std::string(form->title);
}

std::string item_of(const FileKey& key) {
    if (key.table != nullptr) {
        const auto* curve = std::ranges::find(maps::correction_curves, key.table, &maps::CorrectionCurve::table);
        if (curve != maps::correction_curves.end()) {
            return std::string(curve->title);
        }
        const auto* title = std::ranges::find(table_titles, key.table->key, &TableTitle::key);
        if (title != table_titles.end()) {
            return std::string(title->title);
        }
    }
    const std::string_view label = screen_of(key).label;
    return std::string(!label.empty() ? label : key.table != nullptr ? key.table->key : key.parameter->key);
}

std::string place_of(const FileKey& key) {
    if (key.table != nullptr) {
        return place_text(key);
    }
    return key.parameter->is_vector() ? "number " + std::to_string(key.index + 1) : std::string();
}

std::string unit_of(const FileKey& key) { return std::string(screen_of(key).unit); }

std::string value_text(const FileKey& key, std::int32_t raw, const Scales& scales) {
    if (key.parameter != nullptr && key.parameter->control.kind == ControlKind::check_box) {
        return raw == 0 ? "off" : "on";
    }
    std::string text = shown_text(key, raw, scales);
    return text.empty() ? std::to_string(raw) : text;
}

Difference difference(const FileKey& key, std::optional<std::int32_t> a, std::optional<std::int32_t> b,
                      const Scales& a_scales, const Scales& b_scales) {
    Difference out{.key = key,
                   .a_raw = a,
                   .b_raw = b,
                   .group = group_of(key),
                   .item = item_of(key),
                   .place = place_of(key),
                   .unit = unit_of(key),
                   .a = a ? value_text(key, *a, a_scales) : std::string(),
                   .b = b ? value_text(key, *b, b_scales) : std::string(),
                   .change = {},
                   .rate = {}};
    const Conversion* conversion = conversion_of(key);
    if (conversion != nullptr && a && b) {
        const double from = shown_value(*conversion, *a, a_scales);
        const double to = shown_value(*conversion, *b, b_scales);
        out.change = number("%+.*f", std::max(decimals_of(out.a), decimals_of(out.b)), to - from);
        if (from != 0) {
            out.rate = (to - from) / std::abs(from) * 100;
        }
    }
    return out;
}

std::vector<Difference> differences(const Comparison& comparison, const Snapshot& a, const Snapshot& b,
                                    const Scales& units) {
    const Scales a_scales = in_units(a.scales(), units);
    const Scales b_scales = in_units(b.scales(), units);
    std::vector<Difference> list;
    list.reserve(comparison.changed.size() + comparison.missing.size());
    for (const ChangedValue& value : comparison.changed) {
        list.push_back(difference(value.key, value.a, value.b, a_scales, b_scales));
    }
    for (const MissingValue& value : comparison.missing) {
        const bool in_a = value.missing_in == Side::b;
        const auto there = (in_a ? a : b).find(value.key);
        const std::optional<std::int32_t> raw = there ? std::optional(there->raw) : std::nullopt;
        list.push_back(difference(value.key, in_a ? raw : std::nullopt, in_a ? std::nullopt : raw, a_scales, b_scales));
    }
    std::ranges::stable_sort(list, {}, [](const Difference& one) { return rank_of(one.key); });
    return list;
}

std::string rate_text(const std::optional<double>& rate) { return rate ? number("%+.*f", 1, *rate) + " %" : ""; }

bool DifferenceFilter::passes(const Difference& one) const {
    if (!group.empty() && one.group != group) {
        return false;
    }
    if (rate > 0 && one.rate && std::abs(*one.rate) < rate) {
        return false;
    }
    return text.empty() ||
           lower(key_text(one.key) + " " + one.item + " " + one.place + " " + one.group).find(lower(text)) !=
               std::string::npos;
}

std::string summary(const Comparison& comparison, const std::string& name_a, const std::string& name_b) {
    if (comparison.same) {
        return "The same: every value is on both sides and none differs";
    }
    const auto only_in = [&](Side side) {
        return static_cast<std::size_t>(std::ranges::count_if(
            comparison.missing, [side](const MissingValue& value) { return value.missing_in != side; }));
    };
    std::string text = std::to_string(comparison.changed.size()) +
                       (comparison.changed.size() == 1 ? " value differs" : " values differ");
    const auto add = [&text](std::size_t count, const std::string& what) {
        if (count > 0) {
            text += ", " + std::to_string(count) + " " + what;
        }
    };
    add(only_in(Side::a), "only in " + name_a);
    add(only_in(Side::b), "only in " + name_b);
    add(comparison.unknown.size(), comparison.unknown.size() == 1 ? "line of an unknown key" : "lines of unknown keys");
    add(comparison.unreadable.size(), comparison.unreadable.size() == 1 ? "unreadable line" : "unreadable lines");
    return text;
}

} // namespace ecu::history
