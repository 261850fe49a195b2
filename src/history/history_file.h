// The history of a session folder: one SQLite file, history.sqlite, with the journal of writes, the restore points and
// the settings that hang on them. Any tool that knows SQLite reads it; docs/formats/history.md describes it. What is
// appended is whole after a kill at any moment, and what was synced after a power cut. The journal's rows are never
// changed or removed; the file's own triggers see to it. The file is made by the first thing that is to be kept: a
// folder in which nothing was written has none.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace ecu::history {

inline constexpr std::string_view history_name = "history.sqlite";
inline constexpr int history_schema = 1;
inline constexpr int history_application = 0x45435548; // "ECUH", in the file's head

// A message that sets a value, as it was before it went out.
struct WriteRow {
    std::string time;                     // "2026-11-23 08:44:56.12", this machine's
    std::string place;                    // the window that sent it, or the command
    std::string item;                     // "MAPM"
    int element = 0;                      // of a vector or table
    std::optional<std::int32_t> old_raw;  // nothing: not known
    std::string old_text;                 // in units
    std::optional<std::int32_t> sent_raw; // nothing: the controller measures the value by itself
    std::string sent_text;
    std::optional<std::uint32_t> serial; // of the controller, as far as it had told
};

// What became of it. Without one nobody was there any more to hear.
struct AnswerRow {
    bool taken = false;              // else it had no answer: the controller may hold the old value or the sent one
    std::optional<std::int32_t> raw; // what the controller holds now, by its echo
    std::string text;
};

// A write on its way into the file.
struct Pending {
    WriteRow write;
    std::optional<AnswerRow> answer;
    std::optional<std::int64_t> id; // once the write stands in the file
};

struct JournalRow {
    std::int64_t id = 0;
    WriteRow write;
    std::optional<AnswerRow> answer;
};

struct RestorePoint {
    std::int64_t id = 0;
    std::string time;
    std::string note;
    std::optional<std::int32_t> firmware;
    std::optional<std::uint32_t> serial;
    std::string setup; // the text of a setup file
};

class HistoryFile {
public:
    // Touches nothing.
    explicit HistoryFile(std::filesystem::path path);
    HistoryFile(const HistoryFile&) = delete;
    HistoryFile& operator=(const HistoryFile&) = delete;
    ~HistoryFile();

    // Appends what has no id yet, and every answer; sets the ids. All of it or nothing. `onto_disk`: past the system's
    // buffers too. Returns why it failed, empty when it is done.
    std::string append(std::span<Pending* const> rows, bool onto_disk);
    // Returns the failure; sets the point's id.
    std::string add(RestorePoint& point);
    std::string remove_point(std::int64_t id);
    std::string set_note(std::int64_t id, std::string_view note);
    std::string set_setting(std::string_view name, std::string_view value);

    // These read; a file that is not there holds nothing. `failure` is set when there is one that cannot be read.
    std::vector<JournalRow> journal(std::string& failure); // the oldest first
    std::vector<RestorePoint> points(std::string& failure);
    std::optional<RestorePoint> point(std::int64_t id, std::string& failure);
    std::string setting(std::string_view name);

    const std::filesystem::path& path() const { return path_; }

private:
    class Statement;
    struct Close {
        void operator()(sqlite3* file) const;
    };

    std::string open(bool create);
    std::string prepare_schema();
    std::string run(const char* sql);
    std::string fault(std::string_view doing) const;
    std::string change(const std::string& sql, std::span<const std::string> texts, std::optional<std::int64_t> number);
    void insert_rows(std::span<Pending* const> rows);

    std::filesystem::path path_;
    std::unique_ptr<sqlite3, Close> file_;
    std::unique_ptr<Statement> begin_, commit_, write_, answer_; // used with every append
    int syncs_ = 0;
};

} // namespace ecu::history
