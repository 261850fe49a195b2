// The window of the journal: all writes with a filter, and putting ticked ones back through the preview.
#pragma once

#include "history/changes_window.h"
#include "history/frm_journal.h"

#include <set>

namespace ecu::history {

class JournalWindow {
public:
    struct Use {
        const platform::Ports& ports;
        HistoryFile& file;
        Journal& journal;
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
    std::set<std::int64_t> ticked_;  // by their ids, whatever is shown
};

} // namespace ecu::history
