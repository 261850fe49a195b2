// Two whole consoles over the simulated network: the server's one has the controller's cable, the client's one none.
#include "console/console.h"
#include "support/sim_desktop.h"
#include "support/tiny_jpeg.h"
#include "support/wired_controller.h"

#include <gmock/gmock.h>

namespace ecu {
namespace {

using platform::Form;
using test::Bytes;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The client's machine: a serial line with nothing at its end, everything else as the server's.
struct OtherMachine : platform::SerialPorts {
    explicit OtherMachine(test::SimEvents& events) : line(events) { line.fail_open(3, "no such device"); }
    std::unique_ptr<platform::SerialPort> make_serial_port() override {
        return std::make_unique<test::SimSerialPort>(line);
    }
    test::SimSerialLine line;
};

class TwoConsoles : public testing::Test {
protected:
    TwoConsoles() {
        desktop.write_file("port.cfg", "3\r\n");
        desktop.write_file("OEM.JPG", test::tiny_jpeg);
        desktop.write_file("OEM.TXT", "text");
        for (console::Console* console : {&server, &client}) {
            console->forms.registry.set_host(&desktop);
        }
        wired.controller.on_request = [this](const link::Request& request) {
            requests.emplace_back(request.begin(), request.end());
        };
    }
    platform::Ports client_ports() {
        platform::Ports ports = desktop.ports();
        return {ports.clock, ports.waiting,          ports.timers, ports.dialogs,    ports.program,
                other,       ports.datagram_sockets, ports.folder, ports.environment};
    }
    void start_server() {
        server.start("");
        desktop.run_for(0.2);
        server.forms.frm_ecu.menu_remote_setup_start_server.click();
        desktop.run_for(0.2);
    }
    void start_client() {
        client.start("");
        desktop.run_for(0.1);
        enter_address();
        desktop.expect_box("Succesful connection to remote IP address 127.0.0.1");
        client.forms.frm_ecu.menu_remote_setup_start_client.click();
        desktop.run_for(0.1);
    }
    void enter_address() {
        desktop.on_modal("frm_remote_ip", [this](Form&) {
            for (std::size_t i = 0; i < 4; ++i) {
                client.forms.frm_remote_ip.client_ip_address[i].set_text(std::to_string(i == 0 ? 127 : i == 3 ? 1 : 0));
            }
            client.forms.frm_remote_ip.remote_ip_done.press();
        });
    }
    void open_monitor() {
        client.forms.frm_ecu.monitor_button.press();
        desktop.run_for(1);
    }

