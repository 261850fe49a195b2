// The window of the journal: all writes with a filter, and putting ticked ones back through the preview.
#pragma once

#include "history/changes_window.h"
#include "history/frm_journal.h"

namespace ecu::history {

class JournalWindow {
public:
    struct Use {
        const platform::Ports& ports;
        HistoryFile& file;
        Journal& journal;
        const calibration::CalibrationImage& image;
        const calibration::Scales& scales;
        ChangesWindow& changes;
        FrmJournal& form;
    };
    explicit JournalWindow(const Use& use);

    void open();

private:
    void refresh();
    void show_rows();
    void show_state();
    void tick_all(bool ticked);
    void put_back_ticked();

    Use use_;
    std::vector<JournalRow> rows_;   // the oldest first
    std::vector<std::size_t> shown_; // of rows_, the newest first
};

} // namespace ecu::history
