// The three decoders to which the receiver offers each good reply in turn. A code belongs to exactly one of them, and
// to one entry there: a value or block of the parameter table, cells of table memory, or one of the few messages that
// are unlike the rest. A known code with another payload count is dropped untouched, so that the sender tries again.
// Image, spans and controls are all that a reply changes, besides reply_accepted.
#pragma once

#include "calibration/calibration_image.h"
#include "link/ecu_comm.h"
#include "messages/catalogue.h"
#include "messages/parameter_controls.h"
#include "messages/table_cells.h"
#include "messages/wheel_samples.h"

namespace ecu::messages {

// The tag of a menu item behind which there is nothing in this version: no reply enables it.
inline constexpr std::string_view nothing_behind = "nothing behind";

// 10200 is "V1.02.00".
std::string revision_text(std::int32_t word);

class ReplyDecoders {
public:
    // Decodes the live replies: true when the code and size were its own.
    using LiveReplies = std::function<bool(const link::Reply&, int payload_count)>;

    // Throws std::logic_error naming the first control that the forms lack.
    ReplyDecoders(const platform::Ports& ports, link::SharedState& state, calibration::CalibrationImage& image,
                  calibration::Scales& scales, const platform::FormRegistry& forms, LiveReplies live);

    // Letters and marks, table memory, the live block A.
    void decode_live_and_table_reply(const link::Reply& reply, int payload_count);
    // Codes 127 to 232.
    void decode_parameter_reply_high(const link::Reply& reply, int payload_count);
    // Codes 233 to 254, the numbers up to 54, and 129.
    void decode_parameter_reply_low(const link::Reply& reply, int payload_count);
    // The three in order, for EcuComm::set_decoders.
    std::array<link::Decoder, 3> in_order();

    // A reply has stored and shown element `i` of the row: for what hangs on more than the row's own control.
    std::function<void(const calibration::Parameter&, int i)> parameter_shown;

    ParameterControls& controls() { return controls_; }
    const WheelSamples& wheel_samples() const { return wheel_; }

private:
    enum class Stage : std::uint8_t { live_and_table, high, low };
    enum class Handling : std::uint8_t { unknown, live, read, write, cell, block, special, acknowledged };
    struct Entry {
        Handling handling = Handling::unknown;
        std::uint8_t payload = 0;
        std::vector<const calibration::Parameter*> rows; // all of a read, or the one written
    };

    static Stage stage_of(std::uint8_t code);
    void fill_entries();
    void decode(Stage stage, const link::Reply& reply, int payload_count);
    void decode_read(const Entry& entry, const link::Reply& reply);
    void decode_echo(const calibration::Parameter& row, const link::Reply& reply);
    void decode_special(const link::Reply& reply);
    void decode_identity(const link::Reply& reply);
    void decode_compatibility(const link::Reply& reply);
    void decode_restart(const link::Reply& reply);
    void decode_wheel_block(const link::Reply& reply);

    const platform::Ports& ports_;
    link::SharedState& state_;
    calibration::CalibrationImage& image_;
    ParameterControls controls_;
    TableCells cells_;
    WheelSamples wheel_;
    LiveReplies live_;
    platform::Control& firmware_text_;
    platform::Control& serial_text_;
    platform::Control& flash_menu_;
    std::array<Entry, 256> entries_;
};

} // namespace ecu::messages
