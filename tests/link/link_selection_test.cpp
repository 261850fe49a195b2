#include "link_bench.h"

namespace ecu::test {
namespace {

TEST(OpenLink, OpensTheChosenPortOnceAndReArmsAfterAbort) {
    LinkBench bench; // opens port 3
    EXPECT_EQ(bench.desktop.line().baud(), 38400);
    EXPECT_EQ(bench.main_form.caption(), "ECU System Console ->COM3");
    EXPECT_TRUE(bench.state.comm_ready);
    bench.state.comm_aborted = true;
    bench.selection.open_comm_link();
    EXPECT_FALSE(bench.state.comm_aborted);
    EXPECT_EQ(bench.desktop.line().tried(), std::vector{3}) << "an open port is left alone";

    bench.comm1->close();
    bench.state.comm_ready = false;
    bench.state.remote_server_ip = "10.0.0.7";
    bench.selection.open_comm_link();
    EXPECT_TRUE(bench.state.comm_ready);
    EXPECT_FALSE(bench.comm1->is_open());
}

TEST(OpenLink, NoPortOffersDemoModeOrTheListAndTheEnd) {
    for (const bool demo : {true, false}) {
        LinkBench bench;
        bench.comm1->close();
        bench.state.comm_ready = false;
        for (int number = 3; number <= 16; ++number) {
            bench.desktop.line().fail_open(number, "Permission denied");
        }
        bench.desktop.on_modal("frm_Dialog", [&](platform::Form& form) {
            const FrmDialog& dialog = bench.dialog;
            EXPECT_EQ(dialog.dialog_caption.text(), "No COM port found for COM3.  Choose and option below.");
            EXPECT_EQ(dialog.dialog_details.text(), "Permission denied");
            EXPECT_EQ(dialog.dialog_button[0].text() + dialog.dialog_button[1].text(), "ExitDemo");
            EXPECT_FALSE(dialog.dialog_button[2].visible() || dialog.dialog_button[3].visible());
            demo ? bench.dialog.dialog_button[1].press() : form.close_requested();
        });
        if (!demo) {
            bench.desktop.expect_box("COM-01 PRESENT\nCOM-02 PRESENT\nCOM-03 FAILED\nCOM-04 FAILED\n");
            bench.desktop.expect_box(
                "Program is going to be terminated since it must either be set as Demo or Normal mode");
            EXPECT_THROW(bench.selection.open_comm_link(), ProgramEnded);
            EXPECT_TRUE(bench.desktop.boxes()[0].text.ends_with("COM-16 FAILED"));
            continue;
        }
        bench.selection.open_comm_link();
        EXPECT_TRUE(bench.state.demo_mode && bench.state.comm_ready);
        EXPECT_EQ(bench.state.comm_link_opened, 1);
        bench.selection.open_comm_link();
        EXPECT_EQ(bench.state.link_title_suffix, " ->COM3") << "demo mode leaves the title alone";
    }
}

TEST(PortFile, IsReadByItsLeadingNumberAndMissedWithFileFolderAndRemedy) {
    LinkBench bench;
    for (const auto& [text, number] : std::vector<std::pair<std::string, int>>{{" 7 \r\n", 7},
                                                                               {"11\n", 11},
                                                                               {"", 0},
                                                                               {"COM3\n", 0},
                                                                               {"\xEF\xBB\xBF\r\n\n4", 4},
                                                                               {std::string(5000, '9'), 32767}}) {
        bench.desktop.write_file("port.cfg", text);
        EXPECT_TRUE(bench.selection.read_port_file());
        EXPECT_EQ(bench.state.comm_port_number, number) << text;
    }
    std::filesystem::remove(bench.desktop.path("port.cfg"));
    bench.desktop.expect_box("port.cfg in the folder " + bench.desktop.folder().string() + ".\n");
    EXPECT_FALSE(bench.selection.read_port_file());
}

TEST(PortMenu, WritesTheFileAndLeavesAnOpenSessionOnItsPort) {
    LinkBench bench;
    bench.selection.choose_port(5);
    EXPECT_EQ(bench.desktop.read_file("port.cfg"), "5\n");
    EXPECT_EQ(bench.state.comm_port_number, 3);
    bench.comm1->close();
    bench.selection.choose_port(6);
    EXPECT_EQ(bench.state.comm_port_number, 6);

    std::filesystem::rename(bench.desktop.path("port.cfg"), bench.desktop.path("older"));
    std::filesystem::create_directory(bench.desktop.path("port.cfg"));
    bench.desktop.expect_box("could not be written to port.cfg in the folder");
    bench.selection.choose_port(7);
    EXPECT_EQ(bench.state.comm_port_number, 7);
}

} // namespace
} // namespace ecu::test
