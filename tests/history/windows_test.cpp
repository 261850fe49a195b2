// The history's windows, of a whole console against the virtual controller: what they show, send and refuse.
#include "history/difference.h"
#include "history/history_bench.h"
#include "history/restore_points.h"

#include <sqlite3.h>

namespace ecu::test {
namespace {

struct HistoryWindowsTest : HistoryTest {
    console::Forms& forms() { return console->forms; }
    history::FrmChanges& changes() { return forms().frm_changes; }
    history::FrmCompare& compare() { return forms().frm_compare; }
    history::FrmRestorePoints& points() { return forms().frm_restore_points; }
    std::string result() { return changes().changes_status.text(); }
    void set(const FileKey& key, std::uint8_t raw) {
        controller::ControllerMemory& memory = wired.controller.memory();
        key.table != nullptr
            ? memory.store_cell(static_cast<std::size_t>(key.table->base + key.index), raw)
            : memory.store(calibration::first_element(*key.parameter) + static_cast<std::size_t>(key.index), raw);
    }
    void make_point(std::string_view note) {
        console->points_window.open();
        points().point_note.set_text(note);
        points().point_make.press();
    }
    void failing_link() {
        desktop.on_modal("frm_Dialog", [this](Form&) { forms().frm_dialog.dialog_button[0].press(); });
    }
    std::string title() { return forms().frm_ecu.form.caption(); }
    void press_key() { forms().frm_ecu.menu_tool_switch.click(); }
    const FileKey next{.table = &table("MAPM"), .index = 6};
};

TEST_F(HistoryWindowsTest, CompareListsFiltersAndSendsWhatIsTickedAndNothingElse) {
    set(cell, 100);
    set(rate, 20);
    make_point("first");
    std::string failure;
    std::string text = console->history_file.points(failure).front().setup;
    const auto replace = [&text](const std::string& from, const std::string& to) {
        ASSERT_NE(text.find(from), std::string::npos) << from;
        text.replace(text.find(from), from.size(), to);
    };
    replace("MAPM[005]=100", "MAPM[005]=110");
    replace("ACC_RATE= 20", "ACC_RATE= 30");
    replace("MAPM[006]=", "WHAT[006]=");
    desktop.write_file("b.set", text);
    console->compare_window.open();
    compare().side_point[0].press();
    desktop.choose_file("b.set");
    compare().side_file[1].press();
    EXPECT_EQ(compare().compare_summary.text(), "2 values differ, 1 only in @1, 1 line of an unknown key");
    const auto rows = [this] { return compare().compare_list.rows(); };
    ASSERT_EQ(rows().size(), 4U); // what one side lacks and what no row knows are shown too
    EXPECT_EQ(rows()[3].cells[0].substr(rows()[3].cells[0].find(':')), ": unknown key WHAT[006]");
    EXPECT_FALSE(rows()[3].tickable);
    compare().compare_text.set_text("fuel");
    compare().compare_tick_shown.press(); // the cell; B has none of the other
    compare().compare_text.set_text("filter");
    EXPECT_EQ(rows().size(), 1U);
    EXPECT_EQ(compare().compare_summary.text(), "2 values differ, 1 only in @1, 1 line of an unknown key; 1 listed; 1 "
                                                "ticked");
    std::string copied;
    compare().to_clipboard = [&copied](const std::string& all) { copied = all; };
    compare().compare_copy.press();
    EXPECT_THAT(copied, testing::HasSubstr("\n2 lines more not shown by the filter\n"));
    compare().compare_text.set_text("");
    compare().compare_rate.set_text("20");
    EXPECT_EQ(rows().front().cells[0], "Filter Rate"); // +50 %; the cell is +10 % only
    EXPECT_EQ(rows()[1].cells[3], "missing");          // what has no rate passes
    compare().compare_rate.set_text("");
    compare().compare_list.choose(1);
    const int row = calibration::map_row(table("MAPM"), 5);
    const int column = calibration::map_col(table("MAPM"), 5);
    EXPECT_EQ(compare().map_difference.cell_text(row, column), "+0.078");
    EXPECT_EQ(compare().map_difference.cell_back(row, column), (platform::Colour{255, 80, 80}));
    EXPECT_FALSE(compare().map_difference.cell_back(row, column + 1));
    EXPECT_FALSE(compare().map_a.cell_unconfirmed(row, column));

    set(cell, 90); // the preview is of what the controller holds now
    compare().compare_send.press();
    ASSERT_EQ(changes().changes_list.rows().size(), 1U);
    EXPECT_EQ(changes().changes_list.rows()[0].cells[8], "90 -> 110");
    EXPECT_EQ(in_controller(cell), 90); // nothing before Send
    changes().changes_send.press();
    EXPECT_EQ(result(), "1 sent and verified");
    EXPECT_EQ(in_controller(cell), 110);
    EXPECT_EQ(in_controller(rate), 20);
}

TEST_F(HistoryWindowsTest, UploadOfChangesKeepsAPointFirstAndGoesOnAfterALostLink) {
    set(cell, 100);
    set(next, 100);
    points().points_by_themselves.click();
    desktop.write_file("a.set", "MAPM[005]=110\r\nMAPM[006]=111\r\nACC_RATE= 33\r\nMAPM[007]=300\r\n");
    desktop.choose_file("a.set");
    forms().frm_ecu.menu_tool_upload_changes.click();
    ASSERT_EQ(changes().changes_list.rows().size(), 3U);
    EXPECT_THAT(changes().changes_source.text(), testing::EndsWith("Not among them: 1 line of a.set that no row knows "
                                                                   "or no message carries"));
    bool silenced = false; // from the second value on
    wired.controller.on_request = [&](const link::Request& request) {
        if (calibration::written_value(request) && !std::exchange(silenced, true)) {
            wired.silence();
        }
    };
    failing_link();
    const int before = static_cast<int>(rows().size());
    changes().changes_send.press();
    EXPECT_THAT(result(),
                testing::StartsWith("1 sent and verified, 1 without an answer, 1 not sent: the link was lost"));
    EXPECT_EQ(changes().changes_list.rows()[0].cells[9], "sent, verified");
    wired.controller.on_request = nullptr;
    wired.speak();
    EXPECT_EQ(changes().changes_send.text(), "&Send 2 ticked");
    changes().changes_send.press();
    EXPECT_EQ(result(), "2 sent and verified");
    EXPECT_EQ(in_controller(next), 111);
    console->journal.flush();
    EXPECT_EQ(rows().size(), static_cast<std::size_t>(before + 4));
    std::string failure;
    const auto kept = console->history_file.points(failure); // one, of what was there before the first value
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].note, "Before Upload changes of a.set");
    EXPECT_EQ(calibration::values_of(kept[0].setup).find(cell)->raw, 100);