    test::SimDesktop desktop;
    test::WiredController wired{desktop, desktop.line(), {.firmware = {}, .faults = {}, .pace_baud = 38400}};
    OtherMachine other{desktop};
    console::Console server{desktop.ports()};
    console::Console client{client_ports()};
    std::vector<Bytes> requests;
};

TEST_F(TwoConsoles, TheServersOwnFirstQuestionAndThenOnlyTheClientsGoDownTheLine) {
    start_server();
    EXPECT_THAT(requests, ElementsAre(Bytes{2, 8, 'C', '0', '0', '0', 0xDD, 0}));
    desktop.run_for(10);
    EXPECT_EQ(requests.size(), 1U) << "a server asks nothing by itself";
    EXPECT_FALSE(server.forms.frm_ecu.form.visible());
    start_client();
    EXPECT_EQ(client.forms.frm_ecu.form.caption(), "127.0.0.1 -> ECU System Console");
    open_monitor();
    EXPECT_EQ(client.forms.frm_mon.form.caption(), "Real Time Monitor127.0.0.1 -> ");
    const std::string rpm = client.forms.frm_mon.ECU_Data[0].text();
    EXPECT_NEAR(std::stod(rpm), client.live.engine_rpm, 1);
    EXPECT_GT(client.live.engine_rpm, 300);
    EXPECT_FALSE(other.line.is_open());
    EXPECT_THAT(other.line.tried(), IsEmpty());
    const std::size_t before = requests.size();
    desktop.run_for(5);
    EXPECT_GT(requests.size() - before, 3 * 5 * 20 * 0.95) << "each tick of 50 ms has its three messages";
    EXPECT_EQ(server.forms.frm_server.Client_IP.text(), "127.0.0.1");
    EXPECT_EQ(server.forms.frm_server.num_refused.text(), "0");
}

TEST_F(TwoConsoles, ADownloadOverTheLinkIsByteForByteThatOfTheCable) {
    start_server();
    start_client();
    const std::string far_file = desktop.path("far.set"), near_file = desktop.path("near.set");
    desktop.choose_file(far_file);
    client.forms.frm_ecu.menufilesave.click();
    desktop.run_for(1);
    server.forms.frm_server.server_cancel.press();
    desktop.run_for(0.2);
    const std::vector<Bytes> far_requests = std::exchange(requests, {});
    desktop.choose_file(near_file);
    server.forms.frm_ecu.menufilesave.click();
    EXPECT_EQ(desktop.read_file("far.set"), desktop.read_file("near.set"));
    ASSERT_GT(requests.size(), 1000U);
    EXPECT_FALSE(std::ranges::search(far_requests, requests).empty()) << "the same frames in the same order";
}

TEST_F(TwoConsoles, AnEditedCellIsStoredInTheFarControllerAndTurnsWhite) {
    start_server();
    start_client();
    client.forms.frm_ecu.basic_map_button.press();
    desktop.run_for(5);
    platform::Grid& fuel = client.forms.frm_3d.inj_map;
    fuel.set_cell_text(16, 1, "1.250");
    EXPECT_TRUE(fuel.cell_pending(16, 1));
    client.forms.frm_3d.update_button.press();
    desktop.run_for(1);
    const auto write = std::ranges::find(requests, 'e', [](const Bytes& request) { return request[2]; });
    ASSERT_NE(write, requests.end());
    EXPECT_EQ(*write, (Bytes{2, 8, 'e', 0, 1, 160, 0x10, 1})); // 1.250 * 128; 2 + 8 + 101 + 0 + 1 + 160 = 272
    EXPECT_FALSE(fuel.cell_pending(16, 1));
    EXPECT_EQ(fuel.cell_text(16, 1), "1.250");
}

TEST_F(TwoConsoles, AServerThatIsKilledAndComesBackIsFoundAgainInMidDownload) {
    start_server();
    start_client();
    desktop.choose_file(desktop.path("far.set"));
    desktop.schedule(desktop.now() + 3'000'000, [this] { server.forms.frm_server.server_cancel.press(); });
    desktop.schedule(desktop.now() + 7'000'000,
                     [this] { server.forms.frm_ecu.menu_remote_setup_start_server.click(); });
    client.forms.frm_ecu.menufilesave.click();
    desktop.run_for(1);
    const std::string far = desktop.read_file("far.set");
    EXPECT_EQ(std::ranges::count(far, '\n'), 2126);
    EXPECT_FALSE(client.forms.frm_dialog.form.visible());
}

// The client sees neither the plug nor the other cable, only that a message had no answer.
TEST_F(TwoConsoles, WhatEndsUpBehindTheServerInMidUploadMustBeTheSameController) {
    start_server();
    start_client();
    desktop.choose_file(desktop.path("engine.set"));
    client.forms.frm_ecu.menufilesave.click();
    const auto count_of = [&](std::uint8_t code) {
        return std::ranges::count(requests, code, [](const Bytes& request) { return request[2]; });
    };
    EXPECT_EQ(count_of('-'), 1) << "a client asks once who is there";
    struct Case {
        bool replugged; // else the server was away meanwhile
        std::uint32_t serial;
        const char* told;
    };
    for (const auto& [replugged, serial, told] : {Case{true, 104077, nullptr},
                                                  {false, 104077, nullptr},
                                                  {true, 55, "55 in place of 104077"},
                                                  {false, 56, "56 in place of 55"}}) {
        const bool same = told == nullptr;
        requests.clear();
        std::size_t after_change = 0;
        desktop.schedule(desktop.now() + 3'000'000, [&, replugged = replugged, serial = serial] {
            replugged ? desktop.line().unplug() : server.forms.frm_server.server_cancel.press();
            desktop.schedule(desktop.now() + 4'000, [&, replugged, serial] {
                replugged ? desktop.line().plug_in() : server.forms.frm_ecu.menu_remote_setup_start_server.click();
                if (serial != 104077) {
                    wired.controller.exchange(serial);
                }
                after_change = requests.size();
            });
        });
        desktop.choose_file(desktop.path("engine.set"));
        if (!same) {
            desktop.expect_box(std::string("another controller answers there now, serial number ") + told);
        }
        client.forms.frm_ecu.menufileopen.click();
        desktop.run_for(0.5);
        ASSERT_GT(after_change, 100U);
        const auto next = [&](std::size_t n) { return requests.at(after_change + n)[2]; };
        EXPECT_EQ((std::array{next(0), next(1)}), (std::array<std::uint8_t, 2>{'R', '-'})) << same << replugged;
        EXPECT_EQ(requests.size() > after_change + 2, same);
        EXPECT_EQ(count_of('-'), 1);
    }
}

// Whether it is given up by the user or by the client itself.
TEST_F(TwoConsoles, WhatWasMeantForTheFarControllerNeverGoesToThisMachinesOwn) {
    client.start("");
    desktop.run_for(0.1);
    shell::FrmEcu& main = client.forms.frm_ecu;
    for (const bool halted : {false, true}) {
        for (platform::MenuItem* item : {&main.menu_tool_reset, &main.Menu_View_Monitor, &main.menu_about}) {
            enter_address();
            desktop.schedule(desktop.now() + 100'000, [&] {
                EXPECT_EQ(main.link_state.text(), "Asking the console at 127.0.0.1...");
                item->click();
            });
            if (halted) {
                desktop.schedule(desktop.now() + 200'000, [&] { main.menu_remote_setup_halt_client.click(); });
            } else {
                desktop.expect_box("Unable to connect to remote IP address 127.0.0.1");
            }
            main.menu_remote_setup_start_client.click();
            desktop.run_for(1);
            EXPECT_EQ(client.state.current_view, link::View::none);
            EXPECT_THAT(other.line.tried(), IsEmpty()) << "the port was not even opened";
        }
    }
}

TEST_F(TwoConsoles, AToolClickedWhileTheServerIsGreetedRunsWhenItHasAnswered) {
    start_server();
    client.start("");
    desktop.run_for(0.1);
    enter_address();
    desktop.expect_box("Succesful connection to remote IP address 127.0.0.1");
    desktop.expect_box("The controller has been succesfully reset.");
    desktop.schedule(desktop.now() + 100, [&] { client.forms.frm_ecu.menu_tool_reset.click(); });
    requests.clear();
    client.forms.frm_ecu.menu_remote_setup_start_client.click();
    desktop.run_for(1);
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.front()[2], 174);
}

