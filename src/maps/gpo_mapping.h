// The window of the general purpose outputs and the boost control: reads both kinds of map, the modes and the servo's
// parameters at each opening, and writes back what was changed in a fixed order. Its axes follow the modes and flags,
// chosen here or told by a reply, and each page tells in words what its channel does.
#pragma once

#include "calibration/calibration_image.h"
#include "editing/editing_rules.h"
#include "editing/editor.h"
#include "maps/frm_sup.h"
#include "maps/gpo_modes.h"
#include "messages/parameter_controls.h"

namespace ecu::maps {

using namespace editing; // what all windows of maps are made of

class GpoMapping {
public:
    static constexpr std::size_t channels = 4;

    GpoMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
               const calibration::Scales& scales, const messages::EcuLiveData& live,
               const calibration::CalibrationImage& image, messages::ParameterControls& controls, FrmSup& frm_sup,
               shell::Navigation& navigation, BlockSelection& selection);

    // All axis captions and titles, the hidden map and the single column, by mode and flag of each channel.
    void relabel_gpo_axes();
    // A reply has shown element `i` of a row. Modes, flags and spans change the axes; the first channel's flag changes
    // the unit of all boost cells.
    void follow_reply(const calibration::Parameter& row, int i);
    // Duties and markers, on each pass of the scheduler with this view in front.
    void refresh_live();

    // The channel's mode byte as the options stand, sent or not.
    int gpo_mode_byte(std::size_t channel) const { return gpo_mode_byte_.at(channel); }

private:
    void wire_switches(std::size_t n);
    void wire_tables(std::size_t n, BlockSelection& selection);
    void add_items();
    CustomItem mode_item(std::size_t n);
    CustomItem flags_item(std::size_t n);
    bool span_known() const; // of the pressure sensor; one message tells it and the full-scale speed
    void send_switches(Walk& walk, const calibration::Parameter& row, std::size_t n, std::int32_t raw);
    void clear_choice(std::size_t n);
    void lock_what_is_unread();
    std::string cell_place(std::size_t n, bool boost, int row, int column) const;
    void prepare_window();
    bool read_everything();
    void label_outputs(std::size_t n);
    void label_boost(std::size_t n);
    void show_boost_cells_anew();
    std::int32_t chosen_mode_byte(std::size_t n) const;
    // Marked, and not half of it unknown.
    bool mode_pending(std::size_t n) const {
        return mode_read_[n] && form_.gpo_mode[n][0].fore_colour() == platform::pending;
    }
    bool flags_pending(std::size_t n) const {
        return flags_read_[n] && form_.boost_ctrl_invert[n].fore_colour() == platform::pending;
    }
    void show_pages(); // words and counts
    std::string words_of_output(std::size_t n) const;
    std::string words_of_boost(std::size_t n);
    void move_markers();

    const platform::Ports& ports_;
    link::SharedState& state_;
    const calibration::Scales& scales_;
    const messages::EcuLiveData& live_;
    const calibration::CalibrationImage& image_;
    messages::ParameterControls& controls_;
    FrmSup& form_;
    std::array<int, channels> gpo_mode_byte_{};
    // Whether a reply has told the modes and flags since the opening. They look alike before and after.
    std::array<bool, channels> mode_read_{};
    std::array<bool, channels> flags_read_{};
    bool allowed_ = true;         // no opening read runs
    bool cells_are_duty_ = false; // the unit in which the confirmed boost cells are shown
    // The unit changed under pending boost cells, whose digits stayed.
    std::array<bool, channels> unit_changed_{};
    Editor editor_;
};

} // namespace ecu::maps
