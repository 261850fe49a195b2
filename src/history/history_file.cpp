#include "history/history_file.h"

#include <sqlite3.h>

#include <array>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace ecu::history {

namespace {

struct Failed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

constexpr int reader_patience = 2000; // ms that another program's write is waited for
// The console's own writes wait for nobody: what could not be appended comes again.
constexpr int writer_patience = 0;
constexpr int syncs_to_checkpoint = 60;

constexpr const char* schema = R"(
CREATE TABLE writes(
  id INTEGER PRIMARY KEY,
  time TEXT NOT NULL,
  place TEXT NOT NULL,
  item TEXT NOT NULL,
  element INTEGER NOT NULL,
  old_raw INTEGER,
  old_text TEXT NOT NULL,
  sent_raw INTEGER,
  sent_text TEXT NOT NULL,
  serial INTEGER);
CREATE TABLE answers(
  write INTEGER PRIMARY KEY REFERENCES writes(id),
  taken INTEGER NOT NULL,
  raw INTEGER,
  text TEXT NOT NULL);
CREATE TABLE restore_points(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  time TEXT NOT NULL,
  note TEXT NOT NULL,
  firmware INTEGER,
  serial INTEGER,
  setup TEXT NOT NULL);
CREATE TABLE settings(name TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE VIEW journal AS
  SELECT writes.*, taken, raw AS new_raw, text AS new_text
  FROM writes LEFT JOIN answers ON answers.write = writes.id;
CREATE TRIGGER writes_stay BEFORE UPDATE ON writes BEGIN SELECT RAISE(ABORT, 'the journal is never rewritten'); END;
CREATE TRIGGER writes_kept BEFORE DELETE ON writes BEGIN SELECT RAISE(ABORT, 'the journal is never rewritten'); END;
CREATE TRIGGER answers_stay BEFORE UPDATE ON answers BEGIN SELECT RAISE(ABORT, 'the journal is never rewritten'); END;
CREATE TRIGGER answers_kept BEFORE DELETE ON answers BEGIN SELECT RAISE(ABORT, 'the journal is never rewritten'); END;
)";

std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace

void HistoryFile::Close::operator()(sqlite3* file) const { sqlite3_close_v2(file); }

// A prepared statement. What fails is thrown, inside this file only.
class HistoryFile::Statement {
public:
    Statement(sqlite3* file, const std::string& sql) : file_(file) {
        sqlite3_stmt* made = nullptr;
        check(sqlite3_prepare_v2(file, sql.c_str(), -1, &made, nullptr));
        statement_.reset(made);
    }

