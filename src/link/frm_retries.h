// The small notice that a message is being repeated. It appears with the first write of a count and goes two seconds
// later by its own timer; writes meanwhile change the count only.
#pragma once

#include "platform/control.h"
#include "platform/form.h"
#include "platform/timers.h"

#include <memory>
#include <string_view>

namespace ecu::link {

struct FrmRetries {
    platform::Form form{"frm_retries", "Attention!"};
    platform::Label retries_label{form, "retries_label", "Comm Retries"};
    platform::Label retries{form, "retries"};

    explicit FrmRetries(platform::Timers& timers);
    void write_retries(std::string_view count);

private:
    void count_up();

    std::unique_ptr<platform::Timer> timer_;
    float counter_ = 0; // seconds since the form was loaded
};

} // namespace ecu::link
