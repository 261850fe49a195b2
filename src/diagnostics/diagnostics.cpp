#include "diagnostics/diagnostics.h"

namespace ecu::diagnostics {

namespace {

constexpr int timer1_after_ms = 10;
constexpr std::string_view first_sample_rate = "250";

} // namespace

Diagnostics::Diagnostics(const Use& use)
    : use_(use), when_free_(use.ports.timers, use.comm), driver_tests_(use.ports, use.comm, when_free_, use.form),
      crank_wheel_(use.ports, use.comm, when_free_, use.live, use.samples, use.form),
      dyno_(use.ports, use.state, use.comm, when_free_, use.timer1, use.live, use.form) {
    FrmDiagnostics& form = use_.form;
    form.form.on_load = [this] { load(); };
    form.form.on_activate = [this] { activate(); };
    form.form.on_unload = [this] { leave(); };
    form.exit_button.clicked = form.menufileexit.clicked = [this] { use_.form.form.unload(); };
}

void Diagnostics::load() {
    use_.form.diagnostics_open = true;
    driver_tests_.lock();
    dyno_.opened();
}

void Diagnostics::activate() {
    use_.state.current_view = link::View::diagnostics;
    use_.form.form.set_caption("Diagnostics" + use_.state.link_title_suffix);
    use_.form.dyno_sample_rate.set_text(first_sample_rate);
}

void Diagnostics::leave() {
    crank_wheel_.halt();
    use_.form.diagnostics_open = false;
    use_.timer1.set_interval_ms(timer1_after_ms);
    use_.navigation.view_closed(use_.form.form);
}

} // namespace ecu::diagnostics
