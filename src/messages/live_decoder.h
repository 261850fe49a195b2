// Decodes the replies by which the engine is watched: the live blocks A, 129 and 207, their rarer relatives 178 and
// 152, and the capability word 179. Fields go into EcuLiveData; what only the monitor shows is written to its labels
// here. While the plotter is the open view those labels stand still, because it reads some of them back.
// Offsets are those of the reply, 16-bit fields low byte first.
#pragma once

#include "link/frame.h"
#include "link/shared_state.h"
#include "messages/capabilities.h"
#include "messages/live_data.h"

#include <functional>
#include <vector>

namespace ecu::messages {

class LiveDecoder {
public:
    // Throws std::logic_error naming the first control that the forms lack.
    LiveDecoder(link::SharedState& state, EcuLiveData& data, const platform::FormRegistry& forms);

    // Returns false, with nothing touched, for a code that is not one of these or a wrong payload_count.
    bool decode(const link::Reply& reply, int payload_count);
    const Capabilities& capabilities() const { return capabilities_; }

    // Called with each A reply that comes while the diagnostics view is open: during a dyno run, and once it is over
    // for as long as the controller says so.
    std::function<void()> on_dyno_row;
    std::function<void()> on_dyno_finish;

private:
    static constexpr std::size_t channels = 8;
    struct ChannelLabels {
        platform::Label* inj_pw;
        platform::Label* inj_duty;
        platform::Label* ign_dwell;
        platform::Label* ign_duty;
    };
    struct InputLabel {
        unsigned bit;
        platform::Label* label;
        std::string_view set;
        std::string_view clear;
    };

    void decode_live_block(const link::Reply& reply);
    void decode_engine(const link::Reply& reply);
    void decode_position(const link::Reply& reply);
    void decode_wideband(const link::Reply& reply);
    void show_inputs();
    void follow_dyno();
    void decode_counts(const link::Reply& reply);
    void decode_outputs(const link::Reply& reply);
    void decode_idle_valve(const link::Reply& reply, std::size_t state_offset);
    void decode_channels(const link::Reply& reply);
    bool labels_follow() const { return state_.current_view != link::View::plotter; }

    link::SharedState& state_;
    EcuLiveData& data_;
    Capabilities capabilities_;
    std::array<InputLabel, 5> input_labels_;
    std::vector<platform::Label*> count_labels_; // in the order of the block's fields
    platform::Label& speed_MPH_;
    platform::Label& rpm_mph_ratio_;
    platform::Label& can_rx_frames_;
    platform::Label& egt_;
    platform::Label& dyno_stat_;
    platform::Label& dyno_samples_;
    std::array<ChannelLabels, channels> channel_labels_;
};

} // namespace ecu::messages
