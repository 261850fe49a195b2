// The replies that tell the engine's live state, as the data bytes behind the reply code: words low byte first, the
// scales those of the wire.
#pragma once

#include "controller/dyno_run.h"
#include "controller/engine_model.h"

#include <cstdint>
#include <vector>

namespace ecu::controller {

using Data = std::vector<std::uint8_t>;

void put_byte(Data& data, unsigned value);
void put_word(Data& data, unsigned value);
// Rounded, and held to what the field can carry.
void put_byte(Data& data, double value);
void put_word(Data& data, double value);
void put_signed_byte(Data& data, double value);
void put_signed_word(Data& data, double value);

Data live_block(const EngineState& state, const EngineCalibration& calibration, const DynoRun& dyno); // A, 60 bytes
Data second_block(const EngineState& state);                                                          // 129, 27 bytes
Data trigger_block(const EngineState& state);                                                         // 178, 15 bytes
Data idle_block(const EngineState& state);                                                            // 152, 6 bytes
// 207, 34 bytes: pulse and dwell of four channels, then the duties of all eight, four cylinders being driven. The
// words of the channels 4 to 7 would lie on the duties, and the duties have the place.
Data channel_block(const EngineState& state);

} // namespace ecu::controller
