// The dyno tab: arming the controller for a run between two engine speeds, a row of the run's file for each reply while
// it goes on, and the curves of the newest run over those of the reference. on_row and on_finish come out of the
// handling of a reply, so nothing in them may hold the user or throw.
#pragma once

#include "diagnostics/dyno_curves.h"
#include "diagnostics/frm_diagnostics.h"
#include "diagnostics/when_free.h"
#include "logging/log_file.h"

#include <array>

namespace ecu::diagnostics {

class Dyno {
public:
    Dyno(const platform::Ports& ports, link::SharedState& state, link::EcuComm& comm, WhenFree& when_free,
         platform::Timer& timer1, const messages::EcuLiveData& live, FrmDiagnostics& form);

    void opened();
    void close_file(); // for a program that ends

    void on_row();    // a reply during a run
    void on_finish(); // a reply that says that the run is over, however often

private:
    struct Drawn { // what the drawing shows, to show it again at another size
        std::optional<std::vector<DynoSample>> newest;
        std::optional<std::vector<DynoSample>> reference;
        DynoLimits limits;
        float scale = 0;
    };

    void wire();
    void arm();
    void arm_controller(DynoLimits limits);
    bool send_limits_and_arm(DynoLimits limits);
    void cancel();
    void disarm();
    bool start_file();
    void not_armed(std::string_view why);
    std::optional<DynoLimits> limits_of_boxes(std::string& refusal) const;
    void plot_dyno_graphs();
    void draw_curves();
    void show_axes();
    void show_peaks(const DynoCurves& newest, const DynoCurves& reference);
    void save_reference();
    void save_run();
    bool copy_newest(const std::string& name, std::string_view what);
    std::string saved_name() const;
    void show_save_note();
    void follow_sample_rate();
    void mark(int index);
    void tell_later(std::string text);

    const platform::Ports& ports_;
    link::SharedState& state_;
    link::EcuComm& comm_;
    WhenFree& when_free_;
    platform::Timer& timer1_;
    const messages::EcuLiveData& live_;
    FrmDiagnostics& form_;
    logging::LogFile file_;
    float synced_at_ = 0;
    DynoLimits limits_; // the last good ones of the boxes
    bool opened_before_ = false;
    bool arming_ = false;
    bool cancel_asked_ = false; // while arming
    std::optional<Drawn> drawn_;
    DynoCurves newest_; // as drawn
    DynoCurves reference_;
    int marked_ = -1;
};

} // namespace ecu::diagnostics
