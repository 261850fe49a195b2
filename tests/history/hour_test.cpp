// An hour at the engine by a script: edits with lost replies, pulled plugs and killed programs. What the journal tells
// is what the controller holds, and putting everything back brings the first image.
#include "controller/noise.h"
#include "history/difference.h"
#include "history/history_bench.h"
#include "history/restore_points.h"

namespace ecu::test {
namespace {

struct HourTest : HistoryTest {
    HourTest() : HistoryTest({.firmware = {}, .faults = one_in_a_hundred(), .pace_baud = 38400}) {}
    static controller::FaultPlan one_in_a_hundred() {
        controller::FaultPlan plan;
        plan[controller::Fault::lost] = 0.01;
        return plan;
    }
    history::ControllerCopy read() {
        for (int tries = 0; tries < 5; ++tries) {
            if (auto result = console->send_changes.read(); result.copy) {
                return std::move(*result.copy);
            }
        }
        ADD_FAILURE() << "the controller was not read";
        return {};
    }
    std::map<std::string, std::int32_t> memory() {
        std::map<std::string, std::int32_t> image;
        for (const FileKey& key : calibration::Snapshot::all_keys()) {
            image[calibration::key_text(key)] = in_controller(key);
        }
        return image;
    }
};

TEST_F(HourTest, JournalAndControllerAgreeToTheByteAndPuttingAllBackRestoresTheFirstImage) {
    const auto first = memory();
    read();
    controller::Noise noise(7);
    const auto& keys = calibration::Snapshot::all_keys();
    int edits = 0;
    int unplugs = 0;
    int kills = 0;
    const double end = desktop.seconds() + 3600;
    while (desktop.seconds() < end) {
        const FileKey& key = keys[static_cast<std::size_t>(noise.uniform() * static_cast<double>(keys.size()))];
        const std::int32_t raw = calibration::carried(key, static_cast<std::int32_t>(noise.uniform() * 200));
        ++edits;
        if (edits % 500 == 250 && unplugs < 5) {
            ++unplugs;
            desktop.on_modal("frm_Dialog", [this](Form&) {
                desktop.line().plug_in();
                console->forms.frm_dialog.dialog_button[0].press();
            });
            const bool heard = unplugs % 2 == 0; // carried out, and the plug pulled before the reply
            if (!heard) {
                desktop.line().unplug();
            }
            wired.controller.on_request = [&, pulled = !heard](const link::Request&) mutable {
                if (!std::exchange(pulled, true)) {
                    desktop.line().unplug();
                }
            };
            write(key, raw);
            wired.controller.on_request = nullptr;
            desktop.run_for(3);
        } else if (edits % 1000 == 600 && kills < 2) {
            ++kills;
            wired.controller.on_request = [&](const link::Request& request) {
                if (calibration::written_value(request)) {
                    freeze();
                }
            };
            write(key, raw);
            wired.controller.on_request = nullptr;
            kill();
            start();
            read(); // as a tuner looks first at what the controller holds
        } else {
            write(key, raw);
        }
        desktop.run_for(0.9);
    }
    EXPECT_GT(edits, 3000);
    EXPECT_EQ(unplugs, 5);
    EXPECT_EQ(kills, 2);
    ASSERT_TRUE(console->journal.flush());

    const auto all = rows();
    ASSERT_EQ(all.size(), static_cast<std::size_t>(edits)); // none is missing, none stands twice
    auto told = first;
    std::map<std::string, std::set<std::int32_t>> doubtful; // an answer that nobody heard: one or the other
    const auto as_kept = [](const history::JournalRow& row, std::int32_t raw) {
        const auto key = history::key_of(row);
        return key->table != nullptr ? raw & 0xFF : raw & 0xFFFF;
    };
    int unanswered = 0;
    for (const JournalRow& row : all) {
        const std::string item = calibration::key_text(*history::key_of(row));
        const auto may = doubtful.find(item);
        if (row.write.old_raw) { // what it says of before is what was there
            const std::int32_t old = as_kept(row, *row.write.old_raw);
            EXPECT_TRUE(may == doubtful.end() ? old == told[item] : may->second.contains(old)) << item << row.id;
            told[item] = old;
        } else {
            EXPECT_TRUE(may != doubtful.end()) << item << " " << row.id;
        }
        if (row.answer && row.answer->taken) {
            told[item] = as_kept(row, *row.answer->raw);
            EXPECT_EQ(row.answer->raw, row.write.sent_raw);
            doubtful.erase(item);
        } else {
            ++unanswered;
            doubtful[item].insert({told[item], as_kept(row, *row.write.sent_raw)});
        }
    }
    EXPECT_GE(unanswered, 4);
    const auto now = memory();
    int differing = 0;
    for (const auto& [item, raw] : now) {
        const auto may = doubtful.find(item);
        EXPECT_TRUE(may == doubtful.end() ? raw == told[item] : may->second.contains(raw)) << item;
        differing += raw != first.at(item) ? 1 : 0;
    }
    EXPECT_GT(differing, 1000);

    console->journal_window.open();
    auto& journal = console->forms.frm_journal;
    journal.journal_tick_shown.press();
    journal.journal_put_back.press();
    auto& changes = console->forms.frm_changes;
    EXPECT_EQ(changes.changes_list.rows().size(), static_cast<std::size_t>(differing));
    for (int tries = 0; tries < 5 && changes.changes_send.enabled(); ++tries) {
        changes.changes_send.press();
    }
    EXPECT_EQ(changes.changes_status.text(), std::to_string(differing) + " sent and verified");
    EXPECT_EQ(memory(), first);
}

} // namespace
} // namespace ecu::test
