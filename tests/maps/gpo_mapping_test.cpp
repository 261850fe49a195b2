#include "console/console.h"
#include "messages/capabilities.h"
#include "platform/display_mask.h"
#include "support/sim_desktop.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

#include <cmath>

namespace ecu::test {
namespace {

using controller::slot;
using platform::pending;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::array output_bases{0x0290, 0x0300, 0x0360, 0x0400};
constexpr std::array boost_bases{0x0500, 0x0960, 0x0A00, 0x0A60};

// The console on a line to the virtual controller, in whose memory all that the window shows is distinct.
struct GpoMapping : testing::Test {
    SimDesktop desktop;
    console::Console console{desktop.ports()};
    WiredController wired{desktop, desktop.line()};
    controller::ControllerMemory& memory = wired.controller.memory();
    maps::FrmSup& form = console.forms.frm_sup;
    std::vector<Bytes> sent; // command and arguments

    GpoMapping() {
        console.forms.registry.set_host(&desktop);
        console.state.comm_port_number = 3;
        for (std::size_t i = 0; i < 4; ++i) {
            const auto n = static_cast<std::uint16_t>(i);
            memory.store(slot("GPOS") + i, std::array<std::uint16_t, 4>{1, 128 + 5, 9, 10}[i]);
            memory.store(slot("GPOV") + i, std::array<std::uint16_t, 4>{10, 88, 200, 127}[i]);
            memory.store(slot("RPMS") + i, static_cast<std::uint16_t>(1001 + 1000 * n));
            memory.store(slot("BO_P") + i, static_cast<std::uint16_t>(4096 + 100 * n));
            memory.store(slot("BO_I") + i, static_cast<std::uint16_t>(8192 + 100 * n));
            memory.store(slot("BO_D") + i, static_cast<std::uint16_t>(12288 + 100 * n));
            memory.store(slot("BOEN") + i, static_cast<std::uint16_t>(100 + n));
            memory.store(slot("BOIS") + i, static_cast<std::uint16_t>(51 + 10 * n));
            memory.store(slot("BORT") + i, static_cast<std::uint16_t>(31 + n));
            memory.store(slot("BOFG") + i, std::array<std::uint16_t, 4>{0, 1, 2, 3}[i]);
            for (std::size_t k = 0; k < 81; ++k) {
                memory.store_cell(at(output_bases, i) + k, static_cast<std::uint8_t>(3 * k + i));
                memory.store_cell(at(boost_bases, i) + k, static_cast<std::uint8_t>(3 * k + 10 + i));
            }
        }
        wired.controller.on_request = [this](const link::Request& request) {
            sent.emplace_back(request.begin() + 2, request.begin() + 6);
        };
    }
    static std::size_t at(const std::array<int, 4>& bases, std::size_t n) { return static_cast<std::size_t>(bases[n]); }
    void open() {
        console.navigation.open(link::View::gpo_mapping);
        desktop.run_for(2);
        sent.clear();
    }
    std::vector<Bytes> update() {
        sent.clear();
        form.update_button.press();
        desktop.run_for(1);
        return sent;
    }
    // What another window, or a reply that comes late, makes the controller say.
    void exchange(const Bytes& message, int length) { console.comm.poll(message, length); }
    std::string cell(const platform::Grid& grid, int i) { return maps::text_at(grid, i); }
    // All cells, to the digit that they show: duties by 256, boost pressures by 255.
    void expect_cells_equal_memory() {
        const bool duty = (memory.value(slot("BOFG")) & 2) != 0;
        for (std::size_t n = 0; n < 4; ++n) {
            for (int k = 0; k < 81; ++k) {
                const auto i = static_cast<std::size_t>(k);
                EXPECT_NEAR(std::stod(cell(form.GPO_tbl[n], k)), memory.cell(at(output_bases, n) + i) / 2.56, 0.0501)
                    << n << ' ' << k;
                const double raw = memory.cell(at(boost_bases, n) + i);
                EXPECT_NEAR(std::stod(cell(form.boost_gpo[n], k)), duty ? raw / 2.56 : raw + 10, 0.0501)
                    << n << ' ' << k;
            }
        }
    }
    std::size_t pending_everywhere() {
        std::size_t count = 0;
        for (std::size_t n = 0; n < 4; ++n) {
            count +=
                static_cast<std::size_t>(maps::pending_cells(form.GPO_tbl[n]) + maps::pending_cells(form.boost_gpo[n]));
            for (auto* boxes : {&form.cool_rly_temp, &form.rpm_switch, &form.boost_p, &form.boost_i, &form.boost_d,
                                &form.boost_enable_press, &form.boost_integ_preset, &form.boost_loop_rate}) {
                count += (*boxes)[n].is_pending() ? 1 : 0;
            }
            count += form.gpo_mode[n][0].fore_colour() == pending ? 1 : 0;
            count += form.boost_ctrl_invert[n].fore_colour() == pending ? 1 : 0;
        }
        return count;
    }
};

TEST_F(GpoMapping, OpeningReadsModesAndMapsInOrderWithNoPollBetweenAndShowsAll) {
    console.polling.start();
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(2);
    std::vector<Bytes> expected{
        {'C', '0', '0', '0'}, {'C', '0', '0', '0'}, {170, 0, 0, 0}, {172, 0, 0, 0}, {225, 0, 0, 0}};
    const auto blocks = [&](const std::array<int, 4>& bases) {
        for (const int base : bases) {
            for (const int address : {base, base + 27, base + 54}) {
                expected.push_back(
                    {'k', static_cast<std::uint8_t>(address & 255), static_cast<std::uint8_t>(address >> 8), 0});
            }
        }
    };
    blocks(output_bases);
    expected.push_back({217, 0, 0, 0});
    blocks(boost_bases);
    ASSERT_GT(sent.size(), expected.size());
    EXPECT_EQ(std::vector(sent.begin(), sent.begin() + static_cast<long>(expected.size())), expected);

    EXPECT_EQ(pending_everywhere(), 0U);
    EXPECT_EQ(form.map_status.text(), "No values pending");
    EXPECT_TRUE(form.gpo_mode[0][1].checked() && form.gpo_mode[1][5].checked() && form.gpo_mode[2][9].checked() &&
                form.gpo_mode[3][10].checked());
    EXPECT_TRUE(form.dont_interpolate[1].checked() && !form.dont_interpolate[0].checked());
    EXPECT_EQ(form.cool_rly_temp[2].text(), "200"); // the read shows the byte as it stands
    EXPECT_EQ(form.rpm_switch[3].text(), "4001");
    expect_cells_equal_memory();
    EXPECT_EQ(form.GPO_tbl[2].cell_text(9, 1), "0.8");
    EXPECT_EQ(form.GPO_tbl[0].place(9, 3), "RPM 2500, MAP 10.0"); // by the axes of its mode
    EXPECT_EQ(form.GPO_tbl[3].place(9, 1), "IAC 0.0");
    EXPECT_EQ(form.GPO_tbl[2].place(2, 7), "row 2, column 7");
    EXPECT_EQ(form.boost_p[1].text(), "1.024");
    EXPECT_EQ(form.boost_i[0].text(), "2.000");
    EXPECT_EQ(form.boost_d[3].text(), "3.073");
    EXPECT_EQ(form.boost_enable_press[2].text(), "112.0");
    EXPECT_EQ(form.boost_integ_preset[0].text(), "20");
    EXPECT_EQ(form.boost_loop_rate[3].text(), "34");
    EXPECT_TRUE(form.boost_ctrl_invert[1].checked() && form.use_as_pwm[2].checked() && form.use_as_pwm[3].checked());
    EXPECT_EQ(form.form.caption(), "General Purpose Output Driver Mapping ->COM3");
}

// Every value another one, so that none can stand in the place of its neighbour.
TEST_F(GpoMapping, UpdateOfEverythingSendsEachValueOnceInItsOrderAndShowsWhatTheControllerHolds) {
    open();
    std::vector<Bytes> expected;
    const auto low = [](int word) { return static_cast<std::uint8_t>(word & 255); };
    const auto high = [](int word) { return static_cast<std::uint8_t>(word >> 8); };
    for (std::uint8_t i = 0; i < 4; ++i) {
        const int n = i;
        form.cool_rly_temp[i].set_text(std::to_string(-10 - n));
        form.rpm_switch[i].set_text(std::to_string(30000 + 1000 * n)); // the last two are held
        form.gpo_mode[i][i == 3 ? 6 : 4].click();
        form.dont_interpolate[i].click();
        form.boost_p[i].set_text(std::to_string(1 + n) + ".5");
        form.boost_i[i].set_text(std::to_string(5 + n) + ".25");
        form.boost_d[i].set_text(std::to_string(9 + n) + ".125");
        form.boost_enable_press[i].set_text(std::array{"5", "400", "100", "100.6"}[i]);
        form.boost_integ_preset[i].set_text(std::to_string(30 + n));
        form.boost_loop_rate[i].set_text(std::to_string(254 + n)); // held from the third on
        form.boost_ctrl_invert[i].click();
        form.use_as_pwm[i].click();
        expected.push_back({173, i, low(117 - n), 0});
        const int rpm = std::min(30000 + 1000 * n, 32767);
        expected.push_back({226, i, low(rpm), high(rpm)});
    }
    expected.insert(expected.end(), {{171, 0, 132, 0}, {171, 1, 4, 0}, {171, 2, 132, 0}, {171, 3, 134, 0}});
    const auto enter = [&](platform::Grid& grid, int base, double first, const auto& raw_of) {
        for (int k = 0; k < 81; ++k) {
            maps::write_at(grid, k, platform::plain_number(static_cast<float>(first + k)));
            const int address = base + k;
            expected.push_back(
                {'e', low(address), high(address), low(static_cast<int>(std::lrint(raw_of(first + k))))});
        }
    };
    for (std::size_t n = 0; n < 4; ++n) { // the fourth output's full duty is 255
        enter(form.GPO_tbl[n], output_bases[n], 3 + 5.0 * static_cast<double>(n),
              [n](double duty) { return duty / 100 * (n == 3 ? 255 : 256); });
    }
    for (std::size_t n = 0; n < 4; ++n) { // the older flag holds until its own echo
        enter(form.boost_gpo[n], boost_bases[n], 60 + 40.0 * static_cast<double>(n),
              [](double pressure) { return (pressure - 10) / 255 * 256; });
    }
    for (std::uint8_t i = 0; i < 4; ++i) {
        expected.insert(expected.end(), {{218, i, 0x00, low(0x18 + 0x10 * i)},
                                         {219, i, 0x00, low(0x54 + 0x10 * i)},
                                         {220, i, 0x00, low(0x92 + 0x10 * i)},
                                         {221, i, std::array<std::uint8_t, 4>{0, 255, 90, 91}[i], 0},
                                         {222, i, std::array<std::uint8_t, 4>{76, 79, 82, 84}[i], 0},
                                         {223, i, std::array<std::uint8_t, 4>{254, 255, 255, 255}[i], 0},
                                         {224, i, std::array<std::uint8_t, 4>{3, 2, 1, 0}[i], 0}});
    }
    form.update_button.press();
    EXPECT_EQ(sent, expected);
    EXPECT_EQ(pending_everywhere(), 0U);
    expect_cells_equal_memory(); // boost in duty now, by the first channel's new flag
    EXPECT_EQ(memory.value(slot("BOFG")), 3);
    EXPECT_EQ(form.cool_rly_temp[0].text() + " " + form.boost_enable_press[1].text() + " " + form.boost_d[3].text() +
                  " " + form.boost_integ_preset[3].text(),
              "117 265.0 12.125 33");
}

TEST_F(GpoMapping, RawNumbersAreHeldAndTheEchoOfTheRelayIsSigned) {
    open();
    form.GPO_tbl[0].set_cell_text(9, 1, "100");
    form.GPO_tbl[3].set_cell_text(9, 1, "100");
    form.GPO_tbl[1].set_cell_text(9, 1, "-5");
    form.cool_rly_temp[1].set_text("200");
    form.rpm_switch[0].set_text("-1");
    EXPECT_THAT(update(), testing::IsSupersetOf({Bytes{'e', 0x90, 2, 255}, Bytes{'e', 0x00, 4, 255},
                                                 Bytes{'e', 0x00, 3, 0}, Bytes{173, 1, 200, 0}, Bytes{226, 0, 0, 0}}));
    EXPECT_EQ(form.GPO_tbl[0].cell_text(9, 1), "99.6");
    EXPECT_EQ(form.GPO_tbl[3].cell_text(9, 1), "99.6");
    EXPECT_EQ(form.cool_rly_temp[1].text(), "-56");
    EXPECT_TRUE(desktop.boxes().empty());
}

struct AxesCase {
    std::size_t mode;
    std::string x_title, y_title, x1, x8, y1, y8;
    bool shown;
    int width;
};
TEST_F(GpoMapping, AxesFollowTheModeByClickAndByReply) {
    open(); // 2.5 bar sensor, 10000 rpm
    const std::vector<AxesCase> cases{{0, "---", "---", "0", "0", "0.0", "0.0", false, 43},
                                      {1, "RPM", "MAP", "1250", "10000", "41.9", "265.0", true, 43},
                                      {2, "RPM", "CLT", "1250", "10000", "3.0", "115.0", true, 43},
                                      {3, "RPM", "TPS", "1250", "10000", "12.5", "100.0", true, 43},
                                      {4, "RPM", "MAT", "1250", "10000", "3.0", "115.0", true, 43},
                                      {5, "MAT", "MAP", "5", "128", "41.9", "265.0", true, 43},
                                      {6, "---", "---", "0", "0", "0.0", "0.0", false, 43},
                                      {9, "---", "---", "0", "0", "0.0", "0.0", false, 43},
                                      {10, "   ", "IAC", "0", "0", "32.0", "256.0", true, 0}};
    form.GPO_tbl[2].set_active_cell(4, 5);
    for (const bool by_reply : {false, true}) {
        for (const AxesCase& c : cases) {
            if (by_reply) {
                exchange({171, 2, static_cast<std::uint8_t>(c.mode + 128), 0}, 5);
                EXPECT_TRUE(form.gpo_mode[2][c.mode].checked());
                EXPECT_EQ(console.gpo_mapping.gpo_mode_byte(2), static_cast<int>(c.mode) + 128);
            } else {
                form.gpo_mode[2][c.mode].click();
            }
            EXPECT_EQ(form.gpo_mode[2][0].fore_colour(), by_reply ? platform::black : pending);
            EXPECT_EQ(form.gpo_x_text[2].text(), c.x_title) << c.mode;
            EXPECT_EQ(form.gpo_y_text[2].text(), c.y_title) << c.mode;
            EXPECT_EQ(form.GPO_X_lbl[2][1].text(), c.x1) << c.mode;
            EXPECT_EQ(form.GPO_X_lbl[2][8].text(), c.x8) << c.mode;
            EXPECT_EQ(form.GPO_Y_lbl[2][1].text(), c.y1) << c.mode;
            EXPECT_EQ(form.GPO_Y_lbl[2][8].text(), c.y8) << c.mode;
            EXPECT_EQ(form.gpo_map_holder[2].visible(), c.shown) << c.mode;
            EXPECT_EQ(form.GPO_tbl[2].column_width(2), c.width) << c.mode;
            EXPECT_EQ(form.GPO_tbl[2].column_width(9), c.width) << c.mode;
            EXPECT_EQ(form.GPO_tbl[2].column_width(1), 43);
        }
    }
    EXPECT_EQ(form.GPO_tbl[2].active_column(), 1);
    memory.store(slot("FS_RPM"), 8000);
    exchange({'C', '0', '0', '0'}, 21);
    EXPECT_EQ(form.GPO_X_lbl[0][8].text() + form.GPO_boost_X_lbl[3][8].text(), "80008000");
    EXPECT_EQ(form.gpo_x_text[1].text(), "MAT"); // the others stayed
    form.gpo_mode[1][2].click();
    EXPECT_EQ(console.gpo_mapping.gpo_mode_byte(1), 128 + 2); // with its box
}

TEST_F(GpoMapping, TheFirstChannelsStoredFlagGovernsAllBoostCellsAndEachBoxItsOwnAxes) {
    open();
    EXPECT_EQ(form.boost_y_text[0].text(), "MAT");
    EXPECT_EQ(form.GPO_boost_Y_lbl[0][1].text(), "3");
    EXPECT_EQ(form.boost_y_text[2].text(), "MAP"); // its own box is ticked, its cells are pressure all the same
    EXPECT_EQ(form.GPO_boost_Y_lbl[2][1].text(), "41");
    EXPECT_EQ(form.GPO_boost_X_lbl[2][3].text(), "3750");
    EXPECT_EQ(cell(form.boost_gpo[2], 40), "142.0");
    form.use_as_pwm[0].click();
    EXPECT_EQ(form.boost_y_text[0].text(), "MAP");
    EXPECT_EQ(form.boost_ctrl_invert[0].fore_colour(), pending);
    EXPECT_NE(form.use_as_pwm[0].fore_colour(), pending);
    EXPECT_EQ(cell(form.boost_gpo[2], 40), "142.0"); // not before the controller has it
    form.boost_gpo[2].set_cell_text(9, 1, "30");
    exchange({224, 1, 3, 0}, 5);
    EXPECT_EQ(cell(form.boost_gpo[2], 40), "142.0");
    sent.clear();
    exchange({224, 0, 2, 0}, 5);
    EXPECT_THAT(sent, ElementsAre(Bytes{224, 0, 2, 0}));
    EXPECT_EQ(form.boost_ctrl_invert[0].fore_colour(), platform::black);
    EXPECT_EQ(cell(form.boost_gpo[2], 40), "51.6"); // 132 / 256
    EXPECT_EQ(cell(form.boost_gpo[3], 80), "98.8");
    EXPECT_EQ(form.boost_gpo[2].cell_back(5, 5), platform::confirmed);
    EXPECT_EQ(form.boost_gpo[2].cell_text(9, 1), "30"); // the tuner's own
    EXPECT_TRUE(form.boost_gpo[2].cell_pending(9, 1));
    desktop.run_for(0.01);
    EXPECT_THAT(form.boost_words[2].text(), testing::EndsWith(" 1 pending cell is now read as % duty."));
    EXPECT_THAT(form.boost_words[3].text(), testing::Not(HasSubstr("pending cell")));
    EXPECT_THAT(update(), testing::Contains(Bytes{'e', 0, 0x0A, 76})); // 30 % of 255
    EXPECT_EQ(form.boost_gpo[2].cell_text(9, 1), "29.7");              // and of 256
}

TEST_F(GpoMapping, AModeThatTheConsoleDoesNotKnowIsToldAndKept) {
    open();
    exchange({171, 0, 13, 0}, 5);
    desktop.run_for(0.01);
    EXPECT_EQ(platform::chosen(form.gpo_mode[0]), -1);
    EXPECT_FALSE(form.gpo_map_holder[0].visible());
    EXPECT_THAT(form.gpo_words[0].text(), HasSubstr("Mode 13 is not known"));
    form.gpo_mode[0][0].click();
    desktop.run_for(0.01);
    EXPECT_EQ(form.gpo_words[0].text(), "Not sent yet: Off at all times. The controller still has mode 13.");
    exchange({171, 0, 13, 0}, 5);
    form.dont_interpolate[0].click();
    EXPECT_THAT(update(), testing::Contains(Bytes{171, 0, 128 + 13, 0}));
    form.gpo_mode[0][0].click();
    EXPECT_THAT(update(), testing::Contains(Bytes{171, 0, 128, 0}));
}

TEST_F(GpoMapping, MarksCountOnTheirPageAndGoWithTheEchoOrTheNextOpening) {
    open();
    form.dont_interpolate[1].click();
    form.boost_ctrl_invert[1].click();
    form.use_as_pwm[3].click();
    form.GPO_tbl[2].set_cell_text(1, 9, "7"); // of a hidden map
    desktop.run_for(0.01);
    EXPECT_EQ(form.map_status.text(), "4 values pending: GPO 2 2, GPO 3 1, GPO 4 1");
    EXPECT_EQ(form.pending_on_page[0].text(), "");
    EXPECT_EQ(form.pending_on_page[1].text(), "2 pending");
    EXPECT_EQ(form.pending_on_page[2].text(), "1 pending");
    EXPECT_FALSE(form.gpo_map_holder[2].visible());
    messages::Capabilities(console.forms.registry).apply(0); // nor does the controller own to an output driver
    EXPECT_FALSE(form.GPO_params[1].visible() || form.GPO_params[3].visible());
    const auto messages = update();
    EXPECT_THAT(messages, testing::IsSupersetOf({Bytes{171, 1, 5, 0}, Bytes{224, 1, 0, 0}, Bytes{224, 3, 1, 0},
                                                 Bytes{'e', 0x60 + 80, 3, 18}}));
    EXPECT_EQ(form.pending_on_page[1].text(), "");
    form.gpo_mode[1][2].click();
    form.boost_ctrl_invert[1].click();
    form.exit_button.press();
    desktop.run_for(0.2);
    EXPECT_EQ(console.state.current_view, link::View::none);
    open();
    EXPECT_EQ(pending_everywhere(), 0U);
    EXPECT_TRUE(form.gpo_mode[1][5].checked());
    EXPECT_TRUE(update().empty());
}

TEST_F(GpoMapping, SwitchesThatNoReplyHasToldAreNotSentWithTheirUnknownHalf) {
    console.link_selection.open_comm_link();
    form.dont_interpolate[0].click();
    form.gpo_mode[2][4].click();
    form.use_as_pwm[1].click();
    EXPECT_NE(form.gpo_mode[0][0].fore_colour(), pending); // nothing looks pending that would not go out
    EXPECT_NE(form.gpo_mode[2][0].fore_colour(), pending);
    EXPECT_NE(form.boost_ctrl_invert[1].fore_colour(), pending);
    EXPECT_TRUE(update().empty());
    EXPECT_THAT(form.map_status.text(), HasSubstr("9 values not read"));
    exchange({170, 0, 0, 0}, 7);
    exchange({217, 0, 0, 0}, 43);
    form.dont_interpolate[0].click();
    form.use_as_pwm[1].click();
    EXPECT_THAT(update(), ElementsAre(Bytes{171, 0, 128 + 1, 0}, Bytes{224, 1, 3, 0}));
}

TEST_F(GpoMapping, WithoutTheFlagsBoostCellsWaitForTheSecondReadWhichKeepsWhatIsPending) {
    open();
    form.exit_button.press();
    desktop.run_for(0.2);
    bool lost = true;
    wired.controller.on_request = [&](const link::Request& request) {
        sent.emplace_back(request.begin() + 2, request.begin() + 6);
        if (lost && request[2] == 217) {
            wired.controller.faults().strike_next(controller::Fault::lost);
        }
    };
    const auto ignore = [this](platform::Form&) { console.forms.frm_dialog.dialog_button[0].press(); };
    desktop.on_modal("frm_Dialog", ignore);
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(30);
    EXPECT_FALSE(form.use_as_pwm[2].checked() || form.use_as_pwm[2].enabled()); // ticked at the first opening
    EXPECT_TRUE(form.boost_gpo[3].locked() && form.boost_gpo[3].cell_unread(1, 1));
    EXPECT_EQ(form.boost_words[2].text(), "Not read yet.");
    form.gpo_mode[0][4].click();
    const auto read_again = [this] {
        sent.clear();
        form.read_again.press();
        desktop.run_for(30);
        EXPECT_EQ(form.gpo_mode[0][0].fore_colour(), pending);
        EXPECT_TRUE(form.gpo_mode[0][4].checked());
        return sent;
    };
    desktop.on_modal("frm_Dialog", ignore);
    EXPECT_THAT(read_again(), testing::Each(Bytes{217, 0, 0, 0}));
    EXPECT_TRUE(form.boost_gpo[3].locked());
    lost = false;
    const auto messages = read_again();
    EXPECT_EQ(messages.size(), 13U); // and the boost maps, whose unit is now known
    EXPECT_EQ(messages.front(), (Bytes{217, 0, 0, 0}));
    EXPECT_EQ(cell(form.boost_gpo[1], 40), "141.0");
    EXPECT_FALSE(form.boost_gpo[3].locked());
    EXPECT_TRUE(form.use_as_pwm[2].checked() && form.use_as_pwm[2].enabled());
    EXPECT_EQ(form.map_status.text(), "1 value pending: GPO 1 1");
}

TEST_F(GpoMapping, WithoutTheSpanPressuresWaitForTheSecondRead) {
    bool lost = true;
    wired.controller.on_request = [&](const link::Request& request) {
        sent.emplace_back(request.begin() + 2, request.begin() + 6);
        if (lost && request[2] == 'C') {
            wired.controller.faults().strike_next(controller::Fault::lost);
        }
    };
    const auto ignore = [this](platform::Form&) { console.forms.frm_dialog.dialog_button[0].press(); };
    for (int dialog = 0; dialog < 2; ++dialog) {
        desktop.on_modal("frm_Dialog", ignore);
    }
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(60);
    EXPECT_TRUE(form.boost_gpo[0].locked() && form.boost_gpo[0].cell_unread(1, 1));
    EXPECT_TRUE(form.boost_enable_press[0].unread());
    EXPECT_FALSE(form.GPO_tbl[0].cell_unread(1, 1));
    lost = false;
    form.read_again.press();
    desktop.run_for(30);
    EXPECT_FALSE(form.boost_gpo[0].locked() || form.boost_gpo[0].cell_unread(1, 1));
    EXPECT_EQ(cell(form.boost_gpo[1], 40), "141.0");
    EXPECT_FALSE(form.boost_enable_press[0].unread());
}

TEST_F(GpoMapping, AClickBehindItsOwnMessageOutlivesTheEcho) {
    open();
    form.gpo_mode[0][3].click();
    form.use_as_pwm[1].click();
    const auto once = [&](std::uint8_t code, std::function<void()> click) {
        wired.controller.on_request = [this, code, click = std::move(click)](const link::Request& request) mutable {
            sent.emplace_back(request.begin() + 2, request.begin() + 6);
            if (request[2] == code && click) {
                std::exchange(click, nullptr)();
            }
        };
    };
    once(171, [this] { form.gpo_mode[0][5].click(); });
    EXPECT_THAT(update(), testing::Contains(Bytes{171, 0, 3, 0}));
    EXPECT_TRUE(form.gpo_mode[0][5].checked());
    EXPECT_EQ(form.gpo_mode[0][0].fore_colour(), pending);
    EXPECT_EQ(console.gpo_mapping.gpo_mode_byte(0), 5);
    form.boost_ctrl_invert[1].click();
    once(224, [this] { form.boost_ctrl_invert[1].click(); });
    EXPECT_THAT(update(), testing::Contains(Bytes{171, 0, 5, 0}));
    EXPECT_EQ(form.gpo_mode[0][0].fore_colour(), platform::black);
    EXPECT_EQ(form.boost_ctrl_invert[1].fore_colour(), pending);
    EXPECT_THAT(update(), testing::Contains(testing::ElementsAre(224, 1, testing::_, testing::_)));
}

TEST_F(GpoMapping, WithoutTheModesAPageAssertsNone) {
    open();
    form.exit_button.press();
    desktop.run_for(0.2);
    wired.controller.on_request = [&](const link::Request& request) {
        if (request[2] == 170) {
            wired.controller.faults().strike_next(controller::Fault::lost);
        }
    };
    desktop.on_modal("frm_Dialog", [this](platform::Form&) { console.forms.frm_dialog.dialog_button[0].press(); });
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(30);
    EXPECT_EQ(form.gpo_words[1].text(), "Not read yet.");
    EXPECT_EQ(platform::chosen(form.gpo_mode[1]), -1);
    EXPECT_FALSE(form.dont_interpolate[1].checked() || form.gpo_mode[1][5].enabled());
    EXPECT_EQ(console.gpo_mapping.gpo_mode_byte(1), 0);
    EXPECT_FALSE(form.gpo_map_holder[1].visible());
    EXPECT_EQ(form.GPO_tbl[1].place(3, 4), "row 3, column 4");
}

TEST_F(GpoMapping, UpdateWaitsATenthAroundAndKeepsPollingOutOfIt) {
    open();
    form.dont_interpolate[0].click();
    form.boost_ctrl_invert[3].click();
    const double pressed = desktop.seconds();
    double first = 0;
    wired.controller.on_request = [&](const link::Request& request) {
        EXPECT_TRUE(console.state.polling_paused);
        first = request[2] == 171 ? desktop.seconds() : first;
    };
    form.update_button.press();
    EXPECT_NEAR(first - pressed, 0.1, 0.02);
    EXPECT_NEAR(desktop.seconds() - pressed, 0.2, 0.05);
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(GpoMapping, ExitAndAbortEndTheReadAndTheClosedWindowIsBlankAfterAbort) {
    wired.controller.on_request = [this](const link::Request& request) {
        sent.emplace_back(request.begin() + 2, request.begin() + 6);
        if (request[2] == 'k' && request[3] == 0x00 && request[4] == 3) {
            EXPECT_FALSE(form.update_button.enabled() || form.gpo_mode[0][1].enabled() || form.use_as_pwm[0].enabled());
            form.exit_button.press();
        }
    };
    open();
    EXPECT_EQ(console.state.current_view, link::View::none);
    EXPECT_FALSE(form.form.visible());
    EXPECT_FALSE(console.state.polling_paused);
    desktop.on_modal("frm_Dialog", [this](platform::Form&) { console.forms.frm_dialog.dialog_button[2].press(); });
    wired.controller.on_request = [this](const link::Request& request) {
        if (request[2] == 217) {
            wired.silence();
        }
    };
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(60);
    EXPECT_EQ(console.state.current_view, link::View::none);
    EXPECT_EQ(cell(form.GPO_tbl[0], 40), "");
    EXPECT_TRUE(form.GPO_tbl[0].cell_pending(1, 1));
}

TEST_F(GpoMapping, ReopenedInsideAnOpeningThatWasLeftItIsReadOnceAndNotBlankedByTheFirst) {
    desktop.schedule(desktop.now() + 20'000, [this] { form.exit_button.press(); });
    desktop.schedule(desktop.now() + 40'000, [this] {
        EXPECT_FALSE(form.form.visible());
        console.navigation.open(link::View::gpo_mapping);
    });
    console.navigation.open(link::View::gpo_mapping);
    desktop.run_for(3);
    EXPECT_EQ(std::ranges::count(sent, Bytes{217, 0, 0, 0}), 1);
    EXPECT_TRUE(form.form.visible() && form.update_button.enabled() && form.gpo_mode[0][1].enabled());
    EXPECT_EQ(form.map_status.text() + cell(form.GPO_tbl[0], 40), "No values pending46.9");
    EXPECT_FALSE(console.state.polling_paused);
}

TEST_F(GpoMapping, AWriteWithoutAnAnswerStaysPending) {
    open();
    form.gpo_mode[0][2].click();
    form.boost_ctrl_invert[3].click();
    form.GPO_tbl[1].set_cell_text(9, 1, "50");
    desktop.on_modal("frm_Dialog", [this](platform::Form&) { console.forms.frm_dialog.dialog_button[2].press(); });
    wired.silence();
    form.update_button.press();
    desktop.run_for(60);
    EXPECT_EQ(form.gpo_mode[0][0].fore_colour(), pending);
    EXPECT_EQ(form.boost_ctrl_invert[3].fore_colour(), pending);
    EXPECT_TRUE(form.GPO_tbl[1].cell_pending(9, 1));
    EXPECT_EQ(form.map_status.text(), "Aborted: nothing is sent until a view is opened");
}

TEST_F(GpoMapping, KeysStepCellsBlocksGoToTheirOwnGridAndTheResetOnlyAsks) {
    open();
    for (std::size_t n = 0; n < 4; ++n) {
        for (platform::Grid* grid : {&form.GPO_tbl[n], &form.boost_gpo[n]}) {
            grid->set_active_cell(9, 1);
            grid->set_cell_text(9, 1, "0.05");
            platform::KeyPress down{.code = platform::key::down, .shift = true};
            grid->key_down(down);
            EXPECT_EQ(grid->cell_text(9, 1), "0.00");
            platform::KeyPress s{.code = 'S', .ctrl = true};
            platform::KeyPress f{.code = 'F', .ctrl = true};
            grid->key_down(s);
            grid->set_active_cell(8, 2);
            grid->key_down(f);
            console.forms.frm_cellblock_modifier.set_value.set_text("300");
            desktop.answer_box("modify a group of cells", platform::Answer::yes);
            console.forms.frm_cellblock_modifier.cell_operation[3].press();
            EXPECT_EQ(grid->cell_text(9, 2), "300.00");
            EXPECT_EQ(maps::pending_cells(*grid), 4);
            platform::KeyPress up{.code = platform::key::up, .shift = true};
            grid->key_down(up);
            EXPECT_EQ(grid->cell_text(8, 2), "300.10"); // no upper limit
        }
    }
    desktop.answer_box("this function will overwrite the table, continue?", platform::Answer::yes);
    form.menuresetmap.click();
    EXPECT_EQ(form.GPO_tbl[0].cell_text(1, 9), "93.8");
    platform::KeyPress enter{.code = platform::key::enter};
    sent.clear();
    form.boost_gpo[3].key_press(enter);
    desktop.run_for(0.5);
    EXPECT_EQ(pending_everywhere(), 0U);
}

TEST_F(GpoMapping, MarkersAndDutiesFollowTheLiveValuesOfTheShownPage) {
    open();
    console.live.engine_rpm = 5000;
    console.live.manifold_kpa = 73.75F; // a quarter of 255 and 10
    console.live.air_temp = 57.5F;      // half of 141 and -13
    console.live.iac_position = 64;
    console.live.gpo_duty = {0, 100, 45.2F, 0};
    console.gpo_mapping.refresh_live();
    EXPECT_EQ(form.supp_x_ptr.left(), 1800);
    EXPECT_EQ(form.supp_y_ptr.top(), 2700);
    EXPECT_EQ(form.boost_x_ptr.left(), 1800);
    EXPECT_EQ(form.gpo_now[0].text(), "Now off, at 5000 rpm.");
    EXPECT_EQ(form.gpo_now[1].text(), "Now fully on, at 5000 rpm.");
    EXPECT_EQ(form.gpo_now[2].text(), "Now at 45.2 % duty, at 5000 rpm.");
    console.live.gpo_duty = {0.3F, 99.7F, 0, 0}; // neither is off, nor fully on
    console.gpo_mapping.refresh_live();
    EXPECT_EQ(form.gpo_now[0].text(), "Now at 0.3 % duty, at 5000 rpm.");
    EXPECT_EQ(form.gpo_now[1].text(), "Now at 99.7 % duty, at 5000 rpm.");
    form.GPO_tab.set_current(1);
    EXPECT_EQ(form.supp_x_ptr.left(), 1800); // MAT, half of its axis
    EXPECT_EQ(form.supp_y_ptr.top(), 2700);
    form.GPO_tab.set_current(2);
    EXPECT_FALSE(form.supp_x_ptr.visible() || form.supp_y_ptr.visible());
    EXPECT_EQ(form.boost_y_ptr.top(), 2700); // its boost map stands over pressure
    form.GPO_tab.set_current(3);
    EXPECT_FALSE(form.supp_x_ptr.visible());
    EXPECT_EQ(form.supp_y_ptr.top(), 2700); // the idle valve
    console.live.engine_rpm = 20000;
    form.GPO_tab.set_current(0);
    EXPECT_EQ(form.supp_x_ptr.left(), 3600);
    form.use_as_pwm[0].click(); // from air temperature to pressure
    EXPECT_EQ(form.boost_y_ptr.top(), 2700);
    exchange({171, 0, 6, 0}, 5);
    EXPECT_FALSE(form.supp_x_ptr.visible());
}

TEST_F(GpoMapping, ThePageSaysInWordsWhatItsChannelDoes) {
    open();
    EXPECT_EQ(form.gpo_words[0].text(),
              "Duty in percent from the map, by engine speed and manifold pressure; smooth between the cells.");
    EXPECT_EQ(form.gpo_words[2].text(), "Fully on at or above 3001 rpm, off below.");
    EXPECT_THAT(form.boost_words[0].text(), HasSubstr("while MAP is above 110.0 kPa. Cells are pressure in kPa"));
    EXPECT_THAT(form.boost_words[3].text(), HasSubstr("Open loop"));
    form.cool_rly_temp[2].set_text("50"); // which this mode does not look at
    form.cool_rly_temp[3].set_text("50");
    desktop.run_for(0.01);
    EXPECT_THAT(form.gpo_words[2].text() + form.gpo_words[3].text(), testing::Not(HasSubstr("Not sent")));
    form.rpm_switch[2].set_text("6000");
    form.gpo_mode[0][7].click();
    form.use_as_pwm[0].click();
    desktop.run_for(0.01);
    EXPECT_EQ(form.gpo_words[2].text(), "Not sent yet: Fully on at or above 6000 rpm, off below.");
    EXPECT_EQ(form.gpo_words[0].text(), "Not sent yet: Switches the coolant fan: on from 10 degrees of coolant. The "
                                        "controller still has \"X=RPM / Y=MAP\".");
    EXPECT_THAT(form.boost_words[0].text(), testing::StartsWith("Not sent yet: Open loop"));
    EXPECT_THAT(form.boost_words[0].text(), HasSubstr("kPa by what the controller holds of \"Use open loop as PWM\", "
                                                      "until an Update has sent it."));
    update();
    EXPECT_EQ(form.gpo_words[2].text(), "Fully on at or above 6000 rpm, off below.");
}

TEST_F(GpoMapping, DemoModeShowsItsOwnValuesInWhite) {
    console.state.demo_mode = true;
    open();
    EXPECT_EQ(cell(form.GPO_tbl[1], 7), "0.0");
    EXPECT_EQ(cell(form.boost_gpo[1], 7), "100.0");
    EXPECT_EQ(form.cool_rly_temp[0].text(), "95");
    EXPECT_EQ(form.boost_loop_rate[3].text(), "0");
    EXPECT_EQ(pending_everywhere(), 0U);
    console.gpo_mapping.refresh_live();
    EXPECT_EQ(form.gpo_now[0].text(), ""); // no controller has said so
}

} // namespace
} // namespace ecu::test
