#include "history/journal.h"

#include "calibration/snapshot.h"
#include "messages/catalogue.h"

#include <algorithm>
#include <cstdio>

namespace ecu::history {

namespace {

constexpr int tick_ms = 250;
constexpr int ticks_to_wait = 3; // for a moment outside a message: a second in all
constexpr int ticks_to_try_again = 20;
// Another program that writes at the same moment is done with the next message; a disk that is full is not.
constexpr int failures_to_give_up = 3;
constexpr std::size_t most_waiting = 50'000;
constexpr std::size_t command_at = 2;

// Which codes set a value, by their byte: the question comes with every message.
constexpr auto sets_a_value = [] {
    std::array<bool, 256> sets{};
    sets[calibration::write_cell] = true;
    for (const calibration::Parameter& row : calibration::parameters) {
        sets[row.write.command] = true;
    }
    for (const messages::Measured& measured : messages::measured) {
        sets[measured.command.code] = true;
    }
    return sets;
}();

struct Subject {
    calibration::FileKey key;
    std::optional<std::int32_t> raw;
};

std::optional<Subject> subject_of(const link::Request& request) {
    for (const messages::Measured& measured : messages::measured) {
        if (measured.command.code == request[command_at]) {
            return Subject{{.parameter = &measured.row}, std::nullopt};
        }
    }
    if (const auto written = calibration::written_value(request)) {
        return Subject{written->key, written->raw};
    }
    return std::nullopt;
}

auto same_as(const calibration::FileKey& key) {
    return [&key](const calibration::FileKey& other) {
        return other.parameter == key.parameter && other.table == key.table && other.index == key.index;
    };
}

// Whether the reply brings the item's value.
bool tells_of(const link::Request& request, const calibration::FileKey& key) {
    const std::uint8_t command = request[command_at];
    if (key.table == nullptr) {
        const auto subject = subject_of(request);
        return command == key.parameter->read.command || (subject && same_as(key)(subject->key));
    }
    const auto* block = std::ranges::find(calibration::block_reads, command, &calibration::BlockRead::command);
    const int cells = block != calibration::block_reads.end()                                   ? block->cells
                      : command == calibration::read_cell || command == calibration::write_cell ? 1
                                                                                                : 0;
    const int first = request[command_at + 1] + 256 * request[command_at + 2];
    const int address = key.table->base + key.index;
    return address >= first && address < first + cells;
}

} // namespace

std::string time_stamp(const platform::Clock& clock) {
    return time_stamp(clock.date_text(), clock.seconds_since_midnight());
}

// `date` is mm-dd-yyyy.
std::string time_stamp(std::string_view date, float seconds_since_midnight) {
    const int hundredths = static_cast<int>(seconds_since_midnight * 100);
    const int seconds = hundredths / 100;
    std::array<char, 40> time{};
    std::snprintf(time.data(), time.size(), " %02d:%02d:%02d.%02d", seconds / 3600, seconds / 60 % 60, seconds % 60,
                  hundredths % 100);
    return std::string(date.substr(6)) + "-" + std::string(date.substr(0, 5)) + time.data();
}

Journal::Journal(const platform::Ports& ports, const link::SharedState& state, link::EcuComm& comm,
                 const calibration::CalibrationImage& image, const calibration::Scales& scales, HistoryFile& file)
    : ports_(ports), state_(state), comm_(comm), image_(image), scales_(scales), file_(file),
      timer_(ports.timers.make_timer(tick_ms)) {
    comm_.before_sending = [this](const link::Request& request) {
        if (sets_a_value[request[command_at]]) {
            sending(request);
        }
    };
    observation_ = comm_.observe([this](const link::Observed& observed) {
        if (observed.verdict == link::Verdict::accepted && !doubtful_.empty()) {
            forget_doubts(observed.request);
        }
        if (sets_a_value[observed.request[command_at]] &&
            (observed.verdict == link::Verdict::accepted || observed.verdict == link::Verdict::given_up)) {
            ended(observed);
        }
    });
    timer_->on_tick = [this] { tick(); };
}

Journal::~Journal() {
    comm_.before_sending = nullptr;
    flush();
}

std::optional<std::int32_t> Journal::held(const calibration::FileKey& key) const {
    if (std::ranges::find_if(doubtful_, same_as(key)) != doubtful_.end()) {
        return std::nullopt;
    }
    if (key.table != nullptr) {
        const int address = key.table->base + key.index;
        return image_.cell_known(address) ? std::optional<std::int32_t>(image_.cell(address)) : std::nullopt;
    }
    return image_.known(*key.parameter, key.index) ? std::optional(image_.raw(*key.parameter, key.index))
                                                   : std::nullopt;
}

std::string Journal::text_of(const calibration::FileKey& key, std::optional<std::int32_t> raw) const {
    return raw ? calibration::shown_text(key, *raw, scales_) : std::string();
}

// The system takes its time over a date, and a message waits: it is asked once a minute.
std::string Journal::stamp() {
    const float now = ports_.clock.seconds_since_midnight();
    if (const int minute = static_cast<int>(now / 60); minute != minute_of_date_) {
        date_ = ports_.clock.date_text();
        minute_of_date_ = minute;
    }
    return time_stamp(date_, now);
}

void Journal::sending(const link::Request& request) {
    const auto subject = subject_of(request);
    if (!subject) {
        return;
    }
    ++writes_;
    if (written) {
        written();
    }
    const auto& key = subject->key;
    const auto old = held(key);
    Waiting waiting{.row = {.write = {.time = stamp(),
                                      .place = !from_.empty() ? from_
                                               : place        ? place()
                                                              : std::string(),
                                      .item = std::string(key.table != nullptr ? key.table->key : key.parameter->key),
                                      .element = key.index,
                                      .old_raw = old,
                                      .old_text = text_of(key, old),
                                      .sent_raw = subject->raw,
                                      .sent_text = text_of(key, subject->raw),
                                      .serial = state_.identity.serial},
                            .answer = {},
                            .id = {}},
                    .key = key,
                    .request = request};
    waiting_.push_back(std::move(waiting));
    if (waiting_.size() > most_waiting) {
        waiting_.pop_front();
    }
    if (failures_ < failures_to_give_up) {
        append(false);
    }
    if (!timer_->running()) {
        ticks_ = 0;
        timer_->set_running(true);
    }
}

// What an accepted message has read or set is known again.
void Journal::forget_doubts(const link::Request& request) {
    std::erase_if(doubtful_, [&](const calibration::FileKey& key) { return tells_of(request, key); });
}

// The latest of that request that is still open: one message may be inside another's waits.
void Journal::ended(const link::Observed& observed) {
    const auto found = std::find_if(waiting_.rbegin(), waiting_.rend(), [&](const Waiting& waiting) {
        return !waiting.over && waiting.request == observed.request;
    });
    if (found == waiting_.rend()) {
        return;
    }
    found->over = true;
    AnswerRow answer{.taken = observed.verdict == link::Verdict::accepted, .raw = {}, .text = {}};
    if (answer.taken) {
        answer.raw = held(found->key);
        answer.text = text_of(found->key, answer.raw);
    }
    found->row.answer = std::move(answer);
    if (observed.verdict == link::Verdict::given_up) {
        doubtful_.push_back(found->key);
    }
}

// What stands in the file and is over needs nothing more.
void Journal::append(bool onto_disk) {
    batch_.clear();
    for (Waiting& waiting : waiting_) {
        if (!waiting.row.id || waiting.over) {
            batch_.push_back(&waiting.row);
        }
    }
    if (batch_.empty()) {
        return;
    }
    failure_ = file_.append(batch_, onto_disk);
    failures_ = failure_.empty() ? 0 : failures_ + 1;
    if (failures_ == 0) {
        std::erase_if(waiting_, [](const Waiting& waiting) { return waiting.over; });
    }
}

bool Journal::flush() {
    if (!waiting_.empty()) {
        append(true);
    }
    return waiting_.empty();
}

// A moment between two messages is the best one for the disk, but within a second it is done in any case; what arrives
// meanwhile waits in the port.
void Journal::tick() {
    if (++ticks_ < (failures_ >= failures_to_give_up ? ticks_to_try_again : comm_.busy() ? ticks_to_wait : 1)) {
        return;
    }
    ticks_ = 0;
    append(true);
    if (waiting_.empty()) {
        timer_->set_running(false);
    }
    if (failures_ >= failures_to_give_up && !warned_ && warn && !comm_.busy()) {
        warned_ = true;
        warn("The journal of writes cannot be kept in " + std::string(history_name) + ": " + failure_ +
             ".\nThe console goes on without it. Make room or make the folder writable; what is written meanwhile is "
             "kept until the end of the program, and goes into the journal as soon as it can.");
    }
}

} // namespace ecu::history