    // What was read is not sent behind another write; nor with a view open, nor a second time inside itself.
    desktop.choose_file("a.set");
    set(cell, 100);
    forms().frm_ecu.menu_tool_upload_changes.click();
    write(rate, 1);
    changes().changes_send.press();
    EXPECT_THAT(result(), testing::StartsWith("Something else was written"));
    EXPECT_EQ(in_controller(cell), 100);
    desktop.choose_file("a.set");
    forms().frm_ecu.menu_tool_upload_changes.click();
    bool refused = false;
    wired.controller.on_request = [&](const link::Request& request) {
        if (calibration::written_value(request) && !std::exchange(refused, true)) {
            EXPECT_FALSE(changes().changes_send.enabled());
            EXPECT_FALSE(points().point_make.enabled());
            desktop.expect_box("The controller is being read or written already");
            console->two_calibrations.switch_over();
        }
    };
    changes().changes_send.press();
    EXPECT_TRUE(refused);
    EXPECT_TRUE(points().point_make.enabled());
}

TEST_F(HistoryWindowsTest, StopAndCloseEndASendingBehindTheMessageUnderWay) {
    desktop.write_file("a.set", "MAPM[005]=110\r\nMAPM[006]=111\r\nACC_RATE= 33\r\n");
    for (const bool close : {false, true}) {
        set(cell, 1);
        set(next, 1);
        set(rate, 1);
        desktop.choose_file("a.set");
        forms().frm_ecu.menu_tool_upload_changes.click();
        wired.controller.on_request = [&](const link::Request& request) {
            if (calibration::written_value(request)) {
                close ? changes().form.close_requested() : changes().changes_stop.press();
            }
        };
        if (close) { // what was left in the middle is said, since the window is gone
            desktop.expect_box("1 sent and verified, 2 not sent: stopped");
        }
        changes().changes_send.press();
        wired.controller.on_request = nullptr;
        EXPECT_THAT(result(), testing::StartsWith("1 sent and verified, 2 not sent: stopped"));
    }
}

TEST_F(HistoryWindowsTest, JournalPutsBackOneControllersRowsAsTheyWereBeforeTheFirst) {
    set(cell, 50);
    console->send_changes.read();
    write(cell, 60);
    write(cell, 70);
    write(rate, 9);
    auto& journal = forms().frm_journal;
    console->journal_window.open();
    EXPECT_EQ(journal.journal_list.rows().size(), 3U);
    EXPECT_EQ(journal.journal_list.rows()[0].cells[1], "Filter Rate"); // the newest first
    journal.journal_filter.set_text("fuel map");
    journal.journal_tick_shown.press();
    journal.journal_filter.set_text("nothing like it"); // a tick stays with its row
    EXPECT_THAT(journal.journal_status.text(), testing::HasSubstr("2 ticked"));
    journal.journal_put_back.press();
    ASSERT_EQ(changes().changes_list.rows().size(), 1U);
    EXPECT_EQ(changes().changes_list.rows()[0].cells[8], "70 -> 50");
    changes().changes_send.press();
    EXPECT_EQ(in_controller(cell), 50);
    EXPECT_EQ(in_controller(rate), 9);
    desktop.line().unplug(); // another one in its place
    wired.controller.exchange(55);
    desktop.line().plug_in();
    desktop.expect_box("These values are of the controller of serial number");
    journal.journal_put_back.press();
    EXPECT_NE(in_controller(cell), 50);
}

