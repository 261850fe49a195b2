#include "messages/reply_decoders.h"

#include "link/answers.h"

#include <cstdio>

namespace ecu::messages {

namespace {

using calibration::Parameter;
using calibration::value_at;
using calibration::word_at;

constexpr std::size_t code_at = 2;
constexpr int data_at = 3;
constexpr int block_data_at = 5; // behind the address

constexpr std::array live_replies{live_block,  live_block_two,  live_block_three,
                                  live_counts, live_idle_valve, capability_word};
constexpr std::array special_replies{firmware_revision, serial_number, compatibility_word, restart,
                                     closed_throttle,   open_throttle, wheel_block};
constexpr std::array acknowledgements{fire_injectors,     fire_ignition,     dyno_setup,    dyno_control,
                                      oxygen_control_off, oxygen_control_on, session_latch, arm_capture};

constexpr const Parameter& tps_base = measured[0].row;
constexpr const Parameter& tps_fs = measured[1].row;

constexpr bool is_element(calibration::WriteForm form) {
    return form == calibration::WriteForm::element_byte || form == calibration::WriteForm::element_word;
}

// Every reply that repeats an address or an element is known as such to the link, and no other is.
consteval bool link_knows_what_replies_repeat() {
    for (int code = 0; code < 256; ++code) {
        const auto byte = static_cast<std::uint8_t>(code);
        const Parameter* written = calibration::written_by(byte);
        const bool block = std::ranges::find(calibration::block_reads, byte, &calibration::BlockRead::command) !=
                           calibration::block_reads.end();
        const link::Echo echo = byte == calibration::read_cell || byte == calibration::write_cell || block
                                    ? link::Echo::address
                                : byte == wheel_block.code || (written != nullptr && is_element(written->write.form))
                                    ? link::Echo::element
                                    : link::Echo::code_only;
        if (link::echo_of(byte) != echo) {
            return false;
        }
    }
    return std::ranges::equal(unasked, link::codes::volunteered, [](const Command& command, std::uint8_t volunteered) {
        return std::ranges::find(link::codes::volunteered, command.code) != link::codes::volunteered.end() &&
               std::ranges::find(unasked, volunteered, &Command::code) != unasked.end();
    });
}
static_assert(link_knows_what_replies_repeat());

} // namespace

std::string revision_text(std::int32_t word) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%05d", static_cast<int>(word));
    const std::string_view text = digits.data();
    return "V" + std::string(text.substr(0, 1)) + "." + std::string(text.substr(1, 2)) + "." +
           std::string(text.substr(3, 2));
}

ReplyDecoders::ReplyDecoders(const platform::Ports& ports, link::SharedState& state,
                             calibration::CalibrationImage& image, calibration::Scales& scales,
                             const platform::FormRegistry& forms, LiveReplies live)
    : ports_(ports), state_(state), image_(image), controls_(forms, scales), cells_(forms, image, scales),
      live_(std::move(live)), firmware_text_(forms.at("frm_about").at("FW_Rev")),
      serial_text_(forms.at("frm_about").at("serial_num")),
      flash_menu_(forms.at("FrmEcu").at("menu_tool_flash_utility")) {
    fill_entries();
}

void ReplyDecoders::fill_entries() {
    const auto set = [this](const Command& command, Handling handling) {
        entries_[command.code] = {handling, command.reply, {}};
    };
    for (const Command& command : live_replies) {
        set(command, Handling::live);
    }
    for (const Command& command : special_replies) {
        set(command, Handling::special);
    }
    for (const Command& command : acknowledgements) {
        set(command, Handling::acknowledged);
    }
    for (const Command& command : unasked) {
        set(command, Handling::acknowledged);
    }
    set({calibration::read_cell, calibration::cell_reply}, Handling::cell);
    set({calibration::write_cell, calibration::cell_reply}, Handling::cell);
    for (const calibration::BlockRead& block : calibration::block_reads) {
        set({block.command, block.reply()}, Handling::block);
    }
    for (const Parameter& row : calibration::parameters) {
        Entry& read = entries_[row.read.command];
        read.handling = Handling::read;
        read.payload = row.read.reply;
        read.rows.push_back(&row);
        entries_[row.write.command] = {Handling::write, row.write.reply, {&row}};
    }
}

ReplyDecoders::Stage ReplyDecoders::stage_of(std::uint8_t code) {
    if (code == live_block_two.code || code > 232) {
        return Stage::low;
    }
    if (code >= 127) {
        return Stage::high;
    }
    const bool mark = code == ' ' || code == '!' || code == '%' || code == '+' || code == '-';
    return code > 54 || mark ? Stage::live_and_table : Stage::low;
}

void ReplyDecoders::decode_live_and_table_reply(const link::Reply& reply, int payload_count) {
    decode(Stage::live_and_table, reply, payload_count);
}

void ReplyDecoders::decode_parameter_reply_high(const link::Reply& reply, int payload_count) {
    decode(Stage::high, reply, payload_count);
}

void ReplyDecoders::decode_parameter_reply_low(const link::Reply& reply, int payload_count) {
    decode(Stage::low, reply, payload_count);
}

std::array<link::Decoder, 3> ReplyDecoders::in_order() {
    return {[this](const link::Reply& reply, int count) { decode_live_and_table_reply(reply, count); },
            [this](const link::Reply& reply, int count) { decode_parameter_reply_high(reply, count); },
            [this](const link::Reply& reply, int count) { decode_parameter_reply_low(reply, count); }};
}

