// The journal of writes and the sending of differences, of a whole console against the virtual controller.
#include "history/difference.h"
#include "history/history_bench.h"

namespace ecu::test {
namespace {

TEST_F(HistoryTest, FindsTheItemOfEveryMessageThatTheConsoleCanWrite) {
    for (const FileKey& key : calibration::Snapshot::all_keys()) {
        for (const std::int32_t raw : {1, 200}) {
            const auto written =
                calibration::written_value(link::build_request(calibration::write_request(key, raw).message));
            ASSERT_TRUE(written) << calibration::key_text(key);
            EXPECT_EQ(calibration::key_text(written->key), calibration::key_text(key));
            EXPECT_EQ(written->raw, raw);
        }
        if (key.parameter != nullptr) {
            const auto filed = calibration::written_value(
                link::build_request(calibration::file_message(*key.parameter, key.index, 0x1234)));
            ASSERT_TRUE(filed);
            EXPECT_EQ(filed->raw, key.parameter->read.width == calibration::Width::byte ? 0x34 : 0x1234);
        }
    }
    EXPECT_EQ(calibration::written_value(link::build_request(calibration::write_request(offset, -6).message))->raw, -6);
    // Live data, an element that the vector has not, an address between the tables.
    for (const link::Message& message : {link::Message{'A'}, {205, 8, 1, 0}, {'e', 0x79, 0, 1}, {'E', 0, 1, 7}}) {
        EXPECT_FALSE(calibration::written_value(link::build_request(message)));
    }
}

TEST_F(HistoryTest, TellsOfEachWriteWhatWasHeldSentAndTaken) {
    EXPECT_FALSE(std::filesystem::exists(desktop.path("history.sqlite"))); // nothing was written yet
    console->comm.poll({'A'}, 63);
    write(cell, 77); // nobody has read it before
    write(cell, 128);
    write(offset, -6);
    console->comm.poll({messages::closed_throttle.code, 0, 0, 0}, messages::closed_throttle.reply);
    wired.silence();
    desktop.on_modal("frm_Dialog", [this](Form&) { console->forms.frm_dialog.dialog_button[0].press(); });
    write(rate, 12);
    wired.speak();
    write(rate, 13);
    desktop.run_for(1.1);

    const auto all = rows();
    ASSERT_EQ(all.size(), 6U);
    EXPECT_FALSE(all[0].write.old_raw);
    EXPECT_EQ(all[0].write.sent_raw, 77);
    EXPECT_EQ(all[1].write.item, "MAPM");
    EXPECT_EQ(all[1].write.element, 5);
    EXPECT_EQ(all[1].write.old_raw, 77);
    EXPECT_EQ(all[1].write.old_text, ".602");
    EXPECT_EQ(all[1].write.sent_text, "1.000");
    EXPECT_EQ(all[1].write.place, "ECU System Console");
    EXPECT_EQ(all[1].write.time.substr(0, 17), "2021-03-05 10:00:");
    ASSERT_TRUE(all[1].answer);
    EXPECT_TRUE(all[1].answer->taken);
    EXPECT_EQ(all[1].answer->raw, 128);
    EXPECT_EQ(all[2].answer->raw, -6);
    EXPECT_EQ(all[3].write.item, "TPS_BASE");
    EXPECT_FALSE(all[3].write.sent_raw); // measured by the controller
    EXPECT_EQ(all[3].answer->raw, in_controller({.parameter = &parameter("TPS_BASE")}));
    EXPECT_FALSE(all[4].answer->taken);
    EXPECT_FALSE(all[4].answer->raw);
    EXPECT_TRUE(all[5].answer->taken);
}

TEST_F(HistoryTest, KnowsOfAWriteThatAKillLeftUnderWay) {
    write(cell, 77);
    write(cell, 78);
    wired.controller.on_request = [this](const link::Request&) { freeze(); }; // carried out, and nobody hears of it
    write(cell, 79);
    wired.controller.on_request = nullptr;
    kill();
    const auto all = rows();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[2].write.old_raw, 78);
    EXPECT_EQ(all[2].write.sent_raw, 79);
    EXPECT_FALSE(all[2].answer);
    EXPECT_EQ(all[1].answer->raw, 78); // went along with the write behind it
}

TEST_F(HistoryTest, SendsWhatIsTickedAndNothingElseAndGoesOnAfterALostLink) {
    auto read = console->send_changes.read();
    ASSERT_TRUE(read.copy);
    EXPECT_EQ(read.copy->values.size(), 2123U);
    calibration::Snapshot wanted = read.copy->values;
    wanted.put(rate, {.raw = 100});
    wanted.put(cell, {.raw = 99});
    wanted.put({.table = &table("MAPM"), .index = 6}, {.raw = 300}); // fits no byte
    wanted.put({.table = &table("MAPM"), .index = 7}, {.raw = 98});
    wanted.put(offset, {.raw = -7});
    auto lines = history::changes_to(wanted, read.copy->values);
    ASSERT_EQ(lines.size(), 5U);
    const auto line_of = [&](std::int32_t to) -> history::ChangeLine& {
        return *std::ranges::find(lines, to, &history::ChangeLine::to);
    };
    line_of(98).ticked = false;
    std::vector<int> written;
    bool silenced = false;
    wired.controller.on_request = [&](const link::Request& request) {
        if (const auto value = calibration::written_value(request)) {
            written.push_back(value->raw);
            if (!std::exchange(silenced, true)) {
                wired.silence(); // from the next one on
            }
        }
    };
    desktop.on_modal("frm_Dialog", [this](Form&) { console->forms.frm_dialog.dialog_button[0].press(); });
    auto result = console->send_changes.send(lines, read.copy->identity, "Upload of test.set");
    EXPECT_EQ(history::result_text(result).substr(0, 59),
              "1 sent and verified, 1 without an answer, 1 not sent: the l");
    EXPECT_TRUE(console->forms.frm_ecu.form.enabled());
    wired.speak();
    written.clear();
    result = console->send_changes.send(lines, read.copy->identity, "Upload of test.set");
    EXPECT_TRUE(result.complete());
    EXPECT_EQ(written.size(), 2U); // the one without an answer, and the one behind it
    EXPECT_EQ(in_controller(rate), 100);
    EXPECT_EQ(in_controller(cell), 99);
    EXPECT_EQ(in_controller(offset), 65536 - 7);
    EXPECT_EQ(line_of(300).state, LineState::unfit);
    console->journal.flush();
    EXPECT_EQ(rows().back().write.place, "Upload of test.set");

    // Another controller in the place of the one that was read, which the line itself does not tell.
    line_of(98).ticked = true;
    wired.controller.exchange(55);
    desktop.expect_box("serial number 55 answers now");
    result = console->send_changes.send(lines, read.copy->identity, "Upload of test.set");
    EXPECT_EQ(result.left, 1);
    EXPECT_EQ(written.size(), 2U);
    // Refused where a transfer is.
    console->state.demo_mode = true;
    desktop.expect_box("This program is running in demo mode");
    EXPECT_FALSE(console->send_changes.read().copy);
}

TEST_F(HistoryTest, PutsBackWhatAnEchoTookOtherwiseAndEndsAReadingThatIsNotWanted) {
    auto read = console->send_changes.read();
    ASSERT_TRUE(read.copy);
    std::vector<history::ChangeLine> lines{{.key = cell, .from = 1, .to = 99}};
    wired.controller.on_request = [this](const link::Request& request) {
        if (request[2] == calibration::write_cell) { // it keeps another value than it was sent
            desktop.line().receive(reply_frame({'e', request[3], request[4], 98}), 0.001);
            wired.silence();
        }
    };
    const auto result = console->send_changes.send(lines, read.copy->identity, "test");
    EXPECT_EQ(result.otherwise, 1);
    EXPECT_EQ(lines[0].stored, 98);
    wired.controller.on_request = nullptr;
    wired.speak();
    int seen = 0;
    read = console->send_changes.read([&](int done, int) { return (seen = done) < 10; });
    EXPECT_FALSE(read.copy);
    EXPECT_EQ(read.trouble, "");
    EXPECT_EQ(seen, 10);
    desktop.on_modal("frm_Dialog", [this](Form&) { console->forms.frm_dialog.dialog_button[0].press(); });
    bool struck = false;
    read = console->send_changes.read([&](int done, int) {
        if (done == 1000 && !std::exchange(struck, true)) {
            wired.controller.faults().strike_next(controller::Fault::lost, 10);
        }
        return true;
    });
    EXPECT_FALSE(read.copy); // older values are no reading
}

TEST_F(HistoryTest, GoesOnWithoutAFileAndTellsItOnce) {
    std::filesystem::create_directory(desktop.path("history.sqlite")); // a folder takes no rows
    desktop.expect_box("The journal of writes cannot be kept");
    for (int i = 0; i < 5; ++i) {
        write(cell, 70 + i);
    }
    desktop.run_for(20);
    EXPECT_EQ(in_controller(cell), 74);
    EXPECT_EQ(desktop.boxes().size(), 1U);
    EXPECT_EQ(console->journal.waiting(), 5U);
    std::filesystem::remove(desktop.path("history.sqlite"));
    desktop.run_for(10);
    EXPECT_EQ(console->journal.waiting(), 0U);
    const auto all = rows();
    ASSERT_EQ(all.size(), 5U);
    EXPECT_EQ(all[4].answer->raw, 74);
}

} // namespace
} // namespace ecu::test
