#include "history/difference.h"

#include <algorithm>

namespace ecu::history {

using namespace calibration; // NOLINT: this file is about nothing else

namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string raw_text(const std::optional<std::int32_t>& raw) { return raw ? std::to_string(*raw) : ""; }

std::string with_place(const Difference& one) { return one.item + (one.place.empty() ? "" : ", " + one.place); }

// A report of a part says so.
std::string hidden_text(const std::vector<Difference>& list, const Comparison& comparison) {
    const std::size_t all = comparison.changed.size() + comparison.missing.size();
    return list.size() < all ? counted(all - list.size(), "line") + " more not shown by the filter" : "";
}

std::string csv_field(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        out += c == '"' ? "\"\"" : std::string(1, c);
    }
    return out + "\"";
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        out += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
    }
    return out;
}

} // namespace

std::vector<OddLine> odd_lines(const Comparison& comparison, const ReportNames& names) {
    std::vector<OddLine> lines;
    for (const UnknownValue& value : comparison.unknown) {
        lines.push_back({value.in == Side::a ? names.a : names.b,
                         "line " + std::to_string(value.key.line) + ": unknown key " + value.key.text});
    }
    for (const UnreadableValue& value : comparison.unreadable) {
        lines.push_back({value.in == Side::a ? names.a : names.b,
                         "line " + std::to_string(value.line.line) + ": " + value.line.key + ": " + value.line.text});
    }
    return lines;
}

std::string as_text(const std::vector<Difference>& list, const Comparison& comparison, const ReportNames& names,
                    bool raw) {
    std::string text;
    std::string group;
    const auto side = [&](const std::string& shown, const std::optional<std::int32_t>& number,
                          const std::string& name) {
        return !number ? "not in " + name
                       : shown + (raw && shown != raw_text(number) ? " [" + raw_text(number) + "]" : "");
    };
    for (const Difference& one : list) {
        if (one.group != group) {
            group = one.group;
            text += (text.empty() ? "" : "\n") + group + "\n";
        }
        text += "  " + padded(with_place(one), 44) + " " +
                padded(side(one.a, one.a_raw, names.a) + " -> " + side(one.b, one.b_raw, names.b) +
                           (one.unit.empty() ? "" : " " + one.unit),
                       30) +
                (one.change.empty() ? "" : " " + padded(one.change, 9) + " " + rate_text(one.rate));
        text.erase(text.find_last_not_of(' ') + 1);
        text += "\n";
    }
    for (const OddLine& line : odd_lines(comparison, names)) {
        text += line.side + ", " + line.text + "\n";
    }
    const std::string hidden = hidden_text(list, comparison);
    return text + (text.empty() ? "" : "\n") + summary(comparison, names.a, names.b) + "\n" +
           (hidden.empty() ? "" : hidden + "\n");
}

std::string as_csv(const std::vector<Difference>& list, const Comparison& comparison, const ReportNames& names) {
    // Behind a letter no spreadsheet takes a name for a formula.
    const ReportNames sides{"A: " + names.a, "B: " + names.b};
    std::string text = "Group,Item,Key,Place,Unit," + csv_field(sides.a) + "," + csv_field(sides.b) +
                       ",Difference,Per cent,Raw A,Raw B\r\n";
    for (const Difference& one : list) {
        std::string rate = rate_text(one.rate);
        rate = rate.substr(0, rate.find(' '));
        text += csv_field(one.group) + "," + csv_field(one.item) + "," + csv_field(key_text(one.key)) + "," +
                csv_field(one.place) + "," + csv_field(one.unit) + "," + one.a + "," + one.b + "," + one.change + "," +
                rate + "," + raw_text(one.a_raw) + "," + raw_text(one.b_raw) + "\r\n";
    }
    for (const OddLine& line : odd_lines(comparison, sides)) {
        text += csv_field(line.side) + "," + csv_field(line.text) + ",,,,,,,,,\r\n";
    }
    return text;
}

std::string as_page(const std::vector<Difference>& list, const Comparison& comparison, const ReportNames& names,
                    std::string_view date) {
    std::string page = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" + escaped(names.a) +
                       " against " + escaped(names.b) +
                       "</title><style>body{font-family:sans-serif;font-size:10pt}table{border-collapse:collapse}"
                       "td,th{border:1px solid #999;padding:2px 6px;text-align:left}td.n{text-align:right}"
                       "tr{page-break-inside:avoid}</style></head><body>\n<h1>" +
                       escaped(names.a) + " against " + escaped(names.b) + "</h1>\n<p>" + escaped(std::string(date)) +
                       ". " + escaped(summary(comparison, names.a, names.b)) + ".</p>\n";
    std::string group;
    for (const Difference& one : list) {
        if (one.group != group) {
            page += group.empty() ? "" : "</table>\n";
            group = one.group;
            page += "<h2>" + escaped(group) + "</h2>\n<table><tr><th>Item</th><th>" + escaped(names.a) + "</th><th>" +
                    escaped(names.b) + "</th><th>Unit</th><th>Difference</th><th>Per cent</th></tr>\n";
        }
        const auto cell = [](const std::string& text) { return "<td class=\"n\">" + escaped(text) + "</td>"; };
        page += "<tr><td>" + escaped(with_place(one)) + "</td>" + cell(one.a_raw ? one.a : "missing") +
                cell(one.b_raw ? one.b : "missing") + "<td>" + escaped(one.unit) + "</td>" + cell(one.change) +
                cell(rate_text(one.rate)) + "</tr>\n";
    }
    page += group.empty() ? "" : "</table>\n";
    for (const OddLine& line : odd_lines(comparison, names)) {
        page += "<p>" + escaped(line.side + ", " + line.text) + "</p>\n";
    }
    if (const std::string hidden = hidden_text(list, comparison); !hidden.empty()) {
        page += "<p>" + hidden + "</p>\n";
    }
    return page + "</body></html>\n";
}

} // namespace ecu::history
