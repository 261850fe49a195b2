#include "link/frm_retries.h"

namespace ecu::link {

namespace {
constexpr int tick_ms = 250;
constexpr float tick_seconds = 0.25F;
constexpr float lifetime_seconds = 2.0F;
} // namespace

FrmRetries::FrmRetries(platform::Timers& timers) : timer_(timers.make_timer(tick_ms)) {
    timer_->on_tick = [this] { count_up(); };
    form.on_load = [this] {
        counter_ = 0;
        timer_->set_running(true);
    };
    form.on_unload = [this] { timer_->set_running(false); };
}

void FrmRetries::write_retries(std::string_view count) {
    retries.set_text(count);
    form.show();
}

void FrmRetries::count_up() {
    counter_ += tick_seconds;
    if (counter_ >= lifetime_seconds) {
        form.unload();
    }
}

} // namespace ecu::link