    Statement& bind(int at, std::string_view text) {
        check(sqlite3_bind_text(statement_.get(), at, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
        return *this;
    }
    Statement& bind(int at, std::int64_t number) {
        check(sqlite3_bind_int64(statement_.get(), at, number));
        return *this;
    }
    template <typename Number> Statement& bind(int at, const std::optional<Number>& number) {
        if (number) {
            return bind(at, static_cast<std::int64_t>(*number));
        }
        check(sqlite3_bind_null(statement_.get(), at));
        return *this;
    }
    // True while there is a row.
    bool step() {
        const int outcome = sqlite3_step(statement_.get());
        if (outcome == SQLITE_ROW) {
            return true;
        }
        const std::string why = outcome == SQLITE_DONE ? "" : sqlite3_errmsg(file_);
        sqlite3_reset(statement_.get());
        if (outcome != SQLITE_DONE) {
            throw Failed(why);
        }
        return false;
    }
    std::string text(int column) const {
        const auto* bytes = sqlite3_column_text(statement_.get(), column);
        const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
        return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(bytes), length);
    }
    std::int64_t number(int column) const { return sqlite3_column_int64(statement_.get(), column); }
    template <typename Number> std::optional<Number> optional(int column) const {
        if (sqlite3_column_type(statement_.get(), column) == SQLITE_NULL) {
            return std::nullopt;
        }
        return static_cast<Number>(number(column));
    }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    void check(int outcome) const {
        if (outcome != SQLITE_OK) {
            throw Failed(sqlite3_errmsg(file_));
        }
    }
    sqlite3* file_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

HistoryFile::HistoryFile(std::filesystem::path path) : path_(std::move(path)) {}
HistoryFile::~HistoryFile() = default;

std::string HistoryFile::fault(std::string_view doing) const {
    return std::string(doing) + ": " + (file_ != nullptr ? sqlite3_errmsg(file_.get()) : "out of memory");
}

std::string HistoryFile::run(const char* sql) {
    return sqlite3_exec(file_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK ? "" : fault("it cannot be used");
}

// A reader makes no file. One that another program is just making has no schema yet: it is made only once.
std::string HistoryFile::open(bool create) {
    if (file_ != nullptr) {
        return {};
    }
    std::error_code ignored;
    if (!create && !std::filesystem::exists(path_, ignored)) {
        return {};
    }
    sqlite3* opened = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
    const int outcome = sqlite3_open_v2(utf8(path_).c_str(), &opened, flags, nullptr);
    file_.reset(opened);
    std::string why = outcome == SQLITE_OK ? prepare_schema() : fault("it cannot be opened");
    try {
        if (why.empty()) {
            begin_ = std::make_unique<Statement>(file_.get(), "BEGIN IMMEDIATE");
            commit_ = std::make_unique<Statement>(file_.get(), "COMMIT");
            write_ = std::make_unique<Statement>(
                file_.get(), "INSERT INTO writes(time, place, item, element, old_raw, old_text, sent_raw, sent_text, "
                             "serial) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)");
            answer_ = std::make_unique<Statement>(file_.get(), "INSERT INTO answers VALUES(?, ?, ?, ?)");
        }
    } catch (const Failed& failed) {
        why = failed.what();
    }
    if (!why.empty()) {
        begin_.reset();
        commit_.reset();
        write_.reset();
        answer_.reset();
        file_.reset();
    }
    return why;
}

// A commit is in the system's hands, and so past any kill; what syncs it onto the disk is append's.
std::string HistoryFile::prepare_schema() {
    sqlite3_busy_timeout(file_.get(), reader_patience);
    // A write is a row or two, and whole pages go into the log.
    std::string why = run("PRAGMA page_size = 1024; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA "
                          "wal_autocheckpoint = 0; "
                          "PRAGMA foreign_keys = OFF; BEGIN IMMEDIATE");
    if (!why.empty()) {
        return why;
    }
    try {
        Statement of_user(file_.get(), "PRAGMA user_version");
        of_user.step();
        const std::int64_t version = of_user.number(0);
        of_user.step();
        if (version > history_schema) {
            why = "it is of a newer version of this program (schema " + std::to_string(version) + ")";
        } else if (version < history_schema) {
            why = run(schema);
            if (why.empty()) {
                why = run(("PRAGMA application_id = " + std::to_string(history_application) +
                           "; PRAGMA user_version = " + std::to_string(history_schema))
                              .c_str());
            }
        }
    } catch (const Failed& failed) {
        why = failed.what();
    }
    const std::string ended = run(why.empty() ? "COMMIT" : "ROLLBACK");
    sqlite3_busy_timeout(file_.get(), writer_patience);
    return why.empty() ? ended : why;
}

void HistoryFile::insert_rows(std::span<Pending* const> rows) {
    for (Pending* row : rows) {
        const WriteRow& write = row->write;
        if (!row->id) {
            write_->bind(1, write.time)
                .bind(2, write.place)
                .bind(3, write.item)
                .bind(4, static_cast<std::int64_t>(write.element))
                .bind(5, write.old_raw)
                .bind(6, write.old_text)
                .bind(7, write.sent_raw)
                .bind(8, write.sent_text)
                .bind(9, write.serial)
                .step();
            row->id = sqlite3_last_insert_rowid(file_.get());
        }
        if (row->answer) {
            answer_->bind(1, *row->id)
                .bind(2, static_cast<std::int64_t>(row->answer->taken))
                .bind(3, row->answer->raw)
                .bind(4, row->answer->text)
                .step();
        }
    }
}

std::string HistoryFile::append(std::span<Pending* const> rows, bool onto_disk) {
    if (std::string why = open(true); !why.empty()) {
        return why;
    }
    std::vector<Pending*> fresh; // to be forgotten again if it fails
    for (Pending* row : rows) {
        if (!row->id) {
            fresh.push_back(row);
        }
    }
    std::string why;
    try {
        if (onto_disk) {
            why = run("PRAGMA synchronous = FULL");
        }
        begin_->step();
        insert_rows(rows);
        commit_->step();
    } catch (const Failed& failed) {
        why = failed.what();
        if (sqlite3_get_autocommit(file_.get()) == 0) {
            run("ROLLBACK");
        }
        for (Pending* row : fresh) {
            row->id.reset();
        }
    }
    if (onto_disk) {
        run("PRAGMA synchronous = NORMAL");
        if (why.empty() && ++syncs_ % syncs_to_checkpoint == 0) {
            // Moves what is synced into the main file, so that the log behind it begins anew.
            sqlite3_wal_checkpoint_v2(file_.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
        }
    }
    return why;
}

std::string HistoryFile::change(const std::string& sql, std::span<const std::string> texts,
                                std::optional<std::int64_t> number) {
    if (std::string why = open(true); !why.empty()) {
        return why;
    }
    sqlite3_busy_timeout(file_.get(), reader_patience);
    std::string why = run("PRAGMA synchronous = FULL");
    try {
        Statement statement(file_.get(), sql);
        int at = 0;
        for (const std::string& text : texts) {
            statement.bind(++at, text);
        }
        if (number) {
            statement.bind(++at, *number);
        }
        statement.step();
    } catch (const Failed& failed) {
        why = failed.what();
    }
    run("PRAGMA synchronous = NORMAL");
    sqlite3_busy_timeout(file_.get(), writer_patience);
    return why;
}

std::string HistoryFile::add(RestorePoint& point) {
    if (std::string why = open(true); !why.empty()) {
        return why;
    }
    sqlite3_busy_timeout(file_.get(), reader_patience);
    std::string why = run("PRAGMA synchronous = FULL");
    try {
        Statement statement(file_.get(),
                            "INSERT INTO restore_points(time, note, firmware, serial, setup) VALUES(?, ?, ?, ?, ?)");
        statement.bind(1, point.time)
            .bind(2, point.note)
            .bind(3, point.firmware)
            .bind(4, point.serial)
            .bind(5, point.setup)
            .step();
        point.id = sqlite3_last_insert_rowid(file_.get());
    } catch (const Failed& failed) {
        why = failed.what();
    }
    run("PRAGMA synchronous = NORMAL");
    sqlite3_busy_timeout(file_.get(), writer_patience);
    return why;
}

std::string HistoryFile::remove_point(std::int64_t id) {
    return change("DELETE FROM restore_points WHERE id = ?", {}, id);
}

std::string HistoryFile::set_note(std::int64_t id, std::string_view note) {
    const std::string text(note);
    return change("UPDATE restore_points SET note = ? WHERE id = ?", std::span(&text, 1), id);
}

std::string HistoryFile::set_setting(std::string_view name, std::string_view value) {
    const std::array texts{std::string(name), std::string(value)};
    return change("INSERT OR REPLACE INTO settings VALUES(?, ?)", texts, std::nullopt);
}

std::vector<JournalRow> HistoryFile::journal(std::string& failure) {
    std::vector<JournalRow> rows;
    if (failure = open(false); !failure.empty() || file_ == nullptr) {
        return rows;
    }
    try {
        Statement statement(file_.get(), "SELECT id, time, place, item, element, old_raw, old_text, sent_raw, "
                                         "sent_text, serial, taken, new_raw, new_text FROM journal ORDER BY id");
        while (statement.step()) {
            JournalRow row;
            row.id = statement.number(0);
            row.write = {.time = statement.text(1),
                         .place = statement.text(2),
                         .item = statement.text(3),
                         .element = static_cast<int>(statement.number(4)),
                         .old_raw = statement.optional<std::int32_t>(5),
                         .old_text = statement.text(6),
                         .sent_raw = statement.optional<std::int32_t>(7),
                         .sent_text = statement.text(8),
                         .serial = statement.optional<std::uint32_t>(9)};
            if (const auto taken = statement.optional<int>(10)) {
                row.answer = AnswerRow{*taken != 0, statement.optional<std::int32_t>(11), statement.text(12)};
            }
            rows.push_back(std::move(row));
        }
    } catch (const Failed& failed) {
        failure = failed.what();
    }
    return rows;
}

std::vector<RestorePoint> HistoryFile::points(std::string& failure) {
    std::vector<RestorePoint> found;
    if (failure = open(false); !failure.empty() || file_ == nullptr) {
        return found;
    }
    try {
        Statement statement(file_.get(),
                            "SELECT id, time, note, firmware, serial, setup FROM restore_points ORDER BY id");
        while (statement.step()) {
            found.push_back({.id = statement.number(0),
                             .time = statement.text(1),
                             .note = statement.text(2),
                             .firmware = statement.optional<std::int32_t>(3),
                             .serial = statement.optional<std::uint32_t>(4),
                             .setup = statement.text(5)});
        }
    } catch (const Failed& failed) {
        failure = failed.what();
    }
    return found;
}

std::optional<RestorePoint> HistoryFile::point(std::int64_t id, std::string& failure) {
    for (RestorePoint& point : points(failure)) {
        if (point.id == id) {
            return std::move(point);
        }
    }
    return std::nullopt;
}

std::string HistoryFile::setting(std::string_view name) {
    if (!open(false).empty() || file_ == nullptr) {
        return {};
    }
    try {
        Statement statement(file_.get(), "SELECT value FROM settings WHERE name = ?");
        statement.bind(1, name);
        if (statement.step()) {
            std::string value = statement.text(0);
            statement.step();
            return value;
        }
    } catch (const Failed&) { // as if it were not set
    }
    return {};
}

} // namespace ecu::history
