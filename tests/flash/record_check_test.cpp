#include "controller/rehearsal.h"
#include "flash/flash_check.h"
#include "support/sim_desktop.h"

#include <gmock/gmock.h>

namespace ecu::flash {
namespace {

using testing::HasSubstr;

constexpr const char* header = "S00600004844521B";
constexpr const char* data = "S1137AF00A0A0D0000000000000000000000000061";
constexpr const char* end = "S9030000FC";

struct CheckBench {
    test::SimDesktop desktop;
    platform::Ports ports = desktop.ports();
    RecordFile file;

    RecordReport check(const std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& line : lines) {
            text += line + "\r\n";
        }
        desktop.write_file("engine.s", text);
        EXPECT_EQ(file.open(desktop.path("engine.s")), "");
        return check_records(file);
    }
    Rehearsal rehearsed() { return rehearse(file, controller::rehearsal_monitor<Monitor>()); }
};

TEST(RecordCheck, FindsNothingInAGoodFileOfEachWidthAndTellsWhatItHolds) {
    // 06 + 00 + FF + FF + AA + BB = 369, of which 69 and 96 make FF; and so on.
    CheckBench bench;
    for (const auto& [lines, range] :
         {std::pair<std::vector<std::string>, const char*>{{header, data, "S5030001FB", end}, "7AF0 to 7AFF, 16 bytes"},
          {{"S20600FFFFAABB96", "S206010001CCDD4E", "S804000000FB"}, "00FFFF to 010002, 4 bytes"},
          {{"S3060000FFFFAA51", "S70500000000FA"}, "FFFF to FFFF, 1 byte"}}) {
        const RecordReport report = bench.check(lines);
        EXPECT_EQ(report.fault_count, 0U) << flash::report(report, {}, "f");
        ASSERT_EQ(report.ranges.size(), 1U);
        EXPECT_EQ(range_text(report.ranges[0]), range);
        EXPECT_TRUE(bench.rehearsed().done);
    }
}

TEST(RecordCheck, TellsEachFaultWithItsLine) {
    struct Case {
        std::vector<std::string> lines;
        std::size_t line;
        const char* said;
    };
    const std::string bad_sum = std::string(data).substr(0, 40) + "60", cut = std::string(data).substr(0, 30);
    for (const Case& c : {Case{{header, bad_sum, data, end}, 2, "checksum is 60; its bytes add up to 61"},
                          {{data, cut, end}, 2, "has 30 characters; its count 13 asks for 42"},
                          {{data, std::string(data) + "00", end}, 2, "has 44 characters"},
                          {{data, "", end}, 2, "blank"},
                          {{data, "hello", end}, 2, "\"hello\""},
                          {{data, "SA03", end}, 2, "S and a digit"},
                          {{data, "S1", end}, 2, "cut before its count"},
                          {{data, "S10G0000FC", end}, 2, "column 4: \"G\""},
                          {{data, "S1027A83", end}, 2, "leaves no room"},
                          {{data, "S1030000FC", end}, 2, "without data"},
                          {{data, "S105FFFF0102F9", end}, 2, "past the end of its addresses, from FFFF to 10000"},
                          {{data, "S1047AFF0181", end}, 2, "overlap those of line 1"},
                          {{data, "S4030000FC", end}, 2, "reserved"},
                          {{data, "S5030002FA", end}, 2, "counts 2 data records; there are 1"},
                          {{data, header, end}, 2, "header record behind"},
                          {{data, "S804000000FB"}, 2, "it should be S9"},
                          {{data, end, "S1040000FFFC"}, 3, "behind the end record of line 2"},
                          {{header, data}, 0, "no end record"},
                          {{header, end}, 0, "no data"}}) {
        CheckBench bench;
        const RecordReport report = bench.check(c.lines);
        ASSERT_EQ(report.fault_count, 1U) << c.said << "\n" << flash::report(report, {}, "f");
        EXPECT_EQ(report.faults[0].line, c.line) << c.said;
        EXPECT_THAT(report.faults[0].text, HasSubstr(c.said));
        if (c.line > 0) {
            EXPECT_THAT(flash::report(report, {}, "f"), HasSubstr("Line " + std::to_string(c.line) + ": "));
        }
    }
}

TEST(RecordCheck, TellsGapsAndFindsAnOverlapFromEitherSide) {
    CheckBench bench;
    RecordReport report = bench.check({"S104200001DA", "S104000001FA", end});
    EXPECT_EQ(report.fault_count, 0U) << flash::report(report, {}, "f");
    EXPECT_THAT(flash::report(report, {}, "f"), HasSubstr("Gap: 0001 to 1FFF, 8,191 bytes"));
    report = bench.check({"S1040001FFFB", "S10500000102F7", end});
    ASSERT_EQ(report.fault_count, 1U);
    EXPECT_EQ(report.faults[0].line, 2U);
}

TEST(Rehearsal, StopsWhereTheMonitorRefusesAndTellsTheTime) {
    CheckBench bench;
    bench.check({header, data, end});
    EXPECT_NEAR(bench.rehearsed().seconds, (16 + 42 + 10) * 10 / 19200.0, 1e-9);
    bench.check({header, std::string(data).substr(0, 41) + "0", end});
    EXPECT_EQ(bench.rehearsed().refused_line, 2U);
    bench.check({header, data});
    const Rehearsal waits = bench.rehearsed();
    EXPECT_FALSE(waits.done);
    EXPECT_EQ(waits.refused_line, 0U);
}

TEST(FlashCheckWindow, ShowsTheFindingsAndHoldsNothingBack) {
    CheckBench bench;
    FrmSflash flash;
    FrmFlashCheck form;
    form.form.set_host(&bench.desktop);
    FlashCheck check({bench.ports, flash, form});
    check.make_monitor = controller::rehearsal_monitor<Monitor>;
    bench.check({header, data, end});
    bench.desktop.choose_file(bench.desktop.path("engine.s"));
    flash.check_file.press();
    EXPECT_EQ(form.check_result.text(), "Nothing wrong found.");
    EXPECT_THAT(form.check_text.text(), HasSubstr("Rehearsal: the virtual monitor took the whole file"));
    bench.check({header, "junk", data});
    bench.desktop.choose_file(bench.desktop.path("engine.s"));
    form.check_again.press();
    EXPECT_THAT(form.check_result.text(), HasSubstr("2 findings"));
    EXPECT_TRUE(flash.flash_button.enabled());
    bench.desktop.choose_file(bench.desktop.path("none.s"));
    bench.desktop.expect_box("none.s could not be read");
    form.check_again.press();
    flash.halt_button.set_enabled(true); // a run is going
    flash.check_file.press();            // opens no dialog
}

} // namespace
} // namespace ecu::flash