void ReplyDecoders::decode(Stage stage, const link::Reply& reply, int payload_count) {
    const std::uint8_t code = reply[code_at];
    const Entry& entry = entries_[code];
    if (stage_of(code) != stage || entry.handling == Handling::unknown || payload_count != entry.payload) {
        return;
    }
    if (entry.handling == Handling::live) {
        if (live_ && live_(reply, payload_count)) {
            state_.reply_accepted = true;
        }
        return;
    }
    state_.reply_accepted = true;
    switch (entry.handling) {
    case Handling::unknown:
    case Handling::live:
    case Handling::acknowledged:
        break;
    case Handling::read:
        decode_read(entry, reply);
        break;
    case Handling::write:
        decode_echo(*entry.rows.front(), reply);
        break;
    case Handling::cell:
        cells_.store_table_cell(word_at(reply, data_at), reply[block_data_at]);
        break;
    case Handling::block:
        cells_.store_block(word_at(reply, data_at),
                           std::span(reply).subspan(block_data_at, static_cast<std::size_t>(entry.payload) -
                                                                       static_cast<std::size_t>(block_data_at)));
        break;
    case Handling::special:
        decode_special(reply);
        break;
    }
}

// All values are stored before the first is shown, so that a pressure is shown by the sensor of its own reply.
void ReplyDecoders::decode_read(const Entry& entry, const link::Reply& reply) {
    for (const Parameter* row : entry.rows) {
        for (int i = 0; i < row->count; ++i) {
            image_.store(*row, i, value_at(reply, row->offset_of(i), row->read.width));
        }
    }
    for (const Parameter* row : entry.rows) {
        for (int i = 0; i < row->count; ++i) {
            controls_.show(*row, i, image_.raw(*row, i));
            if (parameter_shown) {
                parameter_shown(*row, i);
            }
        }
    }
}

// An element's index that its vector has not is taken without effect.
void ReplyDecoders::decode_echo(const Parameter& row, const link::Reply& reply) {
    const bool element = is_element(row.write.form);
    const int i = element ? reply[data_at] : 0;
    if (i >= row.count) {
        return;
    }
    const std::int32_t raw = value_at(reply, data_at + (element ? 1 : 0), row.read.width);
    image_.store(row, i, raw);
    controls_.show_echo(row, i, raw);
    if (parameter_shown) {
        parameter_shown(row, i);
    }
}

void ReplyDecoders::decode_special(const link::Reply& reply) {
    const std::uint8_t code = reply[code_at];
    if (code == firmware_revision.code || code == serial_number.code) {
        decode_identity(reply);
    } else if (code == compatibility_word.code) {
        decode_compatibility(reply);
    } else if (code == restart.code) {
        decode_restart(reply);
    } else if (code == wheel_block.code) {
        decode_wheel_block(reply);
    } else if (code == closed_throttle.code) {
        image_.store(tps_base, 0, reply[data_at]);
        controls_.show(tps_base, 0, reply[data_at]);
    } else if (code == open_throttle.code) {
        // The controller's answer to this one is shown as the raw byte, unlike its sibling's.
        image_.store(tps_fs, 0, reply[data_at]);
        controls_.show_as(tps_fs, 0, reply[data_at], calibration::as_it_stands());
    }
}

void ReplyDecoders::decode_identity(const link::Reply& reply) {
    const std::int32_t word = word_at(reply, data_at);
    if (reply[code_at] == firmware_revision.code) {
        image_.firmware_revision = word;
        state_.identity.firmware = word;
        firmware_text_.set_text(revision_text(word));
        return;
    }
    // The reply ends before the second word's high byte: what stands there is the checksum.
    const std::uint32_t high = reply[data_at + 2];
    image_.serial_number = high * 65536U + static_cast<std::uint32_t>(word);
    state_.identity.serial = image_.serial_number;
    serial_text_.set_text(std::to_string(image_.serial_number));
}

void ReplyDecoders::decode_compatibility(const link::Reply& reply) {
    const std::int32_t word = word_at(reply, data_at);
    if (word > protocol_revision) {
        ports_.dialogs.say("The ECU reports that there is an incompatibility with some internal features.  This "
                           "program is older than what is required for your ECU.");
    } else if (word < protocol_revision) {
        ports_.dialogs.say("The ECU reports that there is an incompatibility with some internal features.  Your ECU "
                           "is not up to date with features supported with this program.");
    }
}

void ReplyDecoders::decode_restart(const link::Reply& reply) {
    if (reply[data_at] == restart_now) {
        ports_.dialogs.say("The controller has been succesfully reset.");
    } else if (reply[data_at] == restart_for_flash) {
        flash_menu_.set_enabled(flash_menu_.tag() != nothing_behind);
        ports_.dialogs.say("The controller is now ready to re-flash.");
    }
    state_.last_reply_time = ports_.now();
}

void ReplyDecoders::decode_wheel_block(const link::Reply& reply) {
    const int block = reply[data_at];
    if (block >= wheel_blocks) {
        return;
    }
    for (int i = 0; i < wheel_block_samples; ++i) {
        const auto at = static_cast<std::size_t>(data_at + 1 + 2 * i);
        // High byte first, unlike all else on the line.
        wheel_.periods[static_cast<std::size_t>(block * wheel_block_samples + i)] =
            static_cast<float>(256 * reply[at] + reply[at + 1]);
    }
}

} // namespace ecu::messages
