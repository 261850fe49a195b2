// The commands that read and write parameters, laid out once from the table of parameters: all that share a read stand
// in one reply, every write is answered with the value as stored. An element's echo has its index in front; an index
// outside the vector is echoed and stored nowhere.
#pragma once

#include "calibration/parameter_types.h"
#include "controller/live_blocks.h"
#include "controller/memory.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ecu::controller {

class ParameterCommands {
public:
    ParameterCommands();

    // The reply's data, or nothing when the command is no parameter's. `arguments` are the request's three bytes.
    std::optional<Data> answer(ControllerMemory& memory, std::uint8_t command,
                               std::span<const std::uint8_t, 3> arguments) const;

private:
    struct Field {
        std::size_t offset; // in the reply's data
        std::size_t slot;
        std::size_t elements;
        bool word;
    };
    struct ReadRoute {
        std::size_t size = 0; // of the reply's data; 0: no such read
        std::vector<Field> fields;
    };
    struct WriteRoute {
        const calibration::Parameter* row = nullptr;
        std::size_t slot = 0;
    };

    void add(const calibration::Parameter& row);

    std::array<ReadRoute, 256> reads_;
    std::array<WriteRoute, 256> writes_;
};

} // namespace ecu::controller
