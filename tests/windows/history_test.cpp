// The windows of the history with what a season brings: two points that differ, a journal, changes to be sent.
#include "calibration/written_value.h"
#include "console/console.h"
#include "desktop/list_view.h"
#include "desktop/windows/desktop_console.h"
#include "windows/window_bench.h"

#include <QClipboard>
#include <QScrollArea>
#include <QTabWidget>
#include <QTemporaryDir>

namespace ecu::desktop {
namespace {

using calibration::FileKey;

std::string setup(bool tuned) {
    std::string text;
    for (const FileKey& key : calibration::Snapshot::all_keys()) {
        const bool fuel = key.table != nullptr && key.table->key == "MAPM";
        int raw = fuel ? 100 + key.index % 16 + key.index / 16 : 100;
        raw += tuned && fuel && key.index % 16 < 10 ? key.index % 16 - 5 : tuned && key.index % 40 == 3 ? 7 : 0;
        text += key.table != nullptr ? calibration::file_line(*key.table, key.index, raw)
                                     : calibration::file_line(*key.parameter, key.index, raw);
    }
    return text;
}

struct HistoryWindows : testing::Test {
    QTemporaryDir folder;
    const QString before = QDir::currentPath();
    const bool there = QDir::setCurrent(folder.path());
    DesktopConsole desktop;
    console::Console& console = desktop.console();
    console::Forms& forms = console.forms;

    HistoryWindows() {
        history::HistoryFile file(history::history_name);
        for (const bool tuned : {false, true}) {
            history::RestorePoint point{.time = tuned ? "2026-11-23 10:31:02.40" : "2026-11-21 18:05:00.00",
                                        .note = tuned ? "richer at 4000, colder plugs" : "as it came off the dyno",
                                        .firmware = 10200,
                                        .serial = 4711,
                                        .setup = setup(tuned) + (tuned ? "NEW_KEY = 7\r\n" : "")};
            EXPECT_EQ(file.add(point), "");
        }
    }
    ~HistoryWindows() override {
        for (platform::Form* form : shown()) {
            form->hide();
        }
        QTest::qWait(1);
        QDir::setCurrent(before);
    }
    std::array<platform::Form*, 4> shown() {
        return {&forms.frm_compare.form, &forms.frm_changes.form, &forms.frm_restore_points.form,
                &forms.frm_journal.form};
    }
    FormWindow& window(platform::Form& form) { return desktop.host().window_of(form); }
    void look(platform::Form& form, const QString& name, QSize size = {}) {
        window(form).setObjectName(name);
        save_picture(window(form), size);
        window(form).setObjectName(QString::fromStdString(form.name()));
    }
    void compare_points() {
        console.compare_window.open();
        forms.frm_compare.side_point_number[0].set_text("1");
        forms.frm_compare.side_point[0].press();
        forms.frm_compare.side_point[1].press();
    }
    void keep_journal() {
        std::vector<history::Pending> rows;
        for (int i = 0; i < 30; ++i) {
            history::Pending row{
                .write = {.time = "2026-11-23 10:3" + std::to_string(i / 10) + ":1" + std::to_string(i % 10) + ".20",
                          .place = i < 20 ? "Basic Map" : "Upload changes of tune1.set",
                          .item = i % 3 == 0 ? "ACC_RATE" : "MAPM",
                          .element = i % 3 == 0 ? 0 : i,
                          .old_raw = i == 4 ? std::nullopt : std::optional(100 + i),
                          .old_text = i == 4 ? "" : "0.812",
                          .sent_raw = 103 + i,
                          .sent_text = "0.836",
                          .serial = 4711},
                .answer = history::AnswerRow{i != 7, 103 + i, "0.836"},
                .id = {}};
            rows.push_back(std::move(row));
        }
        std::vector<history::Pending*> all;
        for (history::Pending& row : rows) {
            all.push_back(&row);
        }
        history::HistoryFile file(history::history_name);
        EXPECT_EQ(file.append(all, true), "");
    }
};

TEST_F(HistoryWindows, AreCompleteFitASmallScreenAndCanBeLookedAt) {
    keep_journal();
    compare_points();
    forms.frm_compare.compare_raw.click();
    forms.frm_compare.compare_list.choose(60);
    console.points_window.open();
    forms.frm_restore_points.points_list.choose(0);
    console.journal_window.open();
    const auto a = calibration::values_of(setup(false));
    const auto b = calibration::values_of(setup(true));
    console.changes_window.show({.title = "Upload changes of tune1.set",
                                 .from = "test",
                                 .identity = {.firmware = 10200, .serial = 4711},
                                 .now_scales = a.scales(),
                                 .wanted_scales = b.scales(),
                                 .lines = history::changes_to(b, a),
                                 .writes = 0,
                                 .when_empty = ""});
    for (platform::Form* form : shown()) {
        FormWindow& shown = window(*form);
        expect_complete(shown);
        for (const platform::Control* control : form->controls()) {
            const QWidget* widget = shown.binding().widget_of(*control);
            if (widget != nullptr && control->kind() != platform::Kind::label &&
                control->kind() != platform::Kind::grid) {
                EXPECT_FALSE(widget->toolTip().isEmpty()) << control->full_name();
            }
        }
        look(*form, QString::fromStdString(form->name()));
        look(*form, QString::fromStdString(form->name()) + "_small", {910, 480});
        const auto* scroll = shown.findChild<QScrollArea*>();
        ASSERT_NE(scroll, nullptr);
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), scroll->viewport()->width()) << form->name();
    }
    for (int page : {1, 2}) {
        window(forms.frm_compare.form).findChild<QTabWidget*>()->setCurrentIndex(page);
        look(forms.frm_compare.form, QString("frm_compare_map_%1").arg(page), {1366, 700});
    }
}

} // namespace
} // namespace ecu::desktop
