// The additional mapping window: reads its fourteen curves and the lambda target table at each opening, writes back
// what was changed in the order of correction_curves, keeps the graphs beside the boxes in step with what is typed, and
// shows what each page has pending.
#pragma once

#include "calibration/scales.h"
#include "editing/editing_rules.h"
#include "editing/editor.h"
#include "maps/correction_curves.h"
#include "maps/graphing.h"
#include "maps/shading.h"
#include "messages/live_data.h"

namespace ecu::maps {

using namespace editing; // what all windows of maps are made of

class AdditionalMapping {
public:
    // `legend` is the shading scale of the basic mapping window.
    AdditionalMapping(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm,
                      const calibration::Scales& scales, const messages::EcuLiveData& live, Frm2d& frm_2d,
                      Legend legend, shell::Navigation& navigation, BlockSelection& selection, Graphing& graphing,
                      MapCellColours& map_cell_colours);

    void shade_lambda_table(float low, float high);
    void draw_all_table_bars();
    void update_changed_entries() { editor_.update(); }
    // Closes the window, and the next free tick opens it: everything is read anew.
    void open_anew();
    // The read-out, on each pass of the scheduler with this view in front.
    void refresh_live();

private:
    void wire_curve(const CorrectionCurve& curve);
    void wire_target_table();
    void wire_surface();
    void key_in_box(const CorrectionCurve& curve, std::size_t index, platform::KeyPress& press);
    void prepare_window();
    void focus_shown_page();
    bool read_everything();
    void lead_to_page(std::size_t page);
    void allow_editing(bool allowed);
    void offer_resets();
    void reset_curve(const CorrectionCurve& curve);
    void reset_target_table();
    void draw_bars(const CorrectionCurve& curve);
    void draw_lambda_surface();
    void draw_everything();
    void draw_shown_page();
    void show_pending_by_page();

    const platform::Ports& ports_;
    link::SharedState& state_;
    const calibration::Scales& scales_;
    const messages::EcuLiveData& live_;
    Frm2d& form_;
    Legend legend_;
    BlockSelection& selection_;
    Graphing& graphing_;
    MapCellColours& map_cell_colours_;
    Editor editor_;
};

} // namespace ecu::maps
