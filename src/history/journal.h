// The journal of writes: every parameter and cell that a message sets, with its old value, what was sent, and what the
// controller took. A write stands in the history file before its message goes out, so that not even a kill in between
// leaves a change that the journal does not know; what became of it follows with the next write, or within a second.
// A message that sets nothing costs a look into a table. A file that cannot be written is told once, and what is
// waiting for it is kept and tried again; the console goes on as ever.
#pragma once

#include "calibration/calibration_image.h"
#include "calibration/written_value.h"
#include "history/history_file.h"
#include "link/ecu_comm.h"
#include "platform/ports.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace ecu::history {

// "2026-11-23 08:44:56.12": sorts as it stands.
std::string time_stamp(const platform::Clock& clock);
std::string time_stamp(std::string_view date, float seconds_since_midnight);

class Journal {
public:
    // Looks on from now on.
    Journal(const platform::Ports& ports, const link::SharedState& state, link::EcuComm& comm,
            const calibration::CalibrationImage& image, const calibration::Scales& scales, HistoryFile& file);
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal(); // flushes

    std::function<std::string()> place;           // where a write comes from, for people; asked for each
    std::function<void(const std::string&)> warn; // once, when the file cannot be written
    std::function<void()> written;                // a message that sets a value is about to go out

    // For a sequence that belongs to no window of its own: what it sends is said to come from here.
    class From {
    public:
        From(Journal& journal, std::string from) : journal_(journal), before_(std::exchange(journal.from_, from)) {}
        ~From() { journal_.from_ = before_; }
        From(const From&) = delete;
        From& operator=(const From&) = delete;

    private:
        Journal& journal_;
        std::string before_;
    };

    // Brings all that is known onto the disk. True when nothing waits any more.
    bool flush();
    // Messages that set a value, since the start.
    std::uint64_t writes() const { return writes_; }
    // What the file could not take yet.
    std::size_t waiting() const { return waiting_.size(); }
    const std::string& failure() const { return failure_; } // the last one, empty while all is well

private:
    struct Waiting {
        Pending row;
        calibration::FileKey key;
        link::Request request{};
        bool over = false; // the message has ended
    };

    std::string stamp();
    void sending(const link::Request& request);
    void ended(const link::Observed& observed);
    void forget_doubts(const link::Request& request);
    std::optional<std::int32_t> held(const calibration::FileKey& key) const;
    std::string text_of(const calibration::FileKey& key, std::optional<std::int32_t> raw) const;
    void append(bool onto_disk);
    void tick();

    const platform::Ports& ports_;
    const link::SharedState& state_;
    link::EcuComm& comm_;
    const calibration::CalibrationImage& image_;
    const calibration::Scales& scales_;
    HistoryFile& file_;
    std::deque<Waiting> waiting_;                // the oldest first
    std::vector<Pending*> batch_;                // of append
    std::vector<calibration::FileKey> doubtful_; // written without an answer, and not read since
    std::unique_ptr<platform::Timer> timer_;
    link::Observation observation_;
    std::string from_;
    std::string date_;
    int minute_of_date_ = -1;
    std::string failure_;
    int failures_ = 0; // one after another
    bool warned_ = false;
    int ticks_ = 0;
    std::uint64_t writes_ = 0;
};

} // namespace ecu::history
