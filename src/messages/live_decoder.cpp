#include "messages/live_decoder.h"

#include "messages/catalogue.h"
#include "platform/display_mask.h"
#include "platform/rounding.h"

#include <algorithm>

namespace ecu::messages {

namespace {

using platform::Colour;
using platform::Label;
using platform::masked;

constexpr double seconds_per_count = 1.6e-06; // the controller's clock
constexpr double dwell_counts_per_count = 6.25;
constexpr Colour low_duty{0, 0, 255};
constexpr Colour high_duty{255, 128, 0};

int byte_at(const link::Reply& reply, std::size_t offset) { return reply[offset]; }
int word_at(const link::Reply& reply, std::size_t offset) { return reply[offset] + 256 * reply[offset + 1]; }
int signed_byte_at(const link::Reply& reply, std::size_t offset) { return static_cast<std::int8_t>(reply[offset]); }
int signed_word_at(const link::Reply& reply, std::size_t offset) {
    return static_cast<std::int16_t>(word_at(reply, offset));
}
float narrow(double value) { return static_cast<float>(value); }

// Whole numbers at the start of the replies 129 and 178, shown as they stand.
struct CountField {
    std::size_t offset;
    int width; // bytes
    std::int32_t EcuLiveData::*field;
    const char* label;
    const char* mask;
};
constexpr std::array<CountField, 8> count_fields{{
    {3, 1, &EcuLiveData::map_num, "map_num", "0"},
    {4, 2, &EcuLiveData::num_trigs, "num_trigs", "####0"},
    {6, 2, &EcuLiveData::num_cams, "num_cams", "####0"},
    {8, 1, &EcuLiveData::wheel_idx_num, "wheel_idx_num", "0"},
    {9, 1, &EcuLiveData::cam_idx_num, "cam_idx_num", "0"},
    {10, 2, &EcuLiveData::cpu_secs, "cpu_secs", "####0"},
    {12, 1, &EcuLiveData::err_flgs, "err_flgs", "##0"},
    {17, 1, &EcuLiveData::gear_number, "gear_number", "#0"},
}};

Label& monitor_label(const platform::FormRegistry& forms, std::string_view name, int index = -1) {
    return forms.get<Label>("frm_mon", name, index);
}

// Blue up to `low`, orange above it up to `high`, light red beyond.
void show_duty(Label& label, int duty, int low, int high) {
    label.set_text(masked(duty, "##0"));
    label.set_fore_colour(duty <= low ? low_duty : duty <= high ? high_duty : platform::light_red);
}

float axis_position(std::uint8_t cell, std::uint8_t remainder) { return narrow((cell + remainder / 128.0) / 16); }

} // namespace

LiveDecoder::LiveDecoder(link::SharedState& state, EcuLiveData& data, const platform::FormRegistry& forms)
    : state_(state), data_(data),
      capabilities_(forms), input_labels_{{
                                {0, &monitor_label(forms, "aux_stat"), "HIGH", "LOW"},
                                {1, &monitor_label(forms, "map_sel_stat"), "HIGH", "LOW"},
                                {2, &monitor_label(forms, "trig_b_stat"), "HIGH", "LOW"},
                                {5, &monitor_label(forms, "rev_limit_stat"), "RPM1", "RPM2"},
                                {6, &monitor_label(forms, "flat_shift_stat"), "FLAT+", "flat-"},
                            }},
      speed_MPH_(monitor_label(forms, "speed_MPH")), rpm_mph_ratio_(monitor_label(forms, "rpm_mph_ratio")),
      can_rx_frames_(monitor_label(forms, "can_rx_frames")), egt_(monitor_label(forms, "EGT")),
      dyno_stat_(forms.get<Label>("frm_diagnostics", "dyno_stat")),
      dyno_samples_(forms.get<Label>("frm_diagnostics", "dyno_samples")) {
    for (const CountField& count : count_fields) {
        count_labels_.push_back(&monitor_label(forms, count.label));
    }
    for (std::size_t i = 0; i < channels; ++i) {
        const int index = static_cast<int>(i);
        channel_labels_[i] = {&monitor_label(forms, "inj_pw", index), &monitor_label(forms, "inj_duty", index),
                              &monitor_label(forms, "ign_dwell", index), &monitor_label(forms, "ign_duty", index)};
    }
}

bool LiveDecoder::decode(const link::Reply& reply, int payload_count) {
    struct Form {
        Command command;
        void (*decode)(LiveDecoder&, const link::Reply&);
    };
    static constexpr std::array<Form, 6> forms{{
        {live_block, [](LiveDecoder& self, const link::Reply& r) { self.decode_live_block(r); }},
        {live_block_two,
         [](LiveDecoder& self, const link::Reply& r) {
             self.decode_counts(r);
             self.decode_outputs(r);
         }},
        {live_idle_valve, [](LiveDecoder& self, const link::Reply& r) { self.decode_idle_valve(r, 3); }},
        {live_counts, [](LiveDecoder& self, const link::Reply& r) { self.decode_counts(r); }},
        {capability_word,
         [](LiveDecoder& self, const link::Reply& r) {
             self.state_.capabilities_loaded = true;
             self.capabilities_.apply(static_cast<std::uint16_t>(word_at(r, 3)));
         }},
        {live_block_three, [](LiveDecoder& self, const link::Reply& r) { self.decode_channels(r); }},
    }};
    const auto form = std::ranges::find(forms, reply[2], [](const Form& row) { return row.command.code; });
    if (form == forms.end() || form->command.reply != payload_count) {
        return false;
    }
    state_.reply_accepted = true;
    form->decode(*this, reply);
    return true;
}

void LiveDecoder::decode_live_block(const link::Reply& reply) {
    data_.can_rx_frames = word_at(reply, 4);
    if (state_.current_view == link::View::monitor) {
        can_rx_frames_.set_text(masked(data_.can_rx_frames, "####0"));
    }
    decode_engine(reply);
    data_.input_flags = reply[25];
    decode_position(reply);
    data_.dyno_state = reply[47];
    data_.dyno_samples = word_at(reply, 48);
    decode_wideband(reply);
    if (labels_follow()) {
        show_inputs();
        egt_.set_text(masked(data_.egt, "###0.0"));
    }
    if (state_.current_view == link::View::diagnostics) {
        follow_dyno();
    }
}

void LiveDecoder::decode_engine(const link::Reply& reply) {
    data_.status_flags = word_at(reply, 6);
    data_.ego_lambda_setpoint = narrow(byte_at(reply, 8) / 128.0);
    if (data_.sensor_reads_lambda()) {
        data_.lambda = narrow(byte_at(reply, 9) / 128.0);
        data_.oxygen_percent = 0;
    } else {
        data_.oxygen_percent = narrow(byte_at(reply, 9) / 10.0);
        data_.lambda = lean_beyond_doubt;
    }
    data_.tps_pcnt = std::min(narrow(byte_at(reply, 10) / 64.0 * 100), 100.0F);
    data_.injector_pw = narrow(word_at(reply, 11) * seconds_per_count);
    data_.coolant_temp = static_cast<float>(signed_byte_at(reply, 13));
    data_.air_temp = static_cast<float>(signed_byte_at(reply, 14));
    data_.battery_volts = narrow(byte_at(reply, 15) / 255.0 * 20);
    data_.ego_correction_raw = reply[16];
    data_.ego_correction = narrow(reply[16] / 64.0);
    data_.map_enrichment_raw = reply[17];
    data_.map_enrichment = narrow(reply[17] / 128.0);
    data_.accel_enrichment = narrow(word_at(reply, 18) / 65535.0 * 0.104856 * 1000);
    data_.clt_enrichment = narrow(byte_at(reply, 20) / 64.0);
    data_.baro_kpa = narrow(word_at(reply, 21) / 1023.0 * 115 + 10);
    data_.ignition_timing = narrow(signed_word_at(reply, 23) / 256.0 * 64);
    data_.manifold_kpa = narrow(word_at(reply, 26) / 4.0);
    data_.engine_rpm_raw = word_at(reply, 30);
    const float raw_rpm = static_cast<float>(data_.engine_rpm_raw);
    data_.rpm_filter_state = (raw_rpm - data_.rpm_filter_state) * data_.rpm_filter_gain + data_.rpm_filter_state;
    data_.engine_rpm = data_.rpm_filter_state;
    data_.throttle_raw_percent = narrow(signed_word_at(reply, 39) / 1023.0 * 100);
    data_.throttle_percent = std::clamp(data_.throttle_raw_percent, 0.0F, 100.0F);
}

void LiveDecoder::decode_position(const link::Reply& reply) {
    data_.map_cell = reply[41];
    data_.map_rem = reply[42];
    data_.rpm_cell = reply[43];
    data_.rpm_rem = reply[44];
    data_.tps_cell = reply[45];
    data_.tps_rem = reply[46];
    data_.map_position = axis_position(data_.map_cell, data_.map_rem);
    data_.rpm_position = axis_position(data_.rpm_cell, data_.rpm_rem);
    data_.tps_position = axis_position(data_.tps_cell, data_.tps_rem);
}

void LiveDecoder::decode_wideband(const link::Reply& reply) {
    data_.wb_feedback = word_at(reply, 51);
    data_.wb_pump_current = word_at(reply, 53);
    data_.wb_pump_dac = word_at(reply, 55);
    data_.wb_heater_pw = word_at(reply, 57);
    data_.wb_heater_temp = word_at(reply, 59);
    data_.egt = narrow(word_at(reply, 61) / 16.0);
}

void LiveDecoder::show_inputs() {
    for (const InputLabel& input : input_labels_) {
        input.label->set_text(((data_.input_flags >> input.bit) & 1U) != 0 ? input.set : input.clear);
    }
}

void LiveDecoder::follow_dyno() {
    static constexpr std::array<std::string_view, 4> states{"Disarmed", "Armed", "Running", "Finished"};
    const std::size_t dyno = std::min<std::size_t>(data_.dyno_state, 3);
    const bool running = dyno == 2;
    dyno_stat_.set_text(states[dyno]);
    dyno_samples_.set_text(running ? std::to_string(data_.dyno_samples) : "---");
    if (running && on_dyno_row) {
        on_dyno_row();
    }
    if (dyno == 3 && on_dyno_finish) {
        on_dyno_finish();
    }
}

void LiveDecoder::decode_counts(const link::Reply& reply) {
    data_.speed_MPH = narrow(word_at(reply, 13) / 16.0);
    data_.rpm_mph_ratio = narrow(word_at(reply, 15) / 16.0);
    for (std::size_t i = 0; i < count_fields.size(); ++i) {
        const CountField& count = count_fields[i];
        data_.*count.field = count.width == 1 ? byte_at(reply, count.offset) : word_at(reply, count.offset);
        if (labels_follow()) {
            count_labels_[i]->set_text(masked(data_.*count.field, count.mask));
        }
    }
    if (labels_follow()) {
        speed_MPH_.set_text(masked(data_.speed_MPH, "##0.00"));
        rpm_mph_ratio_.set_text(masked(data_.rpm_mph_ratio, "####0.00"));
    }
}

void LiveDecoder::decode_outputs(const link::Reply& reply) {
    for (std::size_t i = 0; i < data_.gpo_duty.size(); ++i) {
        data_.gpo_duty[i] = narrow(byte_at(reply, 18 + i) / 255.0 * 100);
    }
    const int aux_analog = word_at(reply, 22);
    data_.aux_volts = narrow(aux_analog / 1024.0 * 3.3);
    data_.aux_egt = narrow(aux_analog / 1024.0 * 600 - 100);
    decode_idle_valve(reply, 24);
}

void LiveDecoder::decode_idle_valve(const link::Reply& reply, std::size_t state_offset) {
    data_.iac_state = byte_at(reply, state_offset);
    data_.iac_error = byte_at(reply, state_offset + 1);
    data_.iac_position = word_at(reply, state_offset + 2);
    data_.iac_rpm_setpoint = word_at(reply, state_offset + 4);
}

// The pulse words of the channels 5 to 8 and the duty bytes stand on the same bytes of the block; both are read.
void LiveDecoder::decode_channels(const link::Reply& reply) {
    const auto duty_at = [&reply](std::size_t offset) {
        return static_cast<std::int16_t>(platform::round_to_even(byte_at(reply, offset) * 100 / 255.0));
    };
    for (std::size_t i = 0; i < channels; ++i) {
        data_.inj_pw[i] = narrow(word_at(reply, 3 + 4 * i) * seconds_per_count * 1000);
        data_.inj_duty[i] = duty_at(19 + i);
        data_.ign_dwell[i] = narrow(word_at(reply, 5 + 4 * i) * seconds_per_count * 1000 * dwell_counts_per_count);
        data_.ign_duty[i] = duty_at(27 + i);
        if (labels_follow()) {
            const ChannelLabels& labels = channel_labels_[i];
            labels.inj_pw->set_text(masked(data_.inj_pw[i], "##0.000"));
            show_duty(*labels.inj_duty, data_.inj_duty[i], 75, 85);
            labels.ign_dwell->set_text(masked(data_.ign_dwell[i], "##0.000"));
            show_duty(*labels.ign_duty, data_.ign_duty[i], 40, 50);
        }
    }
}

} // namespace ecu::messages
