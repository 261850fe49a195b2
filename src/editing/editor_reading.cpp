#include "editing/editing_rules.h"
#include "editing/editor.h"

#include <algorithm>
#include <optional>

namespace ecu::editing {

bool Editor::stopped() const { return exit_requested_ || state_.comm_aborted || replaced(reading_); }

// A second read asks only for what would fill a value that is still unread.
template <typename... What> bool Editor::wanted(const What&... what) const {
    return !reading_again_ ||
           std::ranges::any_of(items_, [&](const Entry& entry) { return entry.item->wants(what...); });
}

bool Editor::ask(const calibration::ReadRequest& request) {
    if (!wanted(request)) {
        return !stopped();
    }
    link_.read(calibration::read_message(request), request.reply);
    return !stopped();
}

bool Editor::ask_all(std::span<const calibration::ReadRequest> requests, std::string_view name) {
    const auto of_all = " of " + std::to_string(requests.size());
    paint_timer_->set_running(true);
    bool complete = true;
    for (std::size_t k = 0; complete && k < requests.size(); ++k) {
        progress_ = "Reading " + std::string(name) + ", " + std::to_string(k + 1) + of_all;
        if (k == 0) {
            window_.status.set_text(progress_);
        }
        complete = ask(requests[k]);
    }
    paint_timer_->set_running(false);
    return complete;
}

// The ticks come while a reply is awaited, so that painting the cells takes no time from the line.
bool Editor::read_table(const calibration::Table& row, const calibration::BlockRead& block, std::string_view name) {
    GridItem* const item = grid_of(row);
    platform::Grid* const grid = item == nullptr ? nullptr : &item->grid();
    std::optional<Repaint> repaint;
    if (grid != nullptr) {
        repaint.emplace(*grid);
    }
    platform::Grid* const below = std::exchange(filling_, grid);
    paint_timer_->set_running(true);
    const int blocks = row.cells() / block.cells;
    const bool complete = link_.read_blocks(
        block, row.base, blocks,
        [&](int k) {
            if (!name.empty()) {
                progress_ = "Reading " + std::string(name) +
                            (blocks == 1 ? "" : ", block " + std::to_string(k + 1) + " of " + std::to_string(blocks));
                if (k == 0) {
                    window_.status.set_text(progress_);
                }
            }
        },
        [this] { return stopped(); }, [&](int k) { return !wanted(row, k * block.cells, block.cells); });
    filling_ = below;
    paint_timer_->set_running(below != nullptr);
    return complete;
}

void Editor::show_progress(std::string_view text) {
    progress_ = text;
    window_.status.set_text(progress_);
}

} // namespace ecu::editing