TEST_F(TwoConsoles, TheServerStartsAfterTheMessageThatIsUnderWay) {
    server.start("");
    desktop.run_for(0.2);
    wired.silence();
    desktop.schedule(desktop.now() + 150'000, [&] {
        ASSERT_TRUE(server.comm.busy());
        server.forms.frm_ecu.menu_remote_setup_start_server.click();
        EXPECT_TRUE(server.comm1->is_open());
        wired.speak();
    });
    desktop.expect_box("The controller has been succesfully reset.");
    server.forms.frm_ecu.menu_tool_reset.click();
    desktop.run_for(0.5);
    EXPECT_TRUE(server.forms.frm_server.form.visible());
}

TEST_F(TwoConsoles, AViewClickedWhileTheServerIsGreetedOpensWhenItHasAnswered) {
    client.start("");
    desktop.run_for(0.1);
    server.start("");
    enter_address();
    desktop.expect_box("Succesful connection to remote IP address 127.0.0.1");
    shell::FrmEcu& main = client.forms.frm_ecu;
    desktop.network().outside = [&](const test::SimNetwork::Sent& greeting) {
        main.monitor_button.press();
        server.forms.frm_ecu.menu_remote_setup_start_server.click();
        desktop.schedule(desktop.now() + 500'000, [this, greeting] {
            EXPECT_FALSE(client.forms.frm_mon.form.visible());
            desktop.network().arrive(greeting.from, 999, greeting.bytes);
        });
    };
    main.menu_remote_setup_start_client.click();
    desktop.run_for(1);
    EXPECT_TRUE(client.forms.frm_mon.form.visible());
    EXPECT_GT(client.live.engine_rpm, 300);
}

TEST_F(TwoConsoles, PreparingToReflashSaysFirstThatTheCableIsElsewhere) {
    start_server();
    start_client();
    requests.clear();
    desktop.answer_box("needs the controller's cable at this machine", platform::Answer::cancel);
    client.forms.frm_ecu.menu_tool_reflash.click();
    desktop.run_for(0.1);
    EXPECT_THAT(requests, IsEmpty());
    EXPECT_EQ(client.state.link_title_suffix, "127.0.0.1 -> ") << "nothing has changed";
    desktop.answer_box("needs the controller's cable at this machine", platform::Answer::ok);
    desktop.answer_box("Do you really want to stop the controller", platform::Answer::ok);
    desktop.expect_box("The controller is now ready to re-flash.");
    client.forms.frm_ecu.menu_tool_reflash.click();
    EXPECT_EQ(requests.back()[2], 174);
}

} // namespace
} // namespace ecu
