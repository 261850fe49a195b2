// Families of control arrays that differ by a number in their name: inj_ph_0 to inj_ph_15, each of eight check boxes.
#pragma once

#include "platform/control.h"

#include <string>

namespace ecu::platform {

// Element n is the control array `prefix` n `suffix`; all of them have the same texts.
template <std::size_t Count, typename ControlType, std::size_t N, std::size_t... I>
std::array<ControlArray<ControlType, N>, Count>
make_numbered_arrays(Form& form, const std::string& prefix, const std::string& suffix,
                     const std::array<std::string_view, N>& texts, std::index_sequence<I...>) {
    return {{ControlArray<ControlType, N>(form, prefix + std::to_string(I) + suffix, texts)...}};
}
template <std::size_t Count, typename ControlType, std::size_t N>
std::array<ControlArray<ControlType, N>, Count> numbered_arrays(Form& form, const std::string& prefix,
                                                                const std::string& suffix = "",
                                                                const std::array<std::string_view, N>& texts = {}) {
    return make_numbered_arrays<Count, ControlType, N>(form, prefix, suffix, texts, std::make_index_sequence<Count>{});
}

} // namespace ecu::platform