TEST_F(HistoryWindowsTest, SwitchesBetweenAPointAndAFileAndTellsOnlyWhatIsSure) {
    set(cell, 100);
    make_point("A");
    points().points_list.choose(0);
    desktop.expect_box("Two calibrations are needed");
    press_key();
    points().point_as_a.press();
    desktop.write_file("b.set", "MAPM[005]=120\r\n");
    desktop.choose_file("b.set");
    points().file_as_b.press();
    EXPECT_EQ(points().points_two.text(), "A: @1    B: b.set");
    press_key(); // the first time with a look; the controller holds A already
    EXPECT_THAT(title(), testing::EndsWith(" - holds A, @1"));
    press_key();
    EXPECT_EQ(in_controller(cell), 120);
    EXPECT_THAT(title(), testing::EndsWith(" - holds B, b.set"));
    write(rate, 7);
    EXPECT_THAT(title(), testing::EndsWith(" - holds B, b.set, changed since"));
    press_key(); // so it looks again, and towards A
    EXPECT_EQ(in_controller(cell), 120);
    changes().changes_send.press();
    EXPECT_EQ(in_controller(cell), 100);
    EXPECT_THAT(title(), testing::EndsWith(" - holds A, @1"));

    wired.silence();
    failing_link();
    desktop.expect_box("not communicating");
    desktop.expect_box("Nothing was sent");
    press_key();
    EXPECT_THAT(title(), testing::Not(testing::HasSubstr("holds")));
    wired.speak();
    press_key(); // still towards B, and read first
    ASSERT_EQ(changes().changes_list.rows().size(), 1U);
    changes().changes_send.press();
    EXPECT_THAT(title(), testing::EndsWith(" - holds B, b.set"));
    console->comm1->close(); // another hand may have been at the controller meanwhile
    console->link_selection.open_comm_link();
    press_key();
    EXPECT_EQ(in_controller(cell), 120);
    EXPECT_TRUE(changes().changes_send.enabled());
}

TEST_F(HistoryWindowsTest, ResetOfAMapAndAnUploadThatCannotKeepAPointAskBefore) {
    points().points_by_themselves.click();
    set(cell, 77);
    console->navigation.open(link::View::basic_mapping);
    desktop.run_for(8);
    desktop.answer_box("overwrite the Fuel table", platform::Answer::yes);
    forms().frm_3d.menuresetmap_fuel.click();
    std::string failure;
    auto kept = console->history_file.points(failure);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(calibration::values_of(kept[0].setup).find(cell)->raw, 77);
    EXPECT_EQ(calibration::values_of(kept[0].setup).size(), 256U);
    forms().frm_3d.menufileexit.click();
    desktop.run_for(0.2);
    wired.silence();
    desktop.answer_box("No restore point was made", platform::Answer::no);
    failing_link();
    desktop.expect_box("not communicating");
    forms().frm_ecu.menufileopen.click();
    EXPECT_TRUE(desktop.file_dialogs().empty());
}

// Another program's lock, a folder that takes nothing, and a file that is none.
TEST_F(HistoryWindowsTest, TwoConsolesKeepOneJournalAndABadFileIsToldAndNotTouched) {
    const auto second = [this](int raw) {
        history::HistoryFile file(desktop.folder() / history::history_name);
        history::Pending row{};
        row.write.item = "MAPM";
        row.write.element = raw;
        history::Pending* all = &row;
        return file.append(std::span(&all, 1), true);
    };
    write(cell, 1);
    EXPECT_EQ(second(1), "");
    write(cell, 2);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(desktop.path("history.sqlite").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    write(cell, 3); // for a moment
    EXPECT_EQ(console->journal.waiting(), 2U);
    ASSERT_EQ(sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr), SQLITE_OK);
    write(cell, 4); // takes the one before along, without a word
    EXPECT_EQ(rows().size(), 5U);
    EXPECT_NE(sqlite3_exec(other, "DELETE FROM writes", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_NE(sqlite3_exec(other, "UPDATE answers SET raw = 0", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    EXPECT_TRUE(console->journal.flush());

    console->comm1->close();
    console.reset();
    for (const char* suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(desktop.path(std::string("history.sqlite") + suffix));
    }
    desktop.write_file("history.sqlite", "this is a letter and no database, and longer than a header of one is");
    start();
    console->points_window.open();
    EXPECT_THAT(points().points_status.text(), testing::HasSubstr("not a database"));
    console->journal_window.open();
    EXPECT_THAT(forms().frm_journal.journal_status.text(), testing::HasSubstr("not a database"));
    desktop.expect_box("The journal of writes cannot be kept");
    write(cell, 5);
    desktop.run_for(20);
    EXPECT_EQ(in_controller(cell), 5);
    EXPECT_EQ(desktop.read_file("history.sqlite").substr(0, 16), "this is a letter");
}

} // namespace
} // namespace ecu::test
