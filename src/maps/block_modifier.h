// The block dialog: one arithmetic operation on the texts of a block's cells. The result is pending like anything
// typed, and is held or refused at the next Update.
#pragma once

#include "editing/editing_rules.h"
#include "link/shared_state.h"
#include "maps/frm_cellblock_modifier.h"
#include "platform/ports.h"

#include <array>

namespace ecu::maps {

using namespace editing; // what all windows of maps are made of

struct BlockTable {
    int id;
    std::string_view form;
    std::string_view grid;
    std::string_view title;
    std::string_view mask; // of the results
};

inline constexpr std::array<BlockTable, 13> block_tables{{
    {0, "frm_3d", "inj_map", "Fuel map", "#.000"},
    {1, "frm_sup", "GPO_tbl_0", "GPO driver table 1", "0.00"},
    {2, "frm_sup", "GPO_tbl_1", "GPO driver table 2", "0.00"},
    {3, "frm_sup", "GPO_tbl_2", "GPO driver table 3", "0.00"},
    {4, "frm_sup", "GPO_tbl_3", "GPO driver table 4", "0.00"},
    {6, "frm_3d", "ign_map", "Ignition map", "#0.00"},
    {7, "frm_3d", "TPS_map", "TPS fuel map", "#.000"},
    {8, "frm_3d", "TPS_mix", "TPS mix map", "#.000"}, // not the mask of its echo
    {9, "frm_2d", "lambda_sp_table", "Lambda set point table", "##.#0"},
    {10, "frm_sup", "boost_gpo_0", "Boost table 1", "0.00"},
    {11, "frm_sup", "boost_gpo_1", "Boost table 2", "0.00"},
    {12, "frm_sup", "boost_gpo_2", "Boost table 3", "0.00"},
    {13, "frm_sup", "boost_gpo_3", "Boost table 4", "0.00"},
}};

enum class CellOperation : std::uint8_t { cancel, multiply, add, set_all, subtract, divide };

class BlockModifier {
public:
    // Throws std::logic_error when a table's grid is in none of the registered forms.
    BlockModifier(const platform::Ports& ports, link::SharedState& state, const platform::FormRegistry& registry,
                  FrmCellblockModifier& form, BlockSelection& selection);

private:
    void open();
    void run(CellOperation operation);
    void apply(CellOperation operation);

    const platform::Ports& ports_;
    link::SharedState& state_;
    FrmCellblockModifier& form_;
    const BlockSelection& selection_;
    std::array<platform::Grid*, block_tables.size()> grids_{};
};

} // namespace ecu::maps
